// Shows a text or rich text file, optionally with a list of the files of a folder, and prints it or saves a
// copy.
#pragma once

#include <QDialog>

#include <memory>

namespace Ui {
class frmPrintPreview;
}

namespace tolvex {

class frmPrintPreview : public QDialog {
    Q_OBJECT

public:
    explicit frmPrintPreview(QWidget* parent = nullptr);
    ~frmPrintPreview() override;

    // Lists the files of a folder (a Windows path) with an extension, by their names without it, and shows
    // the first.
    void DisplayFolder(const QString& folder, const QString& extension);
    void HideFolder();
    // Shows a file; an empty or missing one shows an empty view. Files longer than 32 MB are truncated.
    void LoadFile(const QString& path);
    // Shows a text that is not in a file.
    void ShowText(const QString& text);
    // From the next LoadFile on, contents are shown as plain text, whatever they are.
    void SetTextDisplay(bool flag);

protected:
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void print();
    void save();
    void choose(int row);

    std::unique_ptr<Ui::frmPrintPreview> ui_;
    QString fileName_;
    QString folder_;
    QString extension_;
    QByteArray contents_; // of the file shown; Save writes it
    bool textDisplay_ = false;
    bool shown_ = false;
};

} // namespace tolvex
