// The help viewer: contents at the left, the page at the right. One window for the whole program.
#pragma once

#include <QWidget>

#include <memory>

namespace Ui {
class frmHelp;
}

class QTreeWidgetItem;

namespace tolvex {

class HelpFile;

class frmHelp : public QWidget {
    Q_OBJECT

public:
    explicit frmHelp(std::unique_ptr<HelpFile> file, QWidget* parent = nullptr);
    ~frmHelp() override;

    // The page of a help context; 0 and unknown contexts show the first page.
    void showContext(int context);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void fillContents();
    void markCurrent(const QUrl& source);

    std::unique_ptr<HelpFile> file_; // used while the page is shown
    std::unique_ptr<Ui::frmHelp> ui_;
};

// Opens the viewer, or brings it to the front, at a context of a help file (a Windows path). False, with
// nothing shown, if the file is missing or is not a help file.
bool ShowHelp(const QString& helpFile, int context);

} // namespace tolvex
