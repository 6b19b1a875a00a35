// Edits the settings of one automation database. The window stays above others and keeps the database open
// while it is there. Nothing is written before OK.
#pragma once

#include "automation/AutomationEditing.h"

#include <QDialog>

#include <memory>

namespace Ui {
class frmKOVADatabaseSettings;
}

class QLineEdit;

namespace tolvex {

class frmKOVADatabaseSettings : public QDialog {
    Q_OBJECT

public:
    // All three outlive the form. `record` becomes what is loaded, and then what is stored.
    frmKOVADatabaseSettings(KOVADatabaseSettings& record, const Settings& settings, UsersState& users,
                            QWidget* parent = nullptr);
    ~frmKOVADatabaseSettings() override;

    // Opens a database: a file by its full name, or with `connect` one on a server. Tabs and OK are disabled
    // when that fails.
    void setDatabase(const QString& name, const QString& connect = {});

    QSize sizeHint() const override;
    // Cancel, Escape and the close button: asks while there are changes.
    void reject() override;

private:
    void prepareBoxes();
    void showColours();
    void fillLists();
    void connectButtons();
    void addRules();
    void display();
    void showFont();
    void showFormat();
    void showSamples();
    void showClientsDatabase();
    AutomationEntries entries() const;
    bool isChanged() const;
    void browse(QLineEdit* box, const QString& prompt);
    void chooseClients();
    void chooseFormat();
    void chooseFont();
    void ok();

    KOVADatabaseSettings& record_;
    const Settings& settings_;
    KOVADatabaseSettings shown_; // as loaded, with the font and the format that the user chose
    AutomationEditing editing_;
    AutomationEntries loaded_;
    std::unique_ptr<Ui::frmKOVADatabaseSettings> ui_;
};

} // namespace tolvex
