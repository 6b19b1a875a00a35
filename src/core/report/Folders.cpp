#include "core/report/Folders.h"

#include "core/report/DebugLog.h"
#include "core/report/ProblemReport.h"
#include "core/text/PathNames.h"
#include "platform/Prompts.h"
#include "platform/files/Files.h"
#include "platform/files/TempFile.h"
#include "platform/paths/Paths.h"

namespace tolvex {

using platform::FileError;

namespace {

constexpr int DeviceUnavailable = 68;

bool isShare(const QString& path) {
    return path.startsWith(QLatin1String("\\\\"));
}

// Asks this drive only: another one may be a share whose server is gone, which would block.
bool driveExists(QChar letter) {
    return letter.unicode() < 128 && letter.isLetter() &&
           platform::FolderExists(letter + QStringLiteral(":\\"));
}

// FileError number. Makes every folder from the drive's root down, including existing ones.
int makeFoldersOnDrive(QString path) {
    if (!path.endsWith(u'\\'))
        path += u'\\';
    if (!driveExists(path[0]))
        return DeviceUnavailable;
    if (path.mid(1, 2) != QLatin1String(":\\"))
        return FileError::PathNotFound;
    for (qsizetype end = path.indexOf(u'\\', 3); end > 0; end = path.indexOf(u'\\', end + 1)) {
        const QString folder = path.left(end);
        if (folder.endsWith(u'\\'))
            continue;
        const int error = platform::MakeFolder(folder);
        if (error != FileError::NoError && error != FileError::PathFileAccess)
            return error;
        // Anything else of that name cannot be entered.
        if (!platform::FolderExists(folder))
            return FileError::PathNotFound;
    }
    return FileError::NoError;
}

bool createShareFolder(const QString& path, bool quiet) {
    if (platform::MakeFolder(path) == FileError::NoError || platform::FolderExists(path))
        return true;
    if (!quiet)
        ShowExclamation(QStringLiteral("You must manually create the path : ") + path);
    return false;
}

} // namespace

bool DirectoryExists(const QString& path) {
    DebugLog(QStringLiteral("Start DirectoryExists"));
    QString searched = path;
    if (isShare(path)) {
        const qsizetype afterServer = path.indexOf(u'\\', 2);
        if (afterServer > 0 && path.indexOf(u'\\', afterServer + 1) < 0)
            searched += u'\\';
    } else if (path.size() == 2) {
        searched += u'\\';
    }
    DebugLog(QStringLiteral("Call Dir(") + searched + QStringLiteral(", vbDirectory)"));
    const bool found = !path.isEmpty() && platform::FolderExists(searched);
    DebugLog(QStringLiteral("End DirectoryExists (") + QLatin1String(found ? "True)" : "False)"));
    return found;
}

bool CreatePath(const QString& path, bool quiet) {
    if (isShare(path))
        return createShareFolder(path, quiet);
    const platform::PointerKeeper pointer(platform::Pointer::Wait);
    const int error = path.isEmpty() ? FileError::PathNotFound : makeFoldersOnDrive(path);
    if (error == FileError::NoError)
        return true;
    if (!quiet)
        ProblemReport(QStringLiteral("While Attempting to Create Directories on Destination Drive."), error);
    return false;
}

qint64 FileLength(const QString& path) {
    return platform::FileSize(path);
}

QString BrowseForFolder(const QString& prompt, const QString& start) {
    QString folder = platform::prompts().pickFolder(prompt, start).value_or(QString());
    if (const qsizetype end = folder.indexOf(QChar(u'\0')); end >= 0)
        folder.truncate(end);
    if (folder.endsWith(QLatin1String(":\\")))
        folder.chop(1);
    return folder;
}

QString TempFileName(const QString& folder, const QString& prefix, const QString& extension) {
    const QString place = folder.isEmpty() ? platform::TempFolder() : folder;
    const QString ending = extension.isEmpty() ? QStringLiteral("TMP") : extension;
    constexpr int tries = 10000;
    for (int tried = 0; tried < tries; ++tried) {
        int error = FileError::NoError;
        const QString made = platform::MakeTempFile(place, prefix.toUpper().remove(u' '), &error);
        if (made.isEmpty()) {
            platform::Message message;
            message.text = QStringLiteral("Error getting a temporary file name :") + QString::number(error);
            message.icon = platform::Icon::Stop;
            platform::prompts().ask(message);
            return {};
        }
        platform::RemoveFile(made);
        QString name = made.chopped(3) + ending;
        if (!platform::FileExists(name))
            return name;
    }
    return {};
}

void CreateDataDirectories(const QString& path) {
    if (path.isEmpty())
        return;
    for (const char* name : DataFolders) {
        const QString folder = path + u'\\' + QLatin1String(name);
        if (DirectoryExists(folder) || CreatePath(folder))
            continue;
        if (qstrcmp(name, "USERS") == 0)
            return;
        if (qstrcmp(name, "SCHEDULE") != 0)
            ProblemReport(QStringLiteral("while creating the %1 directory in ").arg(QLatin1String(name)) +
                          path);
    }
}

} // namespace tolvex
