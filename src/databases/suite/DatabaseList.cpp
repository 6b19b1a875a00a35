#include "databases/suite/DatabaseList.h"

#include "core/report/Folders.h"
#include "core/text/PathNames.h"
#include "databases/store/SuiteDatabase.h"
#include "databases/suite/DatabaseFiles.h"

namespace tolvex {

namespace {

constexpr qint64 PageSize = 4096;

// Invalid for a field that the table does not have.
QVariant optionalField(SuiteRecordset& row, const char* field) {
    try {
        return row.value(QLatin1String(field));
    } catch (const DatabaseError& error) {
        if (error.number != ItemNotFoundError)
            throw;
        return {};
    }
}

void readDescription(ListedDatabase& database) {
    const auto open = OpenSuiteDatabase(database.path);
    const auto row = open->open(QStringLiteral("Description"), RecordsetMode::Table);
    if (row->eof())
        return;
    const QVariant type = row->value(QStringLiteral("Type"));
    if (!type.isValid())
        return;
    database.type = type.toInt();
    database.description = row->value(QStringLiteral("Description")).toString();
    database.version = optionalField(*row, "Version").toFloat();
    database.lastAccessed = optionalField(*row, "LastAccessed").toString();
    database.isCutShort = open->engineVersion() == QStringLiteral("4.0") && database.size % PageSize != 0;
}

} // namespace

QString CutShortText(const QString& name) {
    return QStringLiteral("The end of %1 is missing: it is not as long as it was written.").arg(name);
}

QStringList DatabaseFilesIn(const QString& folder) {
    QStringList files;
    const QString path = folder.endsWith(u'\\') ? folder : folder + u'\\';
    for (const QString& name : platform::FolderNames(path))
        if (name.endsWith(QStringLiteral(".mdb"), Qt::CaseInsensitive) && FileLength(path + name) >= 0)
            files += path + name;
    return files;
}

ListedDatabase LookAtDatabase(const QString& path) {
    ListedDatabase database;
    database.path = path;
    database.fileName = FileNameOf(path);
    database.baseName = PathWithoutExtension(database.fileName);
    database.size = FileLength(path);
    database.modified = platform::FileModified(path);
    database.openOn = ComputersUsing(path);
    try {
        readDescription(database);
    } catch (const DatabaseError& error) {
        database.error = error.number;
        database.errorText = error.text;
    }
    return database;
}

bool DatabaseLister::list(const QString& folder, platform::Progress& progress,
                          const std::function<void(const ListedDatabase& database)>& found) {
    // The drive's thread may outlive this call: it owns what it fills.
    const auto files = std::make_shared<QStringList>();
    const auto listed = asker_.ask(
        {folder}, [files](const QString& path) { return *files = DatabaseFilesIn(path), 0; }, progress);
    if (!listed)
        return false;
    if (listed->isEmpty())
        return true;
    for (const QString& file : std::as_const(*files)) {
        const auto database = std::make_shared<ListedDatabase>();
        const auto answer = asker_.ask(
            {file}, [database](const QString& path) { return *database = LookAtDatabase(path), 0; },
            progress);
        if (!answer)
            return false;
        if (answer->isEmpty())
            return true;
        found(*database);
    }
    return true;
}

} // namespace tolvex
