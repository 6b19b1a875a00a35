// Colours of the suite's windows, the information window and how carts are clicked. Chosen colours show on
// this form at once.
#pragma once

#include "ui/binding/FormBinding.h"

#include <QDialog>

#include <memory>

namespace Ui {
class frmDisplayOptions;
}

namespace tolvex {

struct Settings;

class frmDisplayOptions : public QDialog {
    Q_OBJECT

public:
    explicit frmDisplayOptions(Settings& settings, QWidget* parent = nullptr);
    ~frmDisplayOptions() override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    void applyColours();
    void store();

    Settings& settings_;
    std::unique_ptr<Ui::frmDisplayOptions> ui_;
    FormBinding binding_{this};
};

} // namespace tolvex
