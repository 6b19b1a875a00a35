// The machine folder: chooses it, lays it out, and knows the folders that every machine has.
#include "platform/paths/PathState.h"
#include "platform/paths/Paths.h"

#include "platform/host/HostChanges.h"
#include "platform/host/HostFiles.h"
#include "platform/host/LookOnly.h"

#include <QDir>
#include <QStandardPaths>

namespace tolvex::platform {

namespace {

PathState state;
thread_local PathState* stateOfThread = nullptr;

constexpr int longestSystemPath = 145;

// The folders that the suite expects on drive C:.
constexpr const char* standardFolders[] = {"WINDOWS", "WINDOWS/SYSTEM32", "WINDOWS/TEMP", "Program Files",
                                           "Program Files/Common Files"};

struct ShellFolder {
    int number;
    const char* windowsPath;              // null: a folder of the user
    QStandardPaths::StandardLocation own; // then this one
};
// The numbers are the shell's own.
constexpr ShellFolder shellFolders[] = {
    {0x00, nullptr, QStandardPaths::DesktopLocation},
    {0x05, nullptr, QStandardPaths::DocumentsLocation},
    {0x0D, nullptr, QStandardPaths::MusicLocation},
    {0x0E, nullptr, QStandardPaths::MoviesLocation},
    {0x10, nullptr, QStandardPaths::DesktopLocation},
    {0x1A, nullptr, QStandardPaths::GenericConfigLocation},
    {0x1C, nullptr, QStandardPaths::GenericDataLocation},
    {0x24, "C:\\WINDOWS", {}},
    {0x25, "C:\\WINDOWS\\SYSTEM32", {}},
    {0x26, "C:\\Program Files", {}},
    {0x27, nullptr, QStandardPaths::PicturesLocation},
    {0x28, nullptr, QStandardPaths::HomeLocation},
    {0x2B, "C:\\Program Files\\Common Files", {}},
};

QString defaultMachineFolder() {
    if (QString chosen = qEnvironmentVariable("TOLVEX_HOME"); !chosen.isEmpty())
        return chosen;
    // The convention that defines it says to ignore a relative data folder.
    QString data = qEnvironmentVariable("XDG_DATA_HOME");
    if (!data.startsWith(u'/'))
        data = QDir::homePath() + QStringLiteral("/.local/share");
    return data + QStringLiteral("/tolvex");
}

// In read-only mode the folder is used as it is, unless there is none yet.
bool mayLayOut(const QString& folder) {
    return !LookingOnly() || !QFile::exists(folder + QStringLiteral("/dosdevices"));
}

// Makes drives C: and Z: in a machine folder that has no dosdevices/ yet, and the standard folders. A
// sentence about what failed, or an empty text.
QString layOut(const QString& folder) {
    const QString devices = folder + QStringLiteral("/dosdevices");
    const bool isNew = !QFile::exists(devices);
    if (const QString error = MakeHostFolders(devices); !error.isEmpty())
        return QStringLiteral(
                   "The machine folder \"%1\" cannot be made: %2. Choose another one with TOLVEX_HOME.")
            .arg(folder, error);
    const QByteArray driveC = HostName(devices + QStringLiteral("/c:"));
    if (!LinkStatusOf(driveC) && !FolderCache().find(HostName(devices), QStringLiteral("c:"))) {
        QString error = MakeHostFolders(folder + QStringLiteral("/drive_c"));
        if (error.isEmpty())
            error = MakeHostLink("../drive_c", driveC);
        if (!error.isEmpty())
            return QStringLiteral("Drive C: of the machine folder \"%1\" cannot be made: %2.")
                .arg(folder, error);
    }
    if (isNew)
        MakeHostLink("/", HostName(devices + QStringLiteral("/z:"))); // only a convenience
    return {};
}

void makeStandardFolders() {
    for (const char* name : standardFolders) {
        // If a folder cannot be made, the first user of it reports its name.
        MakeHostFolder(HostPath(QStringLiteral("C:\\") + QLatin1String(name)));
    }
}

} // namespace

OwnPathState::OwnPathState(PathState& own) {
    stateOfThread = &own;
}

OwnPathState::~OwnPathState() {
    stateOfThread = nullptr;
}

PathState& pathState() {
    if (stateOfThread)
        return *stateOfThread;
    if (state.machineFolder.isEmpty())
        SetMachineFolder({});
    return state;
}

bool SetMachineFolder(const QString& hostFolder, QString* why) {
    QString sentence;
    const QString chosen = hostFolder.isEmpty() ? defaultMachineFolder() : hostFolder;
    const QString folder = QDir::cleanPath(QDir(chosen).absolutePath());
    const bool laysOut = mayLayOut(folder);
    if (chosen.contains(QChar(0)))
        sentence = QStringLiteral("The name of the machine folder holds a zero character.");
    else if (laysOut)
        sentence = layOut(folder);
    if (sentence.isEmpty()) {
        PathState fresh;
        fresh.machineFolder = folder;
        fresh.devices = HostName(folder + QStringLiteral("/dosdevices"));
        fresh.applicationFolder = state.applicationFolder;
        PathState before = std::exchange(state, std::move(fresh));
        if (!IsHostFolder(HostPath(QStringLiteral("C:\\")))) {
            sentence = QStringLiteral("Drive C: of the machine folder \"%1\" leads nowhere. Mend the link "
                                      "\"%1/dosdevices/c:\".")
                           .arg(folder);
            state = std::move(before);
        }
    }
    if (why)
        *why = sentence;
    if (!sentence.isEmpty())
        return false;
    if (laysOut)
        makeStandardFolders();
    return true;
}

QString MachineFolder() {
    return pathState().machineFolder;
}

QString WindowsFolder() {
    return QStringLiteral("C:\\WINDOWS").left(longestSystemPath);
}

QString SystemFolder() {
    return QStringLiteral("C:\\WINDOWS\\SYSTEM32").left(longestSystemPath);
}

QString TempFolder() {
    return QStringLiteral("C:\\WINDOWS\\TEMP");
}

QString ApplicationFolder() {
    if (!pathState().applicationFolder.isEmpty())
        return pathState().applicationFolder;
    return WindowsPath(HostFolder(ProgramFile()));
}

void SetApplicationFolder(const QString& windowsPath) {
    state.applicationFolder = windowsPath;
}

QString ApplicationFile(const QString& name) {
    QString folder = ApplicationFolder();
    if (folder.endsWith(u'\\'))
        folder.chop(1);
    QString beside = folder + u'\\' + name;
    if (QFile::exists(HostPath(beside)))
        return beside;
    const QString shared =
        QDir::cleanPath(HostPath(folder) + QStringLiteral("/" TOLVEX_DATA_FROM_PROGRAM "/") + name);
    return QFile::exists(shared) ? WindowsPath(shared) : beside;
}

QString SpecialFolderPath(int number) {
    for (const ShellFolder& folder : shellFolders) {
        if (folder.number != number)
            continue;
        const QString path = folder.windowsPath ? QString::fromLatin1(folder.windowsPath)
                                                : WindowsPath(QStandardPaths::writableLocation(folder.own));
        return IsHostFolder(HostPath(path)) ? path : QString();
    }
    return {};
}

} // namespace tolvex::platform
