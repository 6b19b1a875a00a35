#include "databases/CompactRepair.h"

#include "core/Folders.h"
#include "core/PathNames.h"
#include "core/ProblemReport.h"
#include "databases/CompactionStorage.h"
#include "databases/JetDatabase.h"
#include "databases/Report.h"
#include "jet/Compact.h"
#include "platform/Prompts.h"

namespace tolvex {

namespace {

using platform::Answer;
using platform::Buttons;
using platform::Icon;

QString pickDatabase(const QString& initialFolder) {
    platform::FileQuestion question;
    question.title = QStringLiteral("Select Database to Compact");
    question.filter = QStringLiteral("Databases|*.MDB");
    question.folder = initialFolder + u'\\';
    question.fileName = QStringLiteral("*.MDB");
    const QString chosen = platform::prompts().pickFile(question).value_or(QString());
    return FileLength(chosen) > 0 ? chosen : QString();
}

bool isConfirmed(const QString& name) {
    const platform::Message question{
        QStringLiteral("Warning : The database must be closed on all computers before you can "
                       "Compact/Repair it!\nYou should ensure that you have a backup of the database before "
                       "proceeding\n\nAre you sure you want to continue compacting/repairing:\n\n\t") +
            name,
        Icon::Question, Buttons::YesNo, Answer::No, QStringLiteral("Compact/Repair Database")};
    return platform::prompts().ask(question) == Answer::Yes;
}

QString backupName(const QString& name) {
    for (int number = 1;; ++number) {
        QString backup =
            PathWithoutExtension(name) + QStringLiteral("-%1.BAK").arg(number, 4, 10, QLatin1Char('0'));
        if (FileLength(backup) < 0)
            return backup;
    }
}

// Compacts into a new file. A file whose first page is no database's is read once more under a page of a new
// database. Throws DatabaseError, or CompactionStopped.
void compact(const QString& from, const QString& to, platform::Progress* progress, const jet::OnLoss& lost) {
    const std::string source = EnginePath(from);
    const std::string target = EnginePath(to);
    CompactionStorage storage(source, progress);
    try {
        try {
            jet::CompactDatabase(storage, source, target, {}, lost);
        } catch (const jet::Error& error) {
            if (error.code() != jet::ErrorNumber::Unrecognised || !storage.replaceFirstPage())
                throw;
            jet::CompactDatabase(storage, source, target, {}, lost);
        }
    } catch (const jet::Error& error) {
        throw FromEngine(error);
    }
}

// Puts the new file in the place of the old one; 0 or an error number, and then the old one is in its place.
int exchange(const QString& name, const QString& compacted) {
    const QString backup = backupName(name);
    int error = platform::RenameFile(name, backup);
    if (error != 0)
        return error;
    error = platform::RenameFile(compacted, name);
    if (error != 0)
        platform::RenameFile(backup, name);
    return error;
}

bool rewrite(const QString& name, bool silent, const jet::OnLoss& lost) {
    const QString action = QStringLiteral("Compacting/Repairing the database: ") + name.trimmed();
    const QString temporary = TempFileName(FolderOf(name), QStringLiteral("MDB"));
    if (temporary.isEmpty())
        return false;
    try {
        const platform::PointerKeeper pointer(platform::Pointer::Wait);
        const auto progress =
            silent ? nullptr
                   : platform::prompts().beginProgress(QStringLiteral("Compact/Repair Database"), true);
        compact(name, temporary, progress.get(), lost);
    } catch (const DatabaseError& error) {
        Report(action, error);
        return false;
    } catch (const CompactionStopped&) {
        return false;
    }
    if (const int error = exchange(name, temporary)) {
        platform::RemoveFile(temporary);
        ProblemReport(action, error);
        return false;
    }
    return true;
}

} // namespace

bool CompactRepairDatabase(const QString& fileName, bool withDialog, const QString& initialFolder,
                           bool silent, const jet::OnLoss& lost) {
    QString name = fileName;
    if (name.isEmpty() && withDialog)
        name = pickDatabase(initialFolder);
    if (name.isEmpty() || (!silent && !isConfirmed(name)) ||
        !rewrite(
            name, silent, lost ? lost : [](const jet::Fault&) {}))
        return false;
    if (!silent)
        platform::prompts().ask(
            {QStringLiteral("Your Database has been successfully Compacted/Repaired and the old version "
                            "saved in a new file with a '.BAK' extension"),
             Icon::Information});
    return true;
}

} // namespace tolvex
