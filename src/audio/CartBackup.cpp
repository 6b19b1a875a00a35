#include "audio/CartBackup.h"

#include "core/report/Folders.h"
#include "core/settings/Settings.h"
#include "platform/Clock.h"
#include "platform/files/FileCopy.h"
#include "platform/files/Files.h"

namespace tolvex {

namespace {

bool makeFolder(const QString& path) {
    return DirectoryExists(path) || platform::MakeFolder(path) == platform::NoError;
}

} // namespace

bool BackupCartLists(const Settings& settings, bool force) {
    const QString today = platform::clock().now().toString(QStringLiteral("yyyy-MM-dd"));
    for (int part = 1; part <= CartPartCount; ++part) {
        const QString& location = settings.CartPartTable[part].Location;
        const QString name = QStringLiteral("\\Carts%1.LST").arg(part);
        if (location.isEmpty() || !platform::FileExists(location + name))
            continue;
        const QString backups = location + QStringLiteral("\\Backups");
        const QString folder = backups + u'\\' + today;
        if (!makeFolder(backups) || !makeFolder(folder))
            return false;
        // The copy goes into the folder of the day, so it is never what is looked for here.
        if (!force && platform::FileExists(backups + name))
            continue;
        const QString title = QStringLiteral("Backing up Audio Wall lists - Part %1").arg(part);
        if (platform::CopyFileWithProgress(location + name, folder + name, title, true, false) !=
            platform::ShellCopied)
            return false;
    }
    return true;
}

} // namespace tolvex
