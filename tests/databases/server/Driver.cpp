// The test server as a driver that the driver manager loads: the calls of the standard that the suite's code
// and the manager make.
#include "databases/server/Server.h"

#include "jet/base/Value.h"

#include <sql.h>
#include <sqlext.h>

#include <cstring>
#include <vector>

namespace {

using namespace testserver;

struct Handle {
    std::vector<Fault> faults;
};

struct Connection : Handle {
    std::unique_ptr<Session> session;
    bool hasTimeLimit = false;
    const Handle* busy = nullptr; // the statement with rows left to fetch
};

struct Parameter {
    SQLSMALLINT kind = 0;
    const void* data = nullptr;
    const SQLLEN* length = nullptr;
};

struct Statement : Handle {
    explicit Statement(Connection* on)
        : connection(on) {}
    ~Statement() { isDone(); }
    // A connection handles one statement at a time, as in a common server.
    void begin() {
        if (connection->busy != nullptr && connection->busy != this)
            throw Fault{"HY000", 0, "[Test Server]Connection is busy with results for another command"};
        connection->busy = this;
    }
    void isDone() {
        if (connection->busy == this)
            connection->busy = nullptr;
    }
    Connection* connection;
    bool hasTimeLimit = false;
    Rows rows;
    bool waiting = false; // a row that was moved to and not fetched
    bool done = false;
    std::vector<Parameter> parameters;
    int column = 0; // being read piece by piece
    std::size_t offset = 0;
    SQLLEN changed = 0;
};

std::string textOf(const SQLWCHAR* text, SQLLEN length) {
    if (text == nullptr)
        return {};
    const auto* letters = reinterpret_cast<const char16_t*>(text);
    return jet::ToUtf8(length == SQL_NTS ? std::u16string_view(letters)
                                         : std::u16string_view(letters, static_cast<std::size_t>(length)));
}

// Copies a text with its terminating zero, as far as it fits, in letters; returns its full length.
SQLSMALLINT give(const std::string& text, SQLWCHAR* into, SQLSMALLINT room) {
    const std::u16string letters = jet::ToUtf16(text);
    if (into != nullptr && room > 0) {
        const std::size_t count = std::min(letters.size(), static_cast<std::size_t>(room) - 1);
        std::memcpy(into, letters.data(), count * sizeof(SQLWCHAR));
        into[count] = 0;
    }
    return static_cast<SQLSMALLINT>(letters.size());
}

// Runs a call; an exception becomes a diagnostic record of the handle.
template<typename Call>
SQLRETURN guarded(Handle& handle, Call call) {
    handle.faults.clear();
    try {
        return call();
    } catch (const Fault& fault) {
        handle.faults.push_back(fault);
        return SQL_ERROR;
    }
}

Connection& connectionOf(SQLHANDLE handle) {
    return *static_cast<Connection*>(handle);
}
Statement& statementOf(SQLHANDLE handle) {
    return *static_cast<Statement*>(handle);
}

void bindTime(sqlite3_stmt* rows, int number, const TIMESTAMP_STRUCT& time) {
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02u-%02u %02u:%02u:%02u.%03u", time.year, time.month, time.day,
                  time.hour, time.minute, time.second, time.fraction / 1000000u);
    sqlite3_bind_text(rows, number, text, -1, SQLITE_TRANSIENT);
}

void bind(sqlite3_stmt* rows, int number, const Parameter& parameter) {
    const auto bytes = parameter.length != nullptr ? *parameter.length : 0;
    if (bytes == SQL_NULL_DATA) {
        sqlite3_bind_null(rows, number);
        return;
    }
    switch (parameter.kind) {
    case SQL_C_WCHAR:
        sqlite3_bind_text16(rows, number, parameter.data, static_cast<int>(bytes), SQLITE_TRANSIENT);
        break;
    case SQL_C_BIT:
    case SQL_C_UTINYINT:
        sqlite3_bind_int(rows, number, *static_cast<const SQLCHAR*>(parameter.data));
        break;
    case SQL_C_SSHORT:
        sqlite3_bind_int(rows, number, *static_cast<const SQLSMALLINT*>(parameter.data));
        break;
    case SQL_C_SLONG:
        sqlite3_bind_int(rows, number, *static_cast<const SQLINTEGER*>(parameter.data));
        break;
    case SQL_C_FLOAT:
        sqlite3_bind_double(rows, number, *static_cast<const SQLREAL*>(parameter.data));
        break;
    case SQL_C_DOUBLE:
        sqlite3_bind_double(rows, number, *static_cast<const SQLDOUBLE*>(parameter.data));
        break;
    case SQL_C_TYPE_TIMESTAMP:
        bindTime(rows, number, *static_cast<const TIMESTAMP_STRUCT*>(parameter.data));
        break;
    default:
        throw Fault{"07006", 0, "[Test Server]A parameter of an unknown kind."};
    }
}

void start(Statement& statement, const std::string& sql) {
    statement.rows = statement.connection->session->prepare(sql, statement.hasTimeLimit);
    statement.changed = 0;
}

SQLRETURN run(Statement& statement) {
    statement.waiting = statement.done = false;
    if (!statement.rows)
        return SQL_SUCCESS;
    statement.begin();
    sqlite3_reset(statement.rows.get());
    for (std::size_t i = 0; i < statement.parameters.size(); ++i)
        bind(statement.rows.get(), static_cast<int>(i) + 1, statement.parameters[i]);
    statement.waiting = statement.connection->session->step(statement.rows);
    statement.done = !statement.waiting;
    if (statement.done)
        statement.isDone();
    if (sqlite3_column_count(statement.rows.get()) > 0)
        return SQL_SUCCESS;
    statement.changed = sqlite3_changes(sqlite3_db_handle(statement.rows.get()));
    return statement.changed == 0 && sqlite3_stmt_readonly(statement.rows.get()) == 0 ? SQL_NO_DATA
                                                                                      : SQL_SUCCESS;
}

struct Type {
    SQLSMALLINT kind;
    SQLULEN size;
};

Type typeOf(sqlite3_stmt* rows, int column) {
    const char* declared = sqlite3_column_decltype(rows, column);
    const std::string type = declared != nullptr ? declared : "";
    if (type == "BIT")
        return {SQL_BIT, 1};
    if (type == "SMALLINT")
        return {SQL_SMALLINT, 5};
    if (type == "INT")
        return {SQL_INTEGER, 10};
    if (type == "REAL")
        return {SQL_REAL, 24};
    if (type == "FLOAT")
        return {SQL_FLOAT, 53};
    if (type == "DATETIME")
        return {SQL_TYPE_TIMESTAMP, 23};
    const std::size_t size = type.find('(');
    return {SQL_WVARCHAR, size == std::string::npos ? 0 : std::stoul(type.substr(size + 1))};
}

// A text, piece by piece.
SQLRETURN giveText(Statement& statement, int column, SQLPOINTER into, SQLLEN room, SQLLEN* length) {
    const auto* all = static_cast<const char*>(sqlite3_column_text16(statement.rows.get(), column));
    const auto bytes = static_cast<std::size_t>(sqlite3_column_bytes16(statement.rows.get(), column));
    if (statement.offset > 0 && statement.offset >= bytes)
        return SQL_NO_DATA;
    const std::size_t left = bytes - statement.offset;
    const std::size_t count = std::min(left, static_cast<std::size_t>(room) - sizeof(SQLWCHAR));
    std::memcpy(into, all + statement.offset, count);
    std::memset(static_cast<char*>(into) + count, 0, sizeof(SQLWCHAR));
    *length = static_cast<SQLLEN>(left);
    statement.offset += count;
    if (count == left)
        return SQL_SUCCESS;
    statement.faults.push_back({"01004", 0, "[Test Server]String data, right truncated"});
    return SQL_SUCCESS_WITH_INFO;
}

SQLRETURN giveValue(Statement& statement, int column, SQLSMALLINT kind, SQLPOINTER into, SQLLEN room,
                    SQLLEN* length) {
    sqlite3_stmt* rows = statement.rows.get();
    if (column < statement.column)
        throw Fault{"07009", 0, "[Test Server]Columns are given in their order."};
    if (column != statement.column)
        statement.offset = 0;
    statement.column = column;
    if (sqlite3_column_type(rows, column) == SQLITE_NULL) {
        *length = SQL_NULL_DATA;
        return SQL_SUCCESS;
    }
    TIMESTAMP_STRUCT time{};
    switch (kind) {
    case SQL_C_WCHAR:
        return giveText(statement, column, into, room, length);
    case SQL_C_BIT:
        *static_cast<SQLCHAR*>(into) = static_cast<SQLCHAR>(sqlite3_column_int(rows, column));
        return SQL_SUCCESS;
    case SQL_C_SSHORT:
        *static_cast<SQLSMALLINT*>(into) = static_cast<SQLSMALLINT>(sqlite3_column_int(rows, column));
        return SQL_SUCCESS;
    case SQL_C_SLONG:
        *static_cast<SQLINTEGER*>(into) = sqlite3_column_int(rows, column);
        return SQL_SUCCESS;
    case SQL_C_FLOAT:
        *static_cast<SQLREAL*>(into) = static_cast<SQLREAL>(sqlite3_column_double(rows, column));
        return SQL_SUCCESS;
    case SQL_C_DOUBLE:
        *static_cast<SQLDOUBLE*>(into) = sqlite3_column_double(rows, column);
        return SQL_SUCCESS;
    case SQL_C_TYPE_TIMESTAMP:
        if (std::sscanf(reinterpret_cast<const char*>(sqlite3_column_text(rows, column)),
                        "%4hd-%2hu-%2hu %2hu:%2hu:%2hu.%3u", &time.year, &time.month, &time.day, &time.hour,
                        &time.minute, &time.second, &time.fraction) < 3)
            throw Fault{"22007", 241, "[Test Server]Conversion failed when converting date and/or time."};
        time.fraction *= 1000000u;
        std::memcpy(into, &time, sizeof time);
        return SQL_SUCCESS;
    default:
        throw Fault{"07006", 0, "[Test Server]A result of an unknown kind."};
    }
}

} // namespace

#define DRIVER_CALL extern "C" __attribute__((visibility("default"))) SQLRETURN

DRIVER_CALL SQLAllocHandle(SQLSMALLINT kind, SQLHANDLE parent, SQLHANDLE* handle) {
    if (kind == SQL_HANDLE_ENV)
        *handle = new Handle;
    else if (kind == SQL_HANDLE_DBC)
        *handle = static_cast<Handle*>(new Connection);
    else if (kind == SQL_HANDLE_STMT)
        *handle = static_cast<Handle*>(new Statement(&connectionOf(parent)));
    else
        return SQL_ERROR;
    return SQL_SUCCESS;
}

DRIVER_CALL SQLFreeHandle(SQLSMALLINT kind, SQLHANDLE handle) {
    if (kind == SQL_HANDLE_ENV)
        delete static_cast<Handle*>(handle);
    else if (kind == SQL_HANDLE_DBC)
        delete &connectionOf(handle);
    else
        delete &statementOf(handle);
    return SQL_SUCCESS;
}

DRIVER_CALL SQLSetEnvAttr(SQLHENV, SQLINTEGER, SQLPOINTER, SQLINTEGER) {
    return SQL_SUCCESS;
}

DRIVER_CALL SQLSetConnectAttrW(SQLHDBC handle, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER) {
    Connection& connection = connectionOf(handle);
    if (attribute == SQL_ATTR_LOGIN_TIMEOUT)
        connection.hasTimeLimit = value != nullptr;
    if (attribute == SQL_ATTR_AUTOCOMMIT && connection.session)
        connection.session->setAutomaticCommit(value != nullptr);
    return SQL_SUCCESS;
}

DRIVER_CALL SQLSetStmtAttrW(SQLHSTMT handle, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER) {
    if (attribute == SQL_ATTR_QUERY_TIMEOUT)
        statementOf(handle).hasTimeLimit = value != nullptr;
    return SQL_SUCCESS;
}

DRIVER_CALL SQLDriverConnectW(SQLHDBC handle, SQLHWND, SQLWCHAR* attributes, SQLSMALLINT length, SQLWCHAR*,
                              SQLSMALLINT, SQLSMALLINT*, SQLUSMALLINT completion) {
    Connection& connection = connectionOf(handle);
    return guarded(connection, [&] {
        if (completion != SQL_DRIVER_NOPROMPT || !connection.hasTimeLimit)
            throw Fault{"HY000", 0, "[Test Server]This connection could wait for ever."};
        connection.session = std::make_unique<Session>(textOf(attributes, length));
        return SQL_SUCCESS;
    });
}

DRIVER_CALL SQLDisconnect(SQLHDBC handle) {
    connectionOf(handle).session.reset();
    return SQL_SUCCESS;
}

DRIVER_CALL SQLGetInfoW(SQLHDBC handle, SQLUSMALLINT what, SQLPOINTER into, SQLSMALLINT room,
                        SQLSMALLINT* length) {
    const std::map<int, std::string> texts = {
        {SQL_DRIVER_ODBC_VER, "03.51"},
        {SQL_SEARCH_PATTERN_ESCAPE, "\\"},
        {SQL_DATA_SOURCE_READ_ONLY,
         connectionOf(handle).session && connectionOf(handle).session->readOnlySource() ? "Y" : "N"}};
    const auto found = texts.find(what);
    if (found == texts.end())
        return SQL_ERROR;
    const auto letters =
        give(found->second, static_cast<SQLWCHAR*>(into), static_cast<SQLSMALLINT>(room / 2));
    if (length != nullptr)
        *length = static_cast<SQLSMALLINT>(letters * 2);
    return SQL_SUCCESS;
}

DRIVER_CALL SQLEndTran(SQLSMALLINT, SQLHANDLE handle, SQLSMALLINT how) {
    return guarded(connectionOf(handle), [&] {
        connectionOf(handle).session->end(how == SQL_COMMIT);
        return SQL_SUCCESS;
    });
}

DRIVER_CALL SQLPrepareW(SQLHSTMT handle, SQLWCHAR* sql, SQLINTEGER length) {
    return guarded(statementOf(handle), [&] {
        start(statementOf(handle), textOf(sql, length));
        return SQL_SUCCESS;
    });
}

DRIVER_CALL SQLBindParameter(SQLHSTMT handle, SQLUSMALLINT number, SQLSMALLINT, SQLSMALLINT kind, SQLSMALLINT,
                             SQLULEN, SQLSMALLINT, SQLPOINTER data, SQLLEN, SQLLEN* length) {
    Statement& statement = statementOf(handle);
    statement.parameters.resize(std::max<std::size_t>(statement.parameters.size(), number));
    statement.parameters[number - 1u] = {kind, data, length};
    return SQL_SUCCESS;
}

DRIVER_CALL SQLExecute(SQLHSTMT handle) {
    return guarded(statementOf(handle), [&] { return run(statementOf(handle)); });
}

DRIVER_CALL SQLExecDirectW(SQLHSTMT handle, SQLWCHAR* sql, SQLINTEGER length) {
    return guarded(statementOf(handle), [&] {
        start(statementOf(handle), textOf(sql, length));
        return run(statementOf(handle));
    });
}

DRIVER_CALL SQLColumnsW(SQLHSTMT handle, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*, SQLSMALLINT, SQLWCHAR* table,
                        SQLSMALLINT length, SQLWCHAR*, SQLSMALLINT) {
    Statement& statement = statementOf(handle);
    return guarded(statement, [&] {
        statement.begin();
        statement.rows = statement.connection->session->columns(textOf(table, length));
        return SQL_SUCCESS;
    });
}

DRIVER_CALL SQLStatisticsW(SQLHSTMT handle, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*, SQLSMALLINT, SQLWCHAR* table,
                           SQLSMALLINT length, SQLUSMALLINT, SQLUSMALLINT) {
    Statement& statement = statementOf(handle);
    return guarded(statement, [&] {
        statement.begin();
        statement.rows = statement.connection->session->indexes(textOf(table, length));
        return SQL_SUCCESS;
    });
}

DRIVER_CALL SQLNumResultCols(SQLHSTMT handle, SQLSMALLINT* count) {
    const Rows& rows = statementOf(handle).rows;
    *count = static_cast<SQLSMALLINT>(rows ? sqlite3_column_count(rows.get()) : 0);
    return SQL_SUCCESS;
}

DRIVER_CALL SQLDescribeColW(SQLHSTMT handle, SQLUSMALLINT number, SQLWCHAR* name, SQLSMALLINT room,
                            SQLSMALLINT* length, SQLSMALLINT* kind, SQLULEN* size, SQLSMALLINT* digits,
                            SQLSMALLINT* nullable) {
    sqlite3_stmt* rows = statementOf(handle).rows.get();
    const Type type = typeOf(rows, number - 1);
    *length = give(sqlite3_column_name(rows, number - 1), name, room);
    *kind = type.kind;
    *size = type.size;
    *digits = 0;
    *nullable = SQL_NULLABLE_UNKNOWN;
    return SQL_SUCCESS;
}

DRIVER_CALL SQLFetch(SQLHSTMT handle) {
    Statement& statement = statementOf(handle);
    return guarded(statement, [&] {
        statement.column = -1;
        if (statement.done)
            return SQL_NO_DATA;
        if (!statement.waiting)
            statement.done = !statement.connection->session->step(statement.rows);
        statement.waiting = false;
        if (statement.done)
            statement.isDone();
        return statement.done ? SQL_NO_DATA : SQL_SUCCESS;
    });
}

DRIVER_CALL SQLGetData(SQLHSTMT handle, SQLUSMALLINT number, SQLSMALLINT kind, SQLPOINTER into, SQLLEN room,
                       SQLLEN* length) {
    Statement& statement = statementOf(handle);
    return guarded(statement, [&] { return giveValue(statement, number - 1, kind, into, room, length); });
}

DRIVER_CALL SQLRowCount(SQLHSTMT handle, SQLLEN* rows) {
    *rows = statementOf(handle).changed;
    return SQL_SUCCESS;
}

DRIVER_CALL SQLFreeStmt(SQLHSTMT handle, SQLUSMALLINT option) {
    if (option == SQL_CLOSE)
        statementOf(handle).rows.reset();
    return SQL_SUCCESS;
}

DRIVER_CALL SQLGetDiagRecW(SQLSMALLINT, SQLHANDLE handle, SQLSMALLINT number, SQLWCHAR* state,
                           SQLINTEGER* native, SQLWCHAR* text, SQLSMALLINT room, SQLSMALLINT* length) {
    const auto& faults = static_cast<Handle*>(handle)->faults;
    if (number < 1 || static_cast<std::size_t>(number) > faults.size())
        return SQL_NO_DATA;
    const Fault& fault = faults[static_cast<std::size_t>(number) - 1];
    give(fault.state, state, 6);
    *native = fault.native;
    *length = give(fault.text, text, room);
    return SQL_SUCCESS;
}

DRIVER_CALL SQLGetDiagFieldW(SQLSMALLINT, SQLHANDLE, SQLSMALLINT, SQLSMALLINT, SQLPOINTER, SQLSMALLINT,
                             SQLSMALLINT*) {
    return SQL_NO_DATA;
}
