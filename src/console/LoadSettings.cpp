#include "console/LoadSettings.h"

#include "audio/Hotlist.h"
#include "audio/LoadAudioSettings.h"
#include "console/StartUp.h"
#include "core/report/Folders.h"
#include "core/settings/SettingsLoader.h"
#include "core/text/PathNames.h"
#include "core/time/Dates.h"
#include "network/TerminalList.h"
#include "platform/Prompts.h"
#include "platform/files/Files.h"
#include "platform/paths/Paths.h"
#include "platform/profile/ProfileFile.h"

namespace tolvex {

namespace {

void showUpdateNotice() {
    Settings& values = settings();
    const QString file = platform::ApplicationFolder() + QStringLiteral("\\Updates.txt");
    QDateTime changed = platform::FileModified(file);
    if (!changed.isValid() || values.AutoConfigInProgress || values.LastOneWas < 0)
        return;
    // The ini file holds whole seconds; a fraction would show the notice again at each start.
    changed.setTime(QTime(changed.time().hour(), changed.time().minute(), changed.time().second()));
    if (SerialDate(changed) <= values.LastOneWas)
        return;
    platform::prompts().showUpdateNotice(file, QStringLiteral("Tolvex Update Information"));
    platform::WriteProfileText(QStringLiteral("UpdateNotice"), QStringLiteral("LastOneWas"),
                               DateText(changed), values.SystemIniFile);
    values.LastOneWas = SerialDate(changed);
}

void numberCartListChannels() {
    constexpr qint16 below = 20;
    for (qint16 part = 1; part <= CartPartCount; ++part)
        settings().CartPartTable[part].FileNumber = part + below;
}

// The local settings, with those of the audio as `loadAudio` takes them.
bool loadLocal(void (*loadAudio)(const QString& iniPath, const QString& registryRoot)) {
    if (!InitialiseProgram())
        return false;
    const QString iniFile = settings().LocalIniFile;
    loadAudio(iniFile, QLatin1String(AudioRegistryRoot));
    LoadRows(WorkstationRows, {iniFile});
    LoadAudioWallDisplaySettings(iniFile);
    LoadRows(DisplayRows, {iniFile});
    LoadRows(AutomationRows, {iniFile});
    return true;
}

} // namespace

void LoadAudioWallDisplaySettings(const QString& iniFile) {
    LoadRows(AudioWallSizeRows, {iniFile});
    SizeJumpCartButtons();
    LoadRows(JumpButtonRows, {iniFile});
    LoadRows(AudioWallRows, {iniFile});
}

void LoadAutomationControlSettings(const QString& iniFile) {
    LoadRows(AutomationControlRows, {iniFile});
}

bool LoadLocalSettings() {
    return loadLocal(&LoadAudioSettings);
}

bool ReadLocalSettings() {
    return loadLocal(&ReadAudioSettings);
}

bool ReadAudiowall() {
    if (!InitialiseProgram())
        return false;
    ReadAudiowallSettings(settings().LocalIniFile, QLatin1String(AudioRegistryRoot));
    return true;
}

bool LoadSystemSettings() {
    Settings& values = settings();
    const QString named = NamedSystemIniFile();
    values.SystemIniFile = named.isNull() ? values.DataLocation + QStringLiteral("\\TLVX_SYS.INI") : named;
    LoadRows(NetworkRows, {values.SystemIniFile});
    LoadRows(TransferRows, {values.SystemIniFile});
    if (DirectoryExists(FolderOf(values.SystemIniFile)))
        LoadRows(UpdateNoticeRows, {values.SystemIniFile});
    else
        values.LastOneWas = -1;
    return true;
}

void LoadAllSettings() {
    platform::Prompts& prompts = platform::prompts();
    const platform::Pointer pointer = prompts.pointer();
    prompts.setPointer(platform::Pointer::Wait);
    prompts.splash(QStringLiteral("Loading Locale Specific Information..."));
    if (!LoadLocalSettings())
        return;
    Settings& values = settings();
    values.UsersFolder = values.DataLocation + QStringLiteral("\\USERS\\");
    if (DirectoryExists(values.DataLocation))
        CreateDataDirectories(values.DataLocation);
    prompts.splash(QStringLiteral("Loading System Specific Information..."));
    LoadSystemSettings();
    if (values.DataLocation.trimmed().isEmpty())
        return;
    showUpdateNotice();
    numberCartListChannels();
    prompts.splash(QStringLiteral("Accessing AudioWall..."));
    prompts.splash(QStringLiteral("Accessing Terminals..."));
    if (!OpenTerminalList())
        return;
    prompts.splash(QStringLiteral("Opening Public Instant Cart Hotlists..."));
    OpenHotlist(values.CartPartTable[1].Location);
    prompts.setPointer(pointer);
}

} // namespace tolvex
