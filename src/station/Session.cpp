#include "station/Session.h"

#include "core/exchange/SettingsImport.h"
#include "core/report/Folders.h"
#include "core/report/ProblemReport.h"
#include "core/settings/SaveLocalSettings.h"
#include "core/settings/SettingsLoader.h"
#include "core/system/DataEngine.h"
#include "core/system/Programs.h"
#include "platform/Prompts.h"
#include "platform/host/LookOnly.h"
#include "station/LoadSettings.h"
#include "station/Workstation.h"

#include <utility>

namespace tolvex {

namespace {

void tellOfUndoneImport(const QString& localIni) {
    if (const QString undone = UndoInterruptedImport(localIni); !undone.isEmpty())
        ShowExclamation(undone);
}

} // namespace

bool Session::begin(bool firstInstance) {
    if (!CheckDataEngine(true) || !firstInstance)
        return false;
    platform::prompts().splash(QStringLiteral("Starting Tolvex Configuration"));
    // From here on the end of the session saves what was loaded; after a cancelled choice of the set there is
    // nothing to save.
    begun_ = true;
    if (!InitialiseProgram(station_))
        return false;
    tellOfUndoneImport(station_.settings.LocalIniFile);
    InitCartState(station_.carts);
    LoadLocalSettings(station_);
    return true;
}

void Session::load() {
    Settings& values = station_.settings;
    LoadRows(ConfigNameRows, {values.LocalIniFile}, values);
    values.ConfigName = values.ConfigName.trimmed();
    LoadAllSettings(station_);
    LoadAutomationControlSettings(values, values.LocalIniFile);
    openUsersDatabase();
}

void Session::reload() {
    if (!DirectoryExists(station_.settings.DataLocation))
        return;
    LoadSystemSettings(station_);
    OpenTerminalList(station_.terminals);
    OpenHotlist(station_.carts, station_.settings.CartPartTable[1].Location);
    OpenCartParts(station_.carts, 0, false);
    if (station_.users.information.FullName != UsersDatabaseFile(station_.settings))
        openUsersDatabase();
}

void Session::end() {
    if (!std::exchange(begun_, false))
        return;
    SaveLocalSettings(station_.settings, station_.settings.LocalIniFile);
    close();
    platform::prompts().setPointer(platform::Pointer::Default);
    if (const QString program = RunByProgram(station_.startUp); !program.isEmpty())
        StartProgram(program, QStringLiteral("/NOPREVCHECK"));
}

bool Session::read() {
    // This comes first: the report on an interrupted import concerns the local ini file chosen here.
    if (!InitialiseProgram(station_))
        return false;
    mendInterruptedImport();
    if (!ReadLocalSettings(station_) || !LoadSystemSettings(station_))
        return false;
    LoadAutomationControlSettings(station_.settings, station_.settings.LocalIniFile);
    return true;
}

void Session::close() {
    CloseTerminalList(station_.terminals);
    CloseHotlist(station_.carts);
    CloseCartParts(station_.carts);
    CloseUsersDatabase(station_.users);
}

// Without a data location there is none.
void Session::openUsersDatabase() {
    if (DirectoryExists(station_.settings.DataLocation))
        OpenUsersDatabase(station_.users, UsersDatabaseFile(station_.settings));
}

// A read-only command can only warn that the files may not belong together.
void Session::mendInterruptedImport() {
    const QString localIni = station_.settings.LocalIniFile;
    if (!ImportWasInterrupted(localIni))
        return;
    if (!platform::LookingOnly())
        return tellOfUndoneImport(localIni);
    if (!std::exchange(toldOfImport_, true))
        ShowExclamation(QStringLiteral(
            "An import of settings was cut short: the files of this workstation may not belong together. The "
            "next start of Tolvex Configuration, or the next command that changes a setting, puts them back "
            "as they were."));
}

} // namespace tolvex
