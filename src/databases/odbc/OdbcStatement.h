// One statement on a connection: its parameters, its execution, the rows it returns. Values are the engine's:
// BIT is a flag and never null, whole numbers keep their size, MONEY, DECIMAL and BIGINT are doubles, all
// kinds of text are text, dates and times are dates.
//
// A typical server handles one statement at a time on a connection: read all rows, or drop the statement,
// before the next one. Everything throws DatabaseError.
#pragma once

#include "databases/odbc/OdbcConnection.h"
#include "jet/Value.h"

#include <deque>

namespace tolvex {

// A column of a result.
struct OdbcColumn {
    QString name;
    jet::ColumnType type = jet::ColumnType::Text;
    int size = 0; // characters of a Text; 0: none declared, or another kind
};

class OdbcStatement {
public:
    explicit OdbcStatement(OdbcConnection& connection);
    ~OdbcStatement();
    OdbcStatement(const OdbcStatement&) = delete;
    OdbcStatement& operator=(const OdbcStatement&) = delete;

    // The statement has "?" for its values, which are given in order. `type`: of the column for the value,
    // which a null needs. TypeMismatchError for kinds that no schema has.
    void prepare(const QString& text);
    void bind(const jet::Value& value, jet::ColumnType type);
    // Runs the prepared statement; returns the number of rows that it changed.
    qint64 execute();
    // Runs a statement without values.
    void execute(const QString& text);
    // The catalogue: columns of tables, with the standard's row layout. `schema` empty: of any schema.
    void columnsOf(const QString& schema, const QString& table);
    // Indexes of one table.
    void indexesOf(const QString& schema, const QString& table);

    // The columns of the result.
    QList<OdbcColumn> columns();
    // Moves to the next row; false if there is none.
    bool fetch();
    // A value of the row, by its number from 1; ask in rising order and once each.
    jet::Value value(int column, jet::ColumnType type);
    // The same as a text or a whole number; null is an empty text, or 0.
    QString text(int column);
    int number(int column);

private:
    struct Parameter {
        jet::Value value;
        TIMESTAMP_STRUCT time{};
        SQLCHAR flag = 0;
        SQLLEN length = 0;
    };
    template<typename Held>
    jet::Value fixed(int column, SQLSMALLINT kind);
    template<typename Element, typename Whole>
    bool pieces(int column, SQLSMALLINT kind, Whole& whole);
    void bindAt(SQLSMALLINT cType, SQLSMALLINT type, SQLULEN size, SQLSMALLINT digits, SQLPOINTER data);
    void check(SQLRETURN result);

    OdbcConnection& connection_;
    SQLHSTMT statement_ = SQL_NULL_HSTMT;
    std::deque<Parameter> parameters_; // must not move until execute()
};

} // namespace tolvex
