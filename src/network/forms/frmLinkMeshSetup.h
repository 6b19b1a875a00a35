// Which number this workstation has on the network, and the names of all numbers.
#pragma once

#include "network/TerminalList.h"
#include "ui/binding/InCellEditor.h"

#include <QDialog>
#include <QTimer>

#include <memory>

namespace Ui {
class frmLinkMeshSetup;
}

namespace tolvex {

class TerminalModel;

class frmLinkMeshSetup : public QDialog {
    Q_OBJECT

public:
    // Opens the list, which may ask whether to make it. List and settings outlive the form.
    frmLinkMeshSetup(TerminalList& terminals, Settings& settings, QWidget* parent = nullptr);
    ~frmLinkMeshSetup() override;

    // Cancel, Escape and the window's own close button: asks while there are names that were not stored.
    void reject() override;

protected:
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void refresh();
    void choose(int id);
    void editName(int id, const QKeyEvent* key = nullptr);
    void showNotice();
    void store();

    TerminalList& terminals_;
    Settings& settings_;
    std::unique_ptr<Ui::frmLinkMeshSetup> ui_;
    TerminalModel* model_;
    std::unique_ptr<InCellEditor> editor_;
    QLineEdit* txtName_;
    int edited_ = 0; // the number whose name is open; 0: none
    QTimer refresh_;
    bool shown_ = false;
    bool readable_ = false; // whether the rows are what the list holds now
};

} // namespace tolvex
