// A connection to a server through the driver manager: unixODBC, or the platform's own. The user is never
// asked: an incomplete connect string fails.
//
// Waits are bounded, so that a dead server does not block the program: LoginSeconds to connect,
// StatementSeconds for each statement. The driver enforces both as well as it can.
#pragma once

#include "databases/odbc/OdbcError.h"

#include <sql.h>
#include <sqlext.h>

namespace tolvex {

inline constexpr unsigned LoginSeconds = 10;
inline constexpr unsigned StatementSeconds = 30;

// Text for and from the driver manager: UTF-16.
inline SQLWCHAR* ServerText(const QString& text) {
    static_assert(sizeof(SQLWCHAR) == sizeof(char16_t));
    return reinterpret_cast<SQLWCHAR*>(const_cast<ushort*>(text.utf16()));
}

class OdbcConnection {
public:
    // `attributes`: see OdbcConnectString.h. `server`: its name in reports. Throws NotConnected.
    OdbcConnection(const QString& attributes, const QString& server);
    ~OdbcConnection(); // rolls back what was not committed
    OdbcConnection(const OdbcConnection&) = delete;
    OdbcConnection& operator=(const OdbcConnection&) = delete;

    SQLHDBC handle() const { return connection_; }
    bool readOnly() const { return readOnly_; }
    // The escape character for "_" and "%" in catalogue names.
    const QString& searchEscape() const { return searchEscape_; }

    // Outside a transaction each statement is its own. These throw DatabaseError; commit() also if the server
    // has rolled the transaction back before, to end a deadlock.
    bool inTransaction() const { return inTransaction_; }
    void begin();
    void commit();
    // Does nothing if the connection is lost: the server has then rolled back.
    void rollback();

    // Throws the error of a failed call on a statement of this connection, and remembers a lost connection.
    [[noreturn]] void fail(SQLSMALLINT kind, SQLHANDLE handle);

    // Reconnects if the connection is lost and no transaction was running
    // on it: a partial transaction must not continue as if it were whole.
    // False if it is not necessary or not allowed. Throws NotConnected.
    bool reconnect();

private:
    void open();
    void connect();
    void release();
    bool isDead() const;
    QString information(SQLUSMALLINT what) const;
    void setAutomaticCommit(bool on);
    void end(SQLSMALLINT how);

    QString attributes_;
    QString server_;
    SQLHENV environment_ = SQL_NULL_HENV;
    SQLHDBC connection_ = SQL_NULL_HDBC;
    bool connected_ = false;
    bool inTransaction_ = false;
    bool undone_ = false; // the server has rolled the transaction back
    bool lost_ = false;
    bool readOnly_ = false;
    QString searchEscape_;
};

// A transaction for a scope: its own, unless the connection
// is already in one. Rolled back unless committed.
class OdbcTransaction {
public:
    explicit OdbcTransaction(OdbcConnection& connection)
        : connection_(connection)
        , own_(!connection.inTransaction()) {
        if (own_)
            connection_.begin();
    }
    ~OdbcTransaction();
    OdbcTransaction(const OdbcTransaction&) = delete;
    OdbcTransaction& operator=(const OdbcTransaction&) = delete;
    void commit() {
        if (own_)
            connection_.commit();
        own_ = false;
    }

private:
    OdbcConnection& connection_;
    bool own_;
};

} // namespace tolvex
