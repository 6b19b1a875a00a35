#include "databases/suite/DatabaseNames.h"

#include "core/text/PathNames.h"
#include "databases/suite/DatabaseFiles.h"
#include "databases/suite/DatabaseInformation.h"
#include "platform/files/Files.h"

namespace tolvex {

QString DatabaseNameFault(const QString& name) {
    if (name.contains(u'\\') || name.contains(u'.'))
        return QStringLiteral("You must specify a valid reference name");
    if (name.toLower() == QStringLiteral("backup"))
        return QStringLiteral("The name 'Backup' is reserved and cannot be used!");
    return FileNameFault(name);
}

QString RenamedDatabase(const QString& given) {
    return given.contains(u'.') ? given : given + QStringLiteral(".MDB");
}

QStringList DeletionQuestions(const QString& title, const QString& description) {
    QStringList questions;
    for (const char* start : {"Are you sure", "Are you really sure"})
        questions += QStringLiteral("%1 that you want to delete this %2 (%3)?")
                         .arg(QLatin1String(start), title, description);
    return questions;
}

bool CopyDatabase(const QString& from, const QString& to,
                  const std::function<bool(qint64 done, qint64 total)>& step) {
    if (!CopyDatabaseFile(from, to, step))
        return false;
    DatabaseInformation source;
    if (GetDatabaseInformation(to, &source, true) == 0 &&
        ChangeDatabaseDescription(to, QStringLiteral("Copy of ") + source.Description))
        return true;
    platform::RemoveFile(to);
    throw DatabaseError{0, QStringLiteral("The description of the copy could not be changed.")};
}

} // namespace tolvex
