#include "station/LoadSettings.h"

#include "audio/LoadAudioSettings.h"
#include "core/report/Folders.h"
#include "core/settings/SettingText.h"
#include "core/settings/SettingsLoader.h"
#include "core/text/PathNames.h"
#include "core/time/Dates.h"
#include "platform/Prompts.h"
#include "platform/files/Files.h"
#include "platform/paths/Paths.h"
#include "platform/profile/ProfileFile.h"
#include "station/Workstation.h"

namespace tolvex {

namespace {

void showUpdateNotice(Settings& values) {
    const QString file = platform::ApplicationFile(QStringLiteral("Updates.txt"));
    QDateTime changed = platform::FileModified(file);
    if (!changed.isValid() || values.AutoConfigInProgress || values.LastOneWas < 0)
        return;
    // The ini file holds whole seconds; with a fraction the notice would appear at each start.
    changed.setTime(QTime(changed.time().hour(), changed.time().minute(), changed.time().second()));
    if (SerialDate(changed) <= values.LastOneWas)
        return;
    platform::prompts().showUpdateNotice(file, QStringLiteral("Tolvex Update Information"));
    WriteSettingText(RowOf<&Settings::LastOneWas>(), DateText(changed), values.SystemIniFile);
    values.LastOneWas = SerialDate(changed);
}

void numberCartListChannels(Settings& values) {
    constexpr qint16 below = 20;
    for (qint16 part = 1; part <= CartPartCount; ++part)
        values.CartPartTable[part].FileNumber = part + below;
}

// The local settings, with the audio settings as `loadAudio` loads them.
bool loadLocal(Workstation& station,
               void (*loadAudio)(CartStore& carts, const QString& iniPath, const QString& registryRoot)) {
    if (!InitialiseProgram(station))
        return false;
    Settings& values = station.settings;
    const QString iniFile = values.LocalIniFile;
    loadAudio(station.carts, iniFile, QLatin1String(AudioRegistryRoot));
    LoadRows(WorkstationRows, {iniFile}, values);
    LoadAudioWallDisplaySettings(values, iniFile);
    LoadRows(DisplayRows, {iniFile}, values);
    LoadRows(AutomationRows, {iniFile}, values);
    return true;
}

} // namespace

void LoadAudioWallDisplaySettings(Settings& values, const QString& iniFile) {
    LoadRows(AudioWallSizeRows, {iniFile}, values);
    SizeJumpCartButtons(values);
    LoadRows(JumpButtonRows, {iniFile}, values);
    LoadRows(AudioWallRows, {iniFile}, values);
}

void LoadAutomationControlSettings(Settings& values, const QString& iniFile) {
    LoadRows(AutomationControlRows, {iniFile}, values);
}

bool LoadLocalSettings(Workstation& station) {
    return loadLocal(station, &LoadAudioSettings);
}

bool ReadLocalSettings(Workstation& station) {
    return loadLocal(station, &ReadAudioSettings);
}

bool ReadAudiowall(Workstation& station) {
    if (!InitialiseProgram(station))
        return false;
    ReadAudiowallSettings(station.carts, station.settings.LocalIniFile, QLatin1String(AudioRegistryRoot));
    return true;
}

bool LoadSystemSettings(Workstation& station) {
    Settings& values = station.settings;
    const QString named = NamedSystemIniFile(station);
    values.SystemIniFile = named.isNull() ? values.DataLocation + QStringLiteral("\\TLVX_SYS.INI") : named;
    LoadRows(NetworkRows, {values.SystemIniFile}, values);
    LoadRows(TransferRows, {values.SystemIniFile}, values);
    if (DirectoryExists(FolderOf(values.SystemIniFile)))
        LoadRows(UpdateNoticeRows, {values.SystemIniFile}, values);
    else
        values.LastOneWas = -1;
    return true;
}

void LoadAllSettings(Workstation& station) {
    platform::Prompts& prompts = platform::prompts();
    const platform::Pointer pointer = prompts.pointer();
    prompts.setPointer(platform::Pointer::Wait);
    prompts.splash(QStringLiteral("Loading Locale Specific Information..."));
    if (!LoadLocalSettings(station))
        return;
    Settings& values = station.settings;
    values.UsersFolder = values.DataLocation + QStringLiteral("\\USERS\\");
    if (DirectoryExists(values.DataLocation))
        CreateDataDirectories(values.DataLocation);
    prompts.splash(QStringLiteral("Loading System Specific Information..."));
    LoadSystemSettings(station);
    if (values.DataLocation.trimmed().isEmpty())
        return;
    showUpdateNotice(values);
    numberCartListChannels(values);
    prompts.splash(QStringLiteral("Accessing AudioWall..."));
    prompts.splash(QStringLiteral("Accessing Terminals..."));
    if (!OpenTerminalList(station.terminals))
        return;
    prompts.splash(QStringLiteral("Opening Public Instant Cart Hotlists..."));
    OpenHotlist(station.carts, values.CartPartTable[1].Location);
    prompts.setPointer(pointer);
}

} // namespace tolvex
