#include "console/AutoConfiguration.h"

#include "audio/AudioEditorSearch.h"
#include "audio/CartStore.h"
#include "audio/Hotlist.h"
#include "automation/AutomationStore.h"
#include "console/Installation.h"
#include "console/SearchDrives.h"
#include "core/report/Folders.h"
#include "core/report/ProblemReport.h"
#include "core/settings/SaveLocalSettings.h"
#include "core/settings/SettingsLoader.h"
#include "core/settings/SystemColours.h"
#include "core/text/PathNames.h"
#include "databases/users/UsersDatabase.h"
#include "network/TerminalList.h"
#include "platform/Machine.h"
#include "platform/Prompts.h"
#include "platform/profile/ProfileFile.h"
#include "station/LoadSettings.h"
#include "station/Workstation.h"

namespace tolvex {

namespace {

using platform::Answer;
using platform::Buttons;
using platform::Icon;
using platform::Pointer;

Answer ask(const QString& text, Buttons buttons, std::optional<Answer> byDefault = {},
           const QString& title = {}) {
    return platform::prompts().ask({text, Icon::Question, buttons, byDefault, title});
}

void splash(const char* status) {
    platform::prompts().splash(QString::fromLatin1(status));
}

bool askToExit() {
    return ask(QStringLiteral("Tolvex is now fully configured on your system.\n\n"
                              "Do you want to exit from Tolvex Configuration?"),
               Buttons::YesNo) == Answer::Yes;
}

CartPaths everywhere(const QString& location) {
    CartPaths paths;
    for (QString& path : paths)
        path = location;
    return paths;
}

void setLocations(Settings& settings, const QString& data, const CartPaths& carts) {
    settings.DataLocation = TidyLocation(data);
    for (int part = 1; part <= CartPartCount; ++part) {
        settings.CartPartTable[part].Location = TidyLocation(carts[part]);
        settings.CartPartTable[part].State = NotChecked;
    }
}

// Configures for these locations. If it cannot begin, the workstation keeps its old ones.
InstallOutcome installIn(Workstation& station, const QString& data, const CartPaths& carts) {
    CreateDataDirectories(data);
    const QString dataBefore = station.settings.DataLocation;
    CartPaths cartsBefore;
    for (int part = 1; part <= CartPartCount; ++part)
        cartsBefore[part] = station.settings.CartPartTable[part].Location;
    // If only an audiowall was found, the data stays where it is.
    setLocations(station.settings, data.isEmpty() ? dataBefore : data, carts);
    if (AutoInstall(station))
        return InstallOutcome::Configured;
    setLocations(station.settings, dataBefore, cartsBefore);
    return InstallOutcome::Failed;
}

// Saves the local ini file; false, after a report, if it could not be written.
bool save(Workstation& station) {
    const int error = SaveLocalSettings(station.settings, station.settings.LocalIniFile);
    if (error != platform::ProfileOk)
        ProblemReport(
            QStringLiteral("saving the settings of this workstation in ") + station.settings.LocalIniFile +
            QStringLiteral(" (system error %1). Please see that the disk has room and that the file "
                           "may be written.")
                .arg(error));
    return error == platform::ProfileOk;
}

// Saved settings are loaded with everything else; if saving
// failed, loading would restore the old locations.
void load(Workstation& station, bool saved) {
    if (saved)
        LoadAllSettings(station);
    else
        LoadSystemSettings(station);
}

void createFiles(Workstation& station, bool saved) {
    Settings& values = station.settings;
    values.AutoConfigInProgress = -1;
    load(station, saved);
    OpenCartParts(station.carts, 0, false);
    values.LastOneWas = 0;
    OpenHotlist(station.carts, values.CartPartTable[1].Location);
}

// Finds or takes this workstation's number in the station's list, and says when it is not its own alone.
// Without a list that can be read the number stays, or is 1.
void chooseWorkstation(Workstation& station) {
    qint32& id = station.settings.LinkMeshId;
    OpenTerminalList(station.terminals);
    if (TerminalListIsOpen(station.terminals)) {
        const ClaimedTerminal claimed = ClaimTerminal(station.terminals, platform::ComputerName());
        id = claimed.id;
        if (claimed.error != platform::NoError)
            ProblemReport(QStringLiteral("taking number %1 in the Terminal List").arg(id), claimed.error);
        if (!claimed.holder.isEmpty())
            ShowExclamation(
                QStringLiteral("All %1 numbers of the station are in use. This workstation uses "
                               "number %2 together with %3. Choose another one in LinkMesh Setup.")
                    .arg(station.settings.NumberTerminals)
                    .arg(id)
                    .arg(claimed.holder));
    } else if (id < 1) {
        id = 1;
    }
    CloseTerminalList(station.terminals);
}

void chooseAudioEditor(Settings& values) {
    values.AudioEditor = FindAudioEditor(values.AudioEditor);
    if (FileLength(values.AudioEditor) > 0)
        return;
    platform::prompts().ask({QStringLiteral("Please select the program you want to use to edit carts"),
                             Icon::Information,
                             Buttons::Ok,
                             {},
                             QStringLiteral("Tolvex Automatic Configuration")});
    platform::FileQuestion question;
    question.title = QStringLiteral("Select Audio Editor Program");
    question.filter = QStringLiteral("Programs|*.EXE *.COM *.BAT *.PIF");
    question.fileName = QStringLiteral("*.EXE");
    question.defaultExtension = QStringLiteral("EXE");
    const std::optional<QString> chosen = platform::prompts().pickFile(question);
    if (chosen && FileLength(*chosen) > 0)
        values.AudioEditor = *chosen;
}

void setDefaults(Settings& values) {
    const QList<JumpCartButton> buttons = {
        {1, QStringLiteral("Jingles")}, {1001, QStringLiteral("Adverts")}, {3001, QStringLiteral("Music")}};
    values.NumberCartJumpButtons = qint16(buttons.size());
    values.JumpCartButtons = buttons;
    values.KHz = 44100;
    values.Channels = 2;
    values.Format = 1;
}

// Failures are named first: the closing message ends every run, as it always did.
void tellTheEnd(Workstation& station) {
    QStringList missing;
    for (const InstalledItem& item : MissingItems(station))
        missing += item.what + QStringLiteral(": ") + item.path;
    if (!missing.isEmpty())
        ShowExclamation(QStringLiteral("This could not be made:\n\n") + missing.join(u'\n') +
                        QStringLiteral("\n\nPlease see that the disks are connected and have room, and "
                                       "configure again: what was made is kept."));
    platform::prompts().ask({QStringLiteral("Tolvex is now fully configured on this computer, and all the "
                                            "data files have been created."),
                             Icon::Information});
}

} // namespace

bool AutoInstall(Workstation& station) {
    Settings& values = station.settings;
    platform::Prompts& prompts = platform::prompts();
    prompts.setPointer(Pointer::Wait);
    splash("Automatic Configuration..");
    if (!CreatePath(values.CartPartTable[1].Location)) {
        prompts.hideSplash();
        prompts.setPointer(Pointer::Default);
        return false;
    }
    values.EmptyCartBackColor = SystemButtonFace;
    values.EmptyCartForeColor = SystemButtonText;
    const bool saved = save(station);
    // Without a data location its files would go to the root of some drive.
    const bool hasData = !values.DataLocation.trimmed().isEmpty();
    splash("Checking/Creating Databases..");
    if (hasData)
        CreateDefaultKOVADatabase(values, true);
    splash("Checking/Creating Files..");
    createFiles(station, saved);
    if (hasData) {
        chooseWorkstation(station);
        OpenUsersDatabase(station.users, UsersDatabaseFile(values));
    }
    values.AutoConfigInProgress = 0;
    prompts.setPointer(Pointer::Default);
    splash("Audio Setup..");
    chooseAudioEditor(values);
    setDefaults(values);
    splash("Finishing Configuration..");
    prompts.setPointer(Pointer::Wait);
    save(station);
    prompts.setPointer(Pointer::Default);
    prompts.hideSplash();
    tellTheEnd(station);
    return true;
}

InstallOutcome ConfigureForNetwork(Workstation& station) {
    const QString data = QStringLiteral("M:");
    const QString audio = QStringLiteral("U:");
    if (ask(QStringLiteral("Tolvex will be configured to look in the following directories:\n\n"
                           "Data Location    : M:\\\nAudio Location   : U:\\"),
            Buttons::YesNo, {}, QStringLiteral("Tolvex Automatic Network Configuration")) != Answer::Yes)
        return InstallOutcome::Declined;
    return installIn(station, data, everywhere(audio));
}

InstallOutcome ConfigureLocally(Workstation& station) {
    QString base = platform::ProfileText(QStringLiteral("Tolvex"), QStringLiteral("InstallPath"), {},
                                         QStringLiteral("Win.ini"));
    if (base.isEmpty())
        base = QStringLiteral("C:\\TOLVEX\\");
    const QString data = base + QStringLiteral("SYSTEM");
    const QString audio = base + QStringLiteral("AUDIO");
    if (ask(QStringLiteral("Do you want Tolvex to be configured to run from the following directories:\n\n"
                           "Data Location    : %1\nAudio Location   : %2")
                .arg(data, audio),
            Buttons::YesNo) != Answer::Yes)
        return InstallOutcome::Declined;
    return installIn(station, data, everywhere(audio));
}

bool DefaultNetworkInstall(Workstation& station) {
    return ConfigureForNetwork(station) == InstallOutcome::Configured;
}

bool DefaultLocalInstall(Workstation& station) {
    return ConfigureLocally(station) == InstallOutcome::Configured;
}

InstallOutcome ConfigureFromSearch(Workstation& station, bool networkOnly) {
    const ExistingSetup setup = SearchDrives(networkOnly);
    if (setup.stopped)
        return InstallOutcome::Stopped;
    if (!IsWorthAsking(setup))
        return InstallOutcome::Declined;
    const CartPaths carts = FilledCartPaths(setup.cartPaths);
    const QString indent = networkOnly ? QStringLiteral("\t") : QString();
    if (ask(AcceptanceQuestion(setup.dataPath, carts, indent), Buttons::YesNo) != Answer::Yes)
        return InstallOutcome::Declined;
    return installIn(station, setup.dataPath, carts);
}

bool LookForSetup(Workstation& station) {
    const InstallOutcome outcome = ConfigureFromSearch(station, false);
    if (outcome == InstallOutcome::Stopped)
        return false;
    if (outcome == InstallOutcome::Configured)
        return askToExit();
    const Answer network =
        ask(QStringLiteral("Do you have a networked system of Tolvex on drives M: and U: that "
                           "you want to connect to?"),
            Buttons::YesNoCancel, Answer::No);
    if (network == Answer::Cancel)
        return false;
    const bool done = network == Answer::Yes ? DefaultNetworkInstall(station) : DefaultLocalInstall(station);
    return done && askToExit();
}

bool NetworkSetup(Workstation& station) {
    const Answer answer =
        ask(QStringLiteral("Do you want Tolvex to automatically search for information on a network?"),
            Buttons::YesNoCancel);
    if (answer == Answer::Cancel)
        return false;
    if (answer == Answer::Yes) {
        const InstallOutcome outcome = ConfigureFromSearch(station, true);
        if (outcome == InstallOutcome::Stopped)
            return false;
        if (outcome == InstallOutcome::Configured)
            return askToExit();
    }
    DefaultNetworkInstall(station);
    return false;
}

void LocalSetup(Workstation& station) {
    if (ask(QStringLiteral("Are you sure you want to allow Tolvex to automatically configure itself to run "
                           "locally?\nThis will overwrite all of your previous settings."),
            Buttons::YesNo, Answer::No) == Answer::Yes)
        DefaultLocalInstall(station);
}

} // namespace tolvex
