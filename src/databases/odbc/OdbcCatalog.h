// Tables on a server, and statements about them, in the dialect of SQL servers with all names in brackets.
#pragma once

#include "databases/odbc/OdbcStatement.h"
#include "databases/store/Schema.h"

#include <optional>

namespace tolvex {

// A name in brackets, with closing brackets doubled: it ends where it should, whatever it holds.
QString BracketedName(const QString& name);
// The same for a table's name as the suite writes it: "dbo.Settings" also names the owner.
QString BracketedTable(const QString& table);
// "[A], [B]".
QString BracketedList(const QStringList& names);

struct OdbcIndex {
    QString name;
    bool unique = false;
    QStringList fields;
};

struct OdbcTable {
    struct Field {
        QString name;
        QString type; // as a statement declares it: "nvarchar(20)"
        bool nullable = true;
    };
    QString name; // as the suite writes it
    std::vector<Field> fields;
    std::vector<OdbcIndex> indexes;

    // Fields that identify a row: those of the index "Main" or else of any unique one. Empty: there is none.
    QStringList key() const;
};

// What the server's catalogue says about a table; nothing if it has none of the name. If several owners have
// one and the name does not say which, it is that of "dbo".
std::optional<OdbcTable> FindServerTable(OdbcConnection& connection, const QString& name);

// The declaration of a kind of field. A flag is never null, as in a file; a text of size 0 has 255
// characters. Nulls are allowed explicitly, since the default depends on the server's settings.
QString ServerType(const Field& field);

// The statements that make an index, in order. A primary key allows no nulls: its fields become NOT NULL.
QStringList IndexStatements(const OdbcTable& table, const Index& index);

} // namespace tolvex
