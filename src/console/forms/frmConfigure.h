// The console: a tab strip of buttons, a menu bar, a status bar, and the
// workstation at a glance. Loading it starts the program, closing it
// ends the program; every job starts from a button or menu entry here.
#pragma once

#include "console/forms/FormTable.h"
#include "station/Session.h"

#include <QMainWindow>

#include <memory>

namespace Ui {
class frmConfigure;
}

class QAction;
class QKeyEvent;
class QLabel;

namespace tolvex {

struct ConsoleJob;
class JobTile;

class frmConfigure : public QMainWindow {
    Q_OBJECT

public:
    // The workstation outlives the console.
    explicit frmConfigure(Workstation& station, QWidget* parent = nullptr);
    ~frmConfigure() override;

    // Everything from the check of the data engine to the console being ready, not yet shown. False if the
    // program must end; the user has been told why. `firstInstance` false: another copy is running, and this
    // one ends silently.
    bool load(bool firstInstance = true);

    void UpdateEnabledButtons();

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    JobTile* tile(const ConsoleJob& job) const;
    void startJob(const ConsoleJob& job);
    void openForm(const ConsoleJob& job);
    void runRoutine(ConsoleRoutine routine);
    void showJob(const QString& control);
    void showPlace(QDialog* form);
    void showGlance();
    void selectTab(int index);
    void moveTab(int step);
    bool handleKey(QKeyEvent* key);
    void exitCheck();
    void toggleOption(QAction* action, const QString& value);
    void about();
    void showHelp(const QWidget* window);
    void askFirstRun();
    int helpContext() const;

    Workstation& station_;
    Session session_;
    std::unique_ptr<Ui::frmConfigure> ui_;
    QLabel* status_ = nullptr;
    QString helpFile_;
    QString place_;        // what was searched for, in the form that opens next
    bool waiting_ = false; // a waited form is open, or a routine is running
    bool exitRequested_ = false;
};

} // namespace tolvex
