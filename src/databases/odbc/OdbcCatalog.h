// Tables on a server, and the statements about them: in the dialect of a SQL server, every name in brackets.
#pragma once

#include "databases/odbc/OdbcStatement.h"
#include "databases/store/Schema.h"

#include <optional>

namespace tolvex {

// A name in brackets, any closing one in it doubled: it ends where it should, whatever it holds.
QString BracketedName(const QString& name);
// The same for a table's name as the suite gives it: "dbo.Settings" names the owner too.
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
    QString name; // as the suite gives it
    std::vector<Field> fields;
    std::vector<OdbcIndex> indexes;

    // Fields that tell rows apart: those of the index "Main" or else of any unique one. Empty: there is none.
    QStringList key() const;
};

// What the server's catalogue says about a table; nothing when it has none of the name. Where several owners
// have one and the name does not say which, it is that of "dbo".
std::optional<OdbcTable> FindServerTable(OdbcConnection& connection, const QString& name);

// How a kind of field is declared. A flag is never null, as in a file; a text of size 0 has 255 characters.
// Nulls are allowed in so many words, since what a server makes of none depends on its settings.
QString ServerType(const Field& field);

// The statements that make an index, in their order. A primary key takes no nulls: its fields give them up.
QStringList IndexStatements(const OdbcTable& table, const Index& index);

} // namespace tolvex
