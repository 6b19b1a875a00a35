#include "databases/odbc/OdbcConnection.h"

#include <array>

namespace tolvex {

namespace {

constexpr SQLSMALLINT MostRecords = 10; // of one failed call
constexpr int DeadlockVictim = 1205;

// A number for an attribute that takes a pointer.
SQLPOINTER asPointer(SQLULEN number) {
    return reinterpret_cast<SQLPOINTER>(number); // NOLINT(performance-no-int-to-ptr): the interface's way
}

QList<OdbcDiagnostic> diagnosticsOf(SQLSMALLINT kind, SQLHANDLE handle) {
    QList<OdbcDiagnostic> records;
    for (SQLSMALLINT number = 1; number <= MostRecords; ++number) {
        std::array<SQLWCHAR, 6> state{};
        std::array<SQLWCHAR, SQL_MAX_MESSAGE_LENGTH> text{};
        SQLINTEGER native = 0;
        SQLSMALLINT length = 0;
        if (!SQL_SUCCEEDED(SQLGetDiagRecW(kind, handle, number, state.data(), &native, text.data(),
                                          static_cast<SQLSMALLINT>(text.size()), &length)))
            break;
        records += {QString::fromUtf16(reinterpret_cast<const char16_t*>(state.data())), native,
                    QString::fromUtf16(reinterpret_cast<const char16_t*>(text.data()))};
    }
    return records;
}

} // namespace

OdbcConnection::OdbcConnection(const QString& attributes, const QString& server)
    : attributes_(attributes)
    , server_(server) {
    open();
}

void OdbcConnection::open() {
    try {
        connect();
    } catch (const DatabaseError&) {
        release();
        throw;
    }
    readOnly_ = information(SQL_DATA_SOURCE_READ_ONLY) == QStringLiteral("Y");
    searchEscape_ = information(SQL_SEARCH_PATTERN_ESCAPE);
}

bool OdbcConnection::reconnect() {
    if (!lost_ || inTransaction_)
        return false;
    release();
    open();
    lost_ = undone_ = false;
    return true;
}

OdbcConnection::~OdbcConnection() {
    if (inTransaction_)
        SQLEndTran(SQL_HANDLE_DBC, connection_, SQL_ROLLBACK);
    release();
}

void OdbcConnection::connect() {
    if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment_)))
        throw NotConnected(server_, {});
    if (!SQL_SUCCEEDED(SQLSetEnvAttr(environment_, SQL_ATTR_ODBC_VERSION, asPointer(SQL_OV_ODBC3), 0)) ||
        !SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_DBC, environment_, &connection_)))
        throw NotConnected(server_, diagnosticsOf(SQL_HANDLE_ENV, environment_));
    // A driver without these limits uses its own.
    SQLSetConnectAttrW(connection_, SQL_ATTR_LOGIN_TIMEOUT, asPointer(LoginSeconds), SQL_IS_UINTEGER);
    SQLSetConnectAttrW(connection_, SQL_ATTR_CONNECTION_TIMEOUT, asPointer(StatementSeconds),
                       SQL_IS_UINTEGER);
    if (!SQL_SUCCEEDED(SQLDriverConnectW(connection_, nullptr, ServerText(attributes_), SQL_NTS, nullptr, 0,
                                         nullptr, SQL_DRIVER_NOPROMPT)))
        throw NotConnected(server_, diagnosticsOf(SQL_HANDLE_DBC, connection_));
    connected_ = true;
}

void OdbcConnection::release() {
    if (connected_)
        SQLDisconnect(connection_);
    if (connection_ != SQL_NULL_HDBC)
        SQLFreeHandle(SQL_HANDLE_DBC, connection_);
    if (environment_ != SQL_NULL_HENV)
        SQLFreeHandle(SQL_HANDLE_ENV, environment_);
    connection_ = SQL_NULL_HDBC;
    environment_ = SQL_NULL_HENV;
    connected_ = false;
}

QString OdbcConnection::information(SQLUSMALLINT what) const {
    std::array<SQLWCHAR, 64> text{};
    SQLSMALLINT bytes = 0;
    if (!SQL_SUCCEEDED(SQLGetInfoW(connection_, what, text.data(), sizeof text, &bytes)))
        return {};
    return QString::fromUtf16(reinterpret_cast<const char16_t*>(text.data()));
}

void OdbcConnection::setAutomaticCommit(bool on) {
    if (!SQL_SUCCEEDED(SQLSetConnectAttrW(connection_, SQL_ATTR_AUTOCOMMIT,
                                          asPointer(on ? SQL_AUTOCOMMIT_ON : SQL_AUTOCOMMIT_OFF),
                                          SQL_IS_UINTEGER)))
        fail(SQL_HANDLE_DBC, connection_);
}

void OdbcConnection::begin() {
    setAutomaticCommit(false);
    inTransaction_ = true;
    undone_ = false;
}

void OdbcConnection::end(SQLSMALLINT how) {
    if (!SQL_SUCCEEDED(SQLEndTran(SQL_HANDLE_DBC, connection_, how)))
        fail(SQL_HANDLE_DBC, connection_);
    inTransaction_ = false;
    try {
        setAutomaticCommit(true);
    } catch (const DatabaseError&) {
        lost_ = true; // the transaction has ended as intended; the connection is unusable
    }
}

void OdbcConnection::commit() {
    if (undone_)
        throw FromServer({{QStringLiteral("40001"), DeadlockVictim, QStringLiteral("Transaction undone.")}});
    end(SQL_COMMIT);
}

void OdbcConnection::rollback() {
    if (!lost_) {
        end(SQL_ROLLBACK);
        return;
    }
    SQLEndTran(SQL_HANDLE_DBC, connection_, SQL_ROLLBACK); // makes the manager release it
    inTransaction_ = false;
}

// Drivers know more than they report: FreeTDS gives an "unknown error" for a connection that broke while it
// was idle.
bool OdbcConnection::isDead() const {
    SQLUINTEGER dead = SQL_CD_FALSE;
    return SQL_SUCCEEDED(
               SQLGetConnectAttrW(connection_, SQL_ATTR_CONNECTION_DEAD, &dead, SQL_IS_UINTEGER, nullptr)) &&
           dead == SQL_CD_TRUE;
}

void OdbcConnection::fail(SQLSMALLINT kind, SQLHANDLE handle) {
    const QList<OdbcDiagnostic> records = diagnosticsOf(kind, handle);
    lost_ = lost_ || IsLost(records) || isDead();
    undone_ = undone_ || EndsTransaction(records);
    throw FromServer(records);
}

OdbcTransaction::~OdbcTransaction() {
    try {
        if (own_)
            connection_.rollback();
    } catch (const DatabaseError&) {
        // The earlier failure is being thrown.
    }
}

} // namespace tolvex
