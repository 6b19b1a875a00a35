#include "databases/store/SuiteDatabase.h"

#include "databases/jet/JetDatabase.h"
#include "databases/odbc/OdbcDatabase.h"

#include <algorithm>

namespace tolvex {

bool SuiteDatabase::Shape::has(const Index& index) const {
    const auto isKey = [&](const QStringList& key) {
        return key.size() == static_cast<qsizetype>(index.fields.size()) &&
               std::all_of(index.fields.begin(), index.fields.end(), [&](const char* field) {
                   return key.contains(QLatin1String(field), Qt::CaseInsensitive);
               });
    };
    return indexes.contains(QLatin1String(index.name), Qt::CaseInsensitive) ||
           (index.unique && std::any_of(keys.begin(), keys.end(), isKey));
}

DatabaseTransaction::~DatabaseTransaction() {
    try {
        if (database_)
            database_->rollback();
    } catch (const DatabaseError&) {
        // The error that made the transaction fail was already thrown.
    }
}

std::unique_ptr<SuiteDatabase> OpenSuiteDatabase(const QString& name, const QString& connect) {
    return connect.isEmpty() ? OpenJetDatabase(name) : OpenServerDatabase(name, connect);
}

std::unique_ptr<DatabaseServer> ConnectToServer(const QString& connect) {
    return OpenServer(connect);
}

QString DatabasesStatement(const QString& name) {
    const QString all = QStringLiteral("Select * from master..sysdatabases");
    return name.isNull() ? all : all + QStringLiteral(" WHERE Name=") + QuotedText(name);
}

QString QuotedText(const QString& text, QChar quote) {
    QString doubled = text;
    doubled.replace(quote, QString(2, quote));
    return quote + doubled + quote;
}

QString WithDatabaseExtension(const QString& name) {
    const QString extension = QStringLiteral(".mdb");
    return name.right(4).toLower() == extension ? name : name + extension;
}

} // namespace tolvex
