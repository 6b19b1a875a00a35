// A connection to a server through the driver manager: unixODBC, or the platform's own. Nothing is ever asked
// of the user: a connect string that says too little fails.
//
// Waits are bounded, so that a dead server does not hold the program: LoginSeconds to connect,
// StatementSeconds for each statement, both asked of the driver, which keeps to them as well as it can.
#pragma once

#include "databases/odbc/OdbcError.h"

#include <sql.h>
#include <sqlext.h>

namespace tolvex {

inline constexpr unsigned LoginSeconds = 10;
inline constexpr unsigned StatementSeconds = 30;

// Text as the driver manager takes and gives it: UTF-16.
inline SQLWCHAR* ServerText(const QString& text) {
    static_assert(sizeof(SQLWCHAR) == sizeof(char16_t));
    return reinterpret_cast<SQLWCHAR*>(const_cast<ushort*>(text.utf16()));
}

class OdbcConnection {
public:
    // `attributes`: see OdbcConnectString.h. `server`: its name for a report. Throws NotConnected.
    OdbcConnection(const QString& attributes, const QString& server);
    ~OdbcConnection(); // undoes what was not committed
    OdbcConnection(const OdbcConnection&) = delete;
    OdbcConnection& operator=(const OdbcConnection&) = delete;

    SQLHDBC handle() const { return connection_; }
    bool readOnly() const { return readOnly_; }
    // What makes "_" and "%" in a name of the catalogue stand for themselves.
    const QString& searchEscape() const { return searchEscape_; }

    // Outside of a transaction each statement stands for itself. Throw DatabaseError; commit() also when the
    // server has undone the transaction before, to end a deadlock.
    bool inTransaction() const { return inTransaction_; }
    void begin();
    void commit();
    // Nothing to do when the connection is lost: the server has done it then.
    void rollback();

    // Throws the error of a failed call on a statement of this connection, and remembers a lost connection.
    [[noreturn]] void fail(SQLSMALLINT kind, SQLHANDLE handle);

    // Connects anew when the connection proved lost and no transaction was running on it: what was begun in
    // one must not go on as if it were whole. False when there was no need or it must not be. Throws
    // NotConnected.
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
    bool undone_ = false; // the transaction, by the server
    bool lost_ = false;
    bool readOnly_ = false;
    QString searchEscape_;
};

// A transaction for the time of a block: its own, unless the connection is in one already. Undone unless
// committed.
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
