// The chooser of configuration sets at start-up: lists the sets, lets the user copy, rename and delete them,
// and stores the chosen file in the setting LocalIniFile (empty on Cancel).
#pragma once

#include <QMainWindow>

#include <memory>

namespace Ui {
class frmMultiConfig;
}

class QListWidgetItem;

namespace tolvex {

class frmMultiConfig : public QMainWindow {
    Q_OBJECT

public:
    frmMultiConfig(const QString& registryKey, const QString& defaultIni, QWidget* parent = nullptr);
    ~frmMultiConfig() override;

    // Shows the form and returns after the user chose or cancelled.
    void exec();
    // The file of the chosen set; empty if the user cancelled.
    QString chosen() const { return chosen_; }
    // Refills the list, keeping the selection.
    void UpdateDisplay();

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    // An entry by its number from 1, its key and its text; any other index means the selected one.
    const QListWidgetItem* entry(int index) const;
    QString entryKey(int index = 0) const;
    QString entryText(int index = 0) const;
    void choose();
    void copy();
    void rename();
    void remove();

    std::unique_ptr<Ui::frmMultiConfig> ui_;
    QString registryKey_;
    QString defaultIni_;
    QString chosen_;
};

} // namespace tolvex
