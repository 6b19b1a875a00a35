// A small modal editor of one text.
#pragma once

#include <QDialog>

#include <memory>

namespace Ui {
class frmEditText;
}

namespace tolvex {

class frmEditText : public QDialog {
    Q_OBJECT

public:
    explicit frmEditText(QWidget* parent = nullptr);
    ~frmEditText() override;

    // The text to edit, set before showing; after OK the edited text, after Cancel the original.
    QString Tag;

protected:
    void showEvent(QShowEvent* event) override;

private:
    std::unique_ptr<Ui::frmEditText> ui_;
    bool shown_ = false;
};

} // namespace tolvex
