#include "databases/compaction/CompactRepair.h"

#include "core/report/Folders.h"
#include "core/text/PathNames.h"
#include "databases/compaction/CompactionStorage.h"
#include "databases/compaction/DeadCopies.h"
#include "databases/jet/JetDatabase.h"
#include "databases/store/Report.h"
#include "jet/CompactInPlace.h"
#include "platform/Prompts.h"
#include "platform/files/Files.h"

#include <QRandomGenerator>

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

QString backupName(const QString& name, int number) {
    return PathWithoutExtension(name) + QStringLiteral("-%1.BAK").arg(number, 4, 10, QLatin1Char('0'));
}

// A free name. Nothing is made under it yet: files are noted before they are made.
QString temporaryName(const QString& folder) {
    constexpr quint32 numbers = 0x10000;
    QString name;
    do
        name = QStringLiteral("MDB%1.TMP")
                   .arg(QRandomGenerator::global()->bounded(numbers), 4, 16, QLatin1Char('0'))
                   .toUpper();
    while (platform::FileExists(folder + u'\\' + name));
    return name;
}

// If a file's first page is not a database's, it is read once more under a page of a new database. Throws
// DatabaseError, or CompactionStopped.
void compact(const QString& name, platform::Progress* progress, const jet::OnLoss& lost) {
    const std::string path = EnginePath(name);
    const jet::InPlaceNames names{temporaryName(FolderOf(name)).toStdString(),
                                  [&](int number) { return EnginePath(backupName(name, number)); }};
    CompactionStorage storage(path, progress);
    try {
        try {
            jet::CompactInPlace(storage, path, names, {}, lost);
        } catch (const jet::Error& error) {
            if (error.code() != jet::ErrorNumber::Unrecognised || !storage.replaceFirstPage())
                throw;
            jet::CompactInPlace(storage, path, names, {}, lost);
        }
    } catch (const jet::Error& error) {
        throw FromEngine(error, name);
    }
}

bool rewrite(const QString& name, bool silent, const jet::OnLoss& lost) {
    RemoveDeadCopies(FolderOf(name));
    try {
        const platform::PointerKeeper pointer(platform::Pointer::Wait);
        const auto progress =
            silent ? nullptr
                   : platform::prompts().beginProgress(QStringLiteral("Compact/Repair Database"), true);
        compact(name, progress.get(), lost);
    } catch (const DatabaseError& error) {
        Report(QStringLiteral("Compacting/Repairing the database: ") + name.trimmed(), error);
        return false;
    } catch (const CompactionStopped&) {
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
