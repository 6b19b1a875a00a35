// The workstation's side of the automation player: its default database, and how it shares station control.
#pragma once

#include "databases/forms/frmChooseDatabase.h"

#include <QDialog>

#include <memory>

namespace Ui {
class frmKOVASetup;
}

namespace tolvex {

struct KOVADatabaseSettings;
struct Settings;
struct UsersState;
class FormChanges;

class frmKOVASetup : public QDialog, private DatabaseChooserCaller {
    Q_OBJECT

public:
    // All three outlive the form.
    frmKOVASetup(Settings& settings, KOVADatabaseSettings& automation, UsersState& users,
                 QWidget* parent = nullptr);
    ~frmKOVASetup() override;

    // Cancel, Escape and the close button: asks while there are changes.
    void reject() override;

    // Opens the settings of the database at a control, "frmKOVADatabaseSettings/txtPrecueTime".
    Q_INVOKABLE void showPlace(const QString& place);

private:
    // The chooser changed the file of a database: this window follows its own one, and says so.
    void DatabaseDeleted(const QString& fileName, qint32 type) override;
    void DatabaseRenamed(const QString& from, const QString& to, qint32 type) override;
    bool isOwn(const QString& fileName) const;

    void showSettings();
    QString databasePath() const;
    void setFileName(const QString& name);
    void showDescription(const QString& text);
    void choose();
    void openSettings(const QString& control = {});
    void ok();

    Settings& settings_;
    KOVADatabaseSettings& automation_;
    UsersState& users_;
    std::unique_ptr<Ui::frmKOVASetup> ui_;
    FormChanges* changes_ = nullptr;
};

} // namespace tolvex
