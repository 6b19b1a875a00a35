#include "databases/odbc/OdbcRows.h"

#include "databases/jet/JetDatabase.h"

namespace tolvex {

namespace {

[[noreturn]] void refuse(jet::ErrorNumber number) {
    throw FromEngine(jet::Error(number));
}

OdbcRow readRow(OdbcStatement& statement, const QList<OdbcColumn>& columns) {
    OdbcRow row;
    for (qsizetype i = 0; i < columns.size(); ++i)
        row.push_back(statement.value(static_cast<int>(i) + 1, columns[i].type));
    return row;
}

QString keyCriterion(const OdbcRowSource& source, const OdbcRow& row) {
    QStringList terms;
    for (const std::size_t column : source.key)
        terms += BracketedName(source.columns[static_cast<qsizetype>(column)].name) +
                 (jet::IsNull(row[column]) ? QStringLiteral(" IS NULL") : QStringLiteral(" = ?"));
    return terms.join(QStringLiteral(" AND "));
}

void bindKey(OdbcStatement& statement, const OdbcRowSource& source, const OdbcRow& row) {
    for (const std::size_t column : source.key)
        if (!jet::IsNull(row[column]))
            statement.bind(row[column], source.columns[static_cast<qsizetype>(column)].type);
}

QStringList namesOf(const OdbcRowSource& source, const std::vector<bool>& set) {
    QStringList names;
    for (std::size_t i = 0; i < set.size(); ++i)
        if (set[i])
            names += source.columns[static_cast<qsizetype>(i)].name;
    return names;
}

void bindValues(OdbcStatement& statement, const OdbcRowSource& source, const OdbcRow& values,
                const std::vector<bool>& set) {
    for (std::size_t i = 0; i < set.size(); ++i)
        if (set[i])
            statement.bind(values[i], source.columns[static_cast<qsizetype>(i)].type);
}

// `hint` follows the table's name.
OdbcRow readAgain(OdbcConnection& connection, const OdbcRowSource& source, const OdbcRow& known,
                  const char* hint) {
    QStringList fields;
    for (const OdbcColumn& column : source.columns)
        fields += column.name;
    OdbcStatement statement(connection);
    statement.prepare(QStringLiteral("SELECT %1 FROM %2%3 WHERE %4")
                          .arg(BracketedList(fields), BracketedTable(source.table), QLatin1String(hint),
                               keyCriterion(source, known)));
    bindKey(statement, source, known);
    statement.execute();
    if (!statement.fetch())
        refuse(jet::ErrorNumber::RecordDeleted);
    return readRow(statement, source.columns);
}

// Whether the row with the key of `values` exists with all values that were set.
bool isThere(OdbcConnection& connection, const OdbcRowSource& source, const OdbcRow& values,
             const std::vector<bool>& set) {
    try {
        const OdbcRow now = readAgain(connection, source, values, "");
        for (std::size_t i = 0; i < set.size(); ++i)
            if (set[i] && now[i] != values[i])
                return false;
        return true;
    } catch (const DatabaseError& error) {
        if (error.number != RecordDeletedError)
            throw;
        return false;
    }
}

} // namespace

OdbcRows ReadRows(OdbcConnection& connection, const QString& text) {
    OdbcStatement statement(connection);
    statement.execute(text);
    OdbcRows read;
    read.columns = statement.columns();
    while (statement.fetch())
        read.rows.push_back(readRow(statement, read.columns));
    return read;
}

OdbcRow ReadRowAgain(OdbcConnection& connection, const OdbcRowSource& source, const OdbcRow& known) {
    return readAgain(connection, source, known, "");
}

void InsertRow(OdbcConnection& connection, const OdbcRowSource& source, const OdbcRow& values,
               const std::vector<bool>& set, bool again) {
    const auto insert = [&] {
        const QStringList fields = namesOf(source, set);
        const QString table = BracketedTable(source.table);
        OdbcStatement statement(connection);
        if (fields.isEmpty()) {
            statement.execute(QStringLiteral("INSERT INTO %1 DEFAULT VALUES").arg(table));
            return;
        }
        const QString marks = QStringList(fields.size(), QStringLiteral("?")).join(QStringLiteral(", "));
        statement.prepare(
            QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)").arg(table, BracketedList(fields), marks));
        bindValues(statement, source, values, set);
        statement.execute();
    };
    try {
        insert();
    } catch (const DatabaseError& error) {
        if (error.number != DuplicateKeyError || !again || !isThere(connection, source, values, set))
            throw;
    }
}

void ChangeRow(OdbcConnection& connection, const OdbcRowSource& source, const OdbcRow& before,
               const OdbcRow& values, const std::vector<bool>& set, bool again) {
    const QStringList fields = namesOf(source, set);
    // The row is locked from the check to the change.
    OdbcTransaction transaction(connection);
    if (readAgain(connection, source, before, " WITH (UPDLOCK)") != before) {
        if (again && isThere(connection, source, values, set))
            return;
        refuse(jet::ErrorNumber::RecordChanged);
    }
    QStringList assignments;
    for (const QString& field : fields)
        assignments += BracketedName(field) + QStringLiteral(" = ?");
    OdbcStatement statement(connection);
    statement.prepare(QStringLiteral("UPDATE %1 SET %2 WHERE %3")
                          .arg(BracketedTable(source.table), assignments.join(QStringLiteral(", ")),
                               keyCriterion(source, before)));
    bindValues(statement, source, values, set);
    bindKey(statement, source, before);
    statement.execute();
    transaction.commit();
}

void DeleteRow(OdbcConnection& connection, const OdbcRowSource& source, const OdbcRow& row, bool again) {
    OdbcStatement statement(connection);
    statement.prepare(QStringLiteral("DELETE FROM %1 WHERE %2")
                          .arg(BracketedTable(source.table), keyCriterion(source, row)));
    bindKey(statement, source, row);
    if (statement.execute() == 0 && !again)
        refuse(jet::ErrorNumber::RecordDeleted);
}

} // namespace tolvex
