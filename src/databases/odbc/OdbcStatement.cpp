#include "databases/odbc/OdbcStatement.h"

#include "core/time/Dates.h"

#include <array>

namespace tolvex {

namespace {

using jet::ColumnType;

constexpr int LongestText = 4000;  // characters of a column with a declared size
constexpr SQLULEN TimeDigits = 23; // "2024-03-05 22:10:00.000"
constexpr int TimeDecimals = 3;
constexpr int NanosecondsInMillisecond = 1000000;

// A kind of the standard as the engine's.
constexpr struct {
    SQLSMALLINT server;
    ColumnType type;
} kinds[] = {
    {SQL_BIT, ColumnType::Boolean},
    {SQL_TINYINT, ColumnType::Byte},
    {SQL_SMALLINT, ColumnType::Integer},
    {SQL_INTEGER, ColumnType::Long},
    {SQL_BIGINT, ColumnType::Double},
    {SQL_REAL, ColumnType::Single},
    {SQL_FLOAT, ColumnType::Double},
    {SQL_DOUBLE, ColumnType::Double},
    {SQL_DECIMAL, ColumnType::Double},
    {SQL_NUMERIC, ColumnType::Double},
    {SQL_TYPE_TIMESTAMP, ColumnType::DateTime},
    {SQL_TYPE_DATE, ColumnType::DateTime},
    {SQL_TYPE_TIME, ColumnType::DateTime},
    {SQL_CHAR, ColumnType::Text},
    {SQL_VARCHAR, ColumnType::Text},
    {SQL_WCHAR, ColumnType::Text},
    {SQL_WVARCHAR, ColumnType::Text},
    {SQL_LONGVARCHAR, ColumnType::Memo},
    {SQL_WLONGVARCHAR, ColumnType::Memo},
    {SQL_BINARY, ColumnType::Binary},
    {SQL_VARBINARY, ColumnType::Binary},
    {SQL_LONGVARBINARY, ColumnType::Ole},
};

// The kind used for a null of a column.
SQLSMALLINT serverKind(ColumnType type) {
    if (type == ColumnType::Text || type == ColumnType::Memo)
        return SQL_WVARCHAR;
    for (const auto& kind : kinds)
        if (kind.type == type)
            return kind.server;
    return SQL_WVARCHAR;
}

// Types of a driver that are not in the list read as text.
OdbcColumn describe(const QString& name, SQLSMALLINT kind, SQLULEN size) {
    OdbcColumn column{name, ColumnType::Text, 0};
    for (const auto& known : kinds)
        if (known.server == kind)
            column.type = known.type;
    if (column.type != ColumnType::Text)
        return column;
    // A text without a limit is reported with zero characters, or very many.
    if (size == 0 || size > 2 * LongestText)
        column.type = ColumnType::Memo;
    else
        column.size = static_cast<int>(size);
    return column;
}

TIMESTAMP_STRUCT timeOf(const jet::Date& date) {
    const QDateTime time = FromSerialDate(date.days);
    TIMESTAMP_STRUCT parts{};
    parts.year = static_cast<SQLSMALLINT>(time.date().year());
    parts.month = static_cast<SQLUSMALLINT>(time.date().month());
    parts.day = static_cast<SQLUSMALLINT>(time.date().day());
    parts.hour = static_cast<SQLUSMALLINT>(time.time().hour());
    parts.minute = static_cast<SQLUSMALLINT>(time.time().minute());
    parts.second = static_cast<SQLUSMALLINT>(time.time().second());
    parts.fraction = static_cast<SQLUINTEGER>(time.time().msec()) * NanosecondsInMillisecond;
    return parts;
}

jet::Date dateOf(const TIMESTAMP_STRUCT& parts) {
    const int milliseconds = static_cast<int>(parts.fraction / NanosecondsInMillisecond);
    return {SerialDate(QDateTime(QDate(parts.year, parts.month, parts.day),
                                 QTime(parts.hour, parts.minute, parts.second, milliseconds)))};
}

} // namespace

OdbcStatement::OdbcStatement(OdbcConnection& connection)
    : connection_(connection) {
    if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_STMT, connection.handle(), &statement_)))
        connection.fail(SQL_HANDLE_DBC, connection.handle());
    // A driver without this limit uses its own.
    SQLSetStmtAttrW(statement_, SQL_ATTR_QUERY_TIMEOUT,
                    reinterpret_cast<SQLPOINTER>(SQLULEN{StatementSeconds}), SQL_IS_UINTEGER);
}

OdbcStatement::~OdbcStatement() {
    SQLFreeHandle(SQL_HANDLE_STMT, statement_);
}

void OdbcStatement::check(SQLRETURN result) {
    if (!SQL_SUCCEEDED(result) && result != SQL_NO_DATA)
        connection_.fail(SQL_HANDLE_STMT, statement_);
}

void OdbcStatement::prepare(const QString& text) {
    parameters_.clear();
    check(SQLPrepareW(statement_, ServerText(text), SQL_NTS));
}

void OdbcStatement::bindAt(SQLSMALLINT cType, SQLSMALLINT type, SQLULEN size, SQLSMALLINT digits,
                           SQLPOINTER data) {
    check(SQLBindParameter(statement_, static_cast<SQLUSMALLINT>(parameters_.size()), SQL_PARAM_INPUT, cType,
                           type, size, digits, data, 0, &parameters_.back().length));
}

void OdbcStatement::bind(const jet::Value& value, ColumnType type) {
    Parameter& parameter = parameters_.emplace_back();
    parameter.value = value;
    jet::Value& held = parameter.value;
    if (jet::IsNull(held)) {
        parameter.length = SQL_NULL_DATA;
        bindAt(SQL_C_WCHAR, serverKind(type), 1, 0, nullptr);
    } else if (const auto* flag = std::get_if<bool>(&held)) {
        parameter.flag = *flag ? 1 : 0;
        bindAt(SQL_C_BIT, SQL_BIT, 1, 0, &parameter.flag);
    } else if (auto* byte = std::get_if<std::uint8_t>(&held)) {
        bindAt(SQL_C_UTINYINT, SQL_TINYINT, 3, 0, byte);
    } else if (auto* integer = std::get_if<std::int16_t>(&held)) {
        bindAt(SQL_C_SSHORT, SQL_SMALLINT, 5, 0, integer);
    } else if (auto* whole = std::get_if<std::int32_t>(&held)) {
        bindAt(SQL_C_SLONG, SQL_INTEGER, 10, 0, whole);
    } else if (auto* single = std::get_if<float>(&held)) {
        bindAt(SQL_C_FLOAT, SQL_REAL, 24, 0, single);
    } else if (auto* number = std::get_if<double>(&held)) {
        bindAt(SQL_C_DOUBLE, SQL_DOUBLE, 53, 0, number);
    } else if (const auto* date = std::get_if<jet::Date>(&held)) {
        parameter.time = timeOf(*date);
        bindAt(SQL_C_TYPE_TIMESTAMP, SQL_TYPE_TIMESTAMP, TimeDigits, TimeDecimals, &parameter.time);
    } else if (auto* text = std::get_if<std::u16string>(&held)) {
        parameter.length = static_cast<SQLLEN>(text->size() * sizeof(char16_t));
        const bool isLong = text->size() > LongestText;
        bindAt(SQL_C_WCHAR, isLong ? SQL_WLONGVARCHAR : SQL_WVARCHAR, std::max<SQLULEN>(text->size(), 1), 0,
               text->data());
    } else if (auto* bytes = std::get_if<jet::Bytes>(&held)) {
        parameter.length = static_cast<SQLLEN>(bytes->size());
        const bool isLong = bytes->size() > 2 * LongestText;
        bindAt(SQL_C_BINARY, isLong ? SQL_LONGVARBINARY : SQL_VARBINARY, std::max<SQLULEN>(bytes->size(), 1),
               0, bytes->data());
    } else {
        throw DatabaseError{TypeMismatchError, QStringLiteral("Type mismatch")};
    }
}

qint64 OdbcStatement::execute() {
    check(SQLExecute(statement_));
    SQLLEN rows = 0;
    check(SQLRowCount(statement_, &rows));
    return rows;
}

void OdbcStatement::execute(const QString& text) {
    check(SQLExecDirectW(statement_, ServerText(text), SQL_NTS));
}

void OdbcStatement::columnsOf(const QString& schema, const QString& table) {
    const auto exactly = [&](QString name) {
        const QString& escape = connection_.searchEscape();
        if (escape.isEmpty())
            return name;
        for (const QString& sign : {escape, QStringLiteral("_"), QStringLiteral("%")})
            name.replace(sign, escape + sign);
        return name;
    };
    const QString schemaPattern = exactly(schema);
    const QString tablePattern = exactly(table);
    check(SQLColumnsW(statement_, nullptr, 0, schema.isEmpty() ? nullptr : ServerText(schemaPattern), SQL_NTS,
                      ServerText(tablePattern), SQL_NTS, nullptr, 0));
}

void OdbcStatement::indexesOf(const QString& schema, const QString& table) {
    check(SQLStatisticsW(statement_, nullptr, 0, schema.isEmpty() ? nullptr : ServerText(schema), SQL_NTS,
                         ServerText(table), SQL_NTS, SQL_INDEX_ALL, SQL_QUICK));
}

QList<OdbcColumn> OdbcStatement::columns() {
    SQLSMALLINT count = 0;
    check(SQLNumResultCols(statement_, &count));
    QList<OdbcColumn> columns;
    for (SQLSMALLINT number = 1; number <= count; ++number) {
        std::array<SQLWCHAR, 256> name{};
        SQLSMALLINT length = 0;
        SQLSMALLINT kind = 0;
        SQLULEN size = 0;
        SQLSMALLINT decimals = 0;
        SQLSMALLINT nullable = 0;
        check(SQLDescribeColW(statement_, static_cast<SQLUSMALLINT>(number), name.data(),
                              static_cast<SQLSMALLINT>(name.size()), &length, &kind, &size, &decimals,
                              &nullable));
        columns += describe(QString::fromUtf16(reinterpret_cast<const char16_t*>(name.data())), kind, size);
    }
    return columns;
}

bool OdbcStatement::fetch() {
    const SQLRETURN result = SQLFetch(statement_);
    check(result);
    return result != SQL_NO_DATA;
}

// A value of a known size; null if it is null.
template<typename Held>
jet::Value OdbcStatement::fixed(int column, SQLSMALLINT kind) {
    Held held{};
    SQLLEN length = 0;
    check(SQLGetData(statement_, static_cast<SQLUSMALLINT>(column), kind, &held, sizeof held, &length));
    if (length == SQL_NULL_DATA)
        return {};
    if constexpr (std::is_same_v<Held, TIMESTAMP_STRUCT>)
        return dateOf(held);
    else if constexpr (std::is_same_v<Held, SQLCHAR>)
        return held != 0;
    else
        return held;
}

// A value of any length, piece by piece; false if it is null.
template<typename Element, typename Whole>
bool OdbcStatement::pieces(int column, SQLSMALLINT kind, Whole& whole) {
    std::array<Element, 2048> piece{};
    const std::size_t ending = kind == SQL_C_WCHAR ? 1 : 0; // each piece of text ends with a zero
    for (;;) {
        SQLLEN length = 0;
        const SQLRETURN result = SQLGetData(statement_, static_cast<SQLUSMALLINT>(column), kind, piece.data(),
                                            sizeof piece, &length);
        check(result);
        if (result == SQL_NO_DATA)
            return true;
        if (length == SQL_NULL_DATA)
            return false;
        const std::size_t room = piece.size() - ending;
        const bool isWhole =
            length != SQL_NO_TOTAL && static_cast<std::size_t>(length) <= room * sizeof(Element);
        const std::size_t count = isWhole ? static_cast<std::size_t>(length) / sizeof(Element) : room;
        whole.insert(whole.end(), piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(count));
        if (isWhole)
            return true;
    }
}

jet::Value OdbcStatement::value(int column, ColumnType type) {
    switch (type) {
    case ColumnType::Boolean: {
        const jet::Value flag = fixed<SQLCHAR>(column, SQL_C_BIT);
        return jet::IsNull(flag) ? jet::Value(false) : flag;
    }
    case ColumnType::Byte:
        return fixed<std::uint8_t>(column, SQL_C_UTINYINT);
    case ColumnType::Integer:
        return fixed<std::int16_t>(column, SQL_C_SSHORT);
    case ColumnType::Long:
        return fixed<std::int32_t>(column, SQL_C_SLONG);
    case ColumnType::Single:
        return fixed<float>(column, SQL_C_FLOAT);
    case ColumnType::Double:
        return fixed<double>(column, SQL_C_DOUBLE);
    case ColumnType::DateTime:
        return fixed<TIMESTAMP_STRUCT>(column, SQL_C_TYPE_TIMESTAMP);
    case ColumnType::Binary:
    case ColumnType::Ole: {
        jet::Bytes bytes;
        return pieces<std::uint8_t>(column, SQL_C_BINARY, bytes) ? jet::Value(std::move(bytes))
                                                                 : jet::Value();
    }
    default: {
        std::u16string text;
        return pieces<char16_t>(column, SQL_C_WCHAR, text) ? jet::Value(std::move(text)) : jet::Value();
    }
    }
}

QString OdbcStatement::text(int column) {
    const jet::Value held = value(column, ColumnType::Memo);
    const auto* text = std::get_if<std::u16string>(&held);
    return text ? QString::fromStdU16String(*text) : QString();
}

int OdbcStatement::number(int column) {
    const jet::Value held = value(column, ColumnType::Long);
    const auto* number = std::get_if<std::int32_t>(&held);
    return number ? *number : 0;
}

} // namespace tolvex
