#include "databases/suite/FindDatabases.h"

#include "databases/store/Report.h"
#include "databases/store/SuiteDatabase.h"
#include "databases/suite/DatabaseInformation.h"
#include "platform/files/Files.h"

#include <algorithm>

namespace tolvex {

namespace {

// The server's own databases.
constexpr const char* serverDatabases[] = {"master", "model",        "msdb",
                                           "tempdb", "reportserver", "reportservertempdb"};

bool isServersOwn(const QString& name) {
    return name.contains(u'$') ||
           std::any_of(std::begin(serverDatabases), std::end(serverDatabases), [&](const char* own) {
               return name.compare(QLatin1String(own), Qt::CaseInsensitive) == 0;
           });
}

QStringList databasesOnServer(const QString& connect) {
    try {
        return ConnectToServer(connect)->databases(DatabasesStatement());
    } catch (const DatabaseError&) {
        return {};
    }
}

bool isOfType(const QString& name, qint32 type, const QString& connect) {
    DatabaseInformation information;
    return GetDatabaseInformation(name, &information, false, connect) == 0 && information.Type == type;
}

} // namespace

qint32 FindDatabaseOfType(const QString& folder, qint32 type, QString* firstName, qint16 maxCount,
                          const QString& connect) {
    firstName->clear();
    qint32 count = 0;
    if (connect.contains(QStringLiteral("odbc;"), Qt::CaseInsensitive)) {
        for (const QString& name : databasesOnServer(connect)) {
            if (!isServersOwn(name) && isOfType(name, type, connect) && ++count == maxCount)
                break;
        }
        return count;
    }
    const HeldReports reports(QStringLiteral("reading databases in ") + folder);
    const QString path = folder.endsWith(u'\\') ? folder : folder + u'\\';
    for (const QString& name : platform::FolderNames(path)) {
        if (!name.endsWith(QStringLiteral(".mdb"), Qt::CaseInsensitive) ||
            !isOfType(path + name, type, connect))
            continue;
        if (firstName->isEmpty())
            *firstName = name;
        if (++count == maxCount)
            break;
    }
    return count;
}

} // namespace tolvex
