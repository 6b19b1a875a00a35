// The folders of data and carts: the data location and one location for each of the eleven parts of the
// audiowall. It edits text only, no file is moved; Done stores the paths and makes sure that the folders
// exist.
#pragma once

#include <QDialog>
#include <QTimer>

#include <memory>

namespace Ui {
class frmFileLocations;
}

class QLineEdit;
class QPushButton;

namespace tolvex {

struct Settings;

class frmFileLocations : public QDialog {
    Q_OBJECT

public:
    explicit frmFileLocations(Settings& settings, QWidget* parent = nullptr);
    ~frmFileLocations() override;

    // The store: an ini file, or a registry key of the local machine. Setting one reads the values from it at
    // once; Done writes to each that is not empty. Initially the local ini file and empty.
    void setIniFile(const QString& file);
    void setReg_Path(const QString& key);

private:
    QLineEdit* box(int part) const;
    QPushButton* browse(int part) const;
    void fill(QLineEdit* box, const QString& text);
    void checkOneLocation();
    void pick(QLineEdit* box);
    void lookAtFolders();
    void store();

    Settings& settings_;
    std::unique_ptr<Ui::frmFileLocations> ui_;
    QString iniFile_;
    QString regPath_;
    QTimer look_; // folders are checked when typing pauses
};

} // namespace tolvex
