#include "databases/SuiteDatabase.h"

#include "databases/JetDatabase.h"

namespace tolvex {

namespace {

// Nothing here speaks to servers.
[[noreturn]] void refuseServer(const QString& what) {
    throw DatabaseError{ConnectionFailed,
                        QStringLiteral("ODBC--connection to '%1' failed: this program opens "
                                       "database files only, no databases on a server.")
                            .arg(what)};
}

} // namespace

std::unique_ptr<SuiteDatabase> OpenSuiteDatabase(const QString& name, const QString& connect) {
    if (!connect.isEmpty())
        refuseServer(name);
    return OpenJetDatabase(name);
}

std::unique_ptr<DatabaseServer> ConnectToServer(const QString& connect) {
    refuseServer(connect);
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
