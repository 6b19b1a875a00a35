// A small SQL server in a folder: each file in it is a database, master has the list of them. It speaks the
// dialect that the suite uses and answers with a SQL server's error numbers.
//
// Attributes of a connect string: Server (the folder), Database, PWD (any but "right" is refused), and faults
// on request: LoseAfter=N (the connection breaks after N statements), UndoAfter=N (the statement after N is
// chosen to end a deadlock, and its transaction is rolled back), ReadOnly=1 (the source says so), Locked=1
// (the database refuses changes), Slow=1 (a statement takes longer than any limit), Deny=TABLE (may not be
// read without its owner's name).
#pragma once

#include "databases/server/Dialect.h"

#include <sqlite3.h>

#include <map>
#include <memory>
#include <string>

namespace testserver {

struct Fault {
    const char* state;
    int native;
    std::string text;
};

struct Closer {
    void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Rows = std::unique_ptr<sqlite3_stmt, Closer>;

// One connection. Everything throws Fault.
class Session {
public:
    explicit Session(const std::string& attributes);

    bool readOnlySource() const { return attribute("ReadOnly") == "1"; }
    // Prepares a statement; null if it was executed directly.
    Rows prepare(const std::string& sql, bool hasTimeLimit);
    // Moves to the first row: whether there is one.
    bool step(const Rows& rows);
    void setAutomaticCommit(bool on) { automatic_ = on; }
    void end(bool commit);
    // The catalogue, with the standard's layout.
    Rows columns(const std::string& table);
    Rows indexes(const std::string& table);

private:
    std::string attribute(const std::string& name) const;
    std::string fileOf(const std::string& database) const;
    void open(const std::string& file, int flags);
    void listDatabases();
    void createDatabase(const std::string& name);
    void alter(const Alteration& alteration);
    bool exists(const std::string& kind, const std::string& name);
    void run(const std::string& sql);
    Rows ready(const std::string& sql);
    Rows readyFor(const std::string& sql, const std::string& parameter);
    void count();
    [[noreturn]] void fail();

    std::map<std::string, std::string> attributes_; // keywords in capitals
    std::unique_ptr<sqlite3, Closer> database_;
    bool automatic_ = true;
    int statements_ = 0;
};

} // namespace testserver
