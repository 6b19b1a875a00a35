#include "databases/server/Server.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>

namespace testserver {

namespace fs = std::filesystem;

namespace {

constexpr int LockWait = 2000; // milliseconds

// The server's errors for the engine's faults.
constexpr struct {
    int code;           // of the engine, extended
    const char* phrase; // of its text
    const char* state;
    int native;
} faults[] = {
    {SQLITE_CONSTRAINT_UNIQUE, "", "23000", 2601}, {SQLITE_CONSTRAINT_CHECK, "", "22001", 8152},
    {SQLITE_CONSTRAINT_TRIGGER, "", "23000", 515}, {SQLITE_CONSTRAINT_NOTNULL, "", "23000", 515},
    {SQLITE_READONLY, "", "25000", 3906},          {SQLITE_BUSY, "", "HYT00", 1222},
    {SQLITE_ERROR, "no such table", "42S02", 208}, {SQLITE_ERROR, "no such column", "42S22", 207},
    {SQLITE_ERROR, "has no column", "42S22", 207}, {SQLITE_ERROR, "duplicate column", "42S21", 2705},
    {SQLITE_ERROR, "table ", "42S01", 2714},       {SQLITE_ERROR, "index ", "42S11", 1913},
};

std::string capitals(std::string text) {
    for (char& letter : text)
        letter = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
    return text;
}

std::map<std::string, std::string> parse(const std::string& text) {
    std::map<std::string, std::string> found;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const std::size_t equals = std::min(text.find('=', at), text.size());
        const std::string keyword = capitals(text.substr(at, equals - at));
        std::string value;
        at = equals + 1;
        if (at < text.size() && text[at] == '{') {
            for (++at; at < text.size(); ++at) {
                if (text[at] == '}' && (++at >= text.size() || text[at] != '}'))
                    break;
                value += text[at];
            }
        }
        for (; at < text.size() && text[at] != ';'; ++at)
            value += text[at];
        found.emplace(keyword, value); // the first one counts
    }
    return found;
}

// The order of a server's texts: case and trailing blanks are ignored.
int compareTexts(void*, int firstBytes, const void* first, int secondBytes, const void* second) {
    const auto folded = [](int bytes, const void* data) {
        std::u16string text(static_cast<const char16_t*>(data), static_cast<std::size_t>(bytes) / 2);
        while (!text.empty() && text.back() == u' ')
            text.pop_back();
        for (char16_t& letter : text)
            if ((letter >= u'A' && letter <= u'Z') || (letter >= 0xC0 && letter <= 0xDE && letter != 0xD7))
                letter += 32;
        return text;
    };
    return folded(firstBytes, first).compare(folded(secondBytes, second));
}

} // namespace

Session::Session(const std::string& attributes)
    : attributes_(parse(attributes)) {
    if (!fs::is_directory(attribute("Server")))
        throw Fault{"08001", 17, "[Test Server]Server does not exist or access denied."};
    if (attributes_.count("PWD") != 0 && attribute("PWD") != "right")
        throw Fault{"28000", 18456, "[Test Server]Login failed for user '" + attribute("UID") + "'."};
    const std::string name = attribute("Database");
    if (!name.empty() && !fs::exists(fileOf(name)))
        throw Fault{"42000", 4060,
                    "[Test Server]Cannot open database \"" + name + "\" requested by the login."};
    open(name.empty() ? ":memory:" : fileOf(name),
         attribute("Locked") == "1" ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE);
}

std::string Session::attribute(const std::string& name) const {
    const auto found = attributes_.find(capitals(name));
    return found == attributes_.end() ? std::string() : found->second;
}

std::string Session::fileOf(const std::string& database) const {
    std::string file;
    for (const char letter : database) {
        char coded[4];
        std::snprintf(coded, sizeof coded, "%%%02X", static_cast<unsigned char>(letter));
        file += std::isalnum(static_cast<unsigned char>(letter)) != 0 ? std::string(1, letter) : coded;
    }
    return attribute("Server") + '/' + file + ".db";
}

void Session::open(const std::string& file, int flags) {
    sqlite3* opened = nullptr;
    const int result = sqlite3_open_v2(file.c_str(), &opened, flags, nullptr);
    database_.reset(opened);
    if (result != SQLITE_OK)
        fail();
    sqlite3_extended_result_codes(opened, 1);
    sqlite3_busy_timeout(opened, LockWait);
    // An unknown name is not a text.
    sqlite3_db_config(opened, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
    sqlite3_db_config(opened, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
    sqlite3_create_collation(opened, "SERVER", SQLITE_UTF16, nullptr, compareTexts);
}

void Session::fail() {
    const int code = sqlite3_extended_errcode(database_.get());
    const std::string text = sqlite3_errmsg(database_.get());
    for (const auto& fault : faults)
        if ((fault.code == code || fault.code == (code & 0xFF)) &&
            text.find(fault.phrase) != std::string::npos)
            throw Fault{fault.state, fault.native, "[Test Server]" + text};
    throw Fault{"42000", 102, "[Test Server]" + text};
}

Rows Session::ready(const std::string& sql) {
    sqlite3_stmt* statement = nullptr;
    const int result = sqlite3_prepare_v2(database_.get(), sql.c_str(), -1, &statement, nullptr);
    Rows rows(statement);
    if (result != SQLITE_OK)
        fail();
    return rows;
}

Rows Session::readyFor(const std::string& sql, const std::string& parameter) {
    Rows rows = ready(sql);
    sqlite3_bind_text(rows.get(), 1, parameter.c_str(), -1, SQLITE_TRANSIENT);
    return rows;
}

bool Session::step(const Rows& rows) {
    const int result = sqlite3_step(rows.get());
    if (result != SQLITE_ROW && result != SQLITE_DONE)
        fail();
    return result == SQLITE_ROW;
}

void Session::run(const std::string& sql) {
    step(ready(sql));
}

void Session::count() {
    ++statements_;
    if (const std::string most = attribute("LoseAfter"); !most.empty() && statements_ > std::stoi(most))
        throw Fault{"08S01", 10054, "[Test Server]Communication link failure"};
    if (attribute("UndoAfter") == std::to_string(statements_ - 1)) {
        if (sqlite3_get_autocommit(database_.get()) == 0)
            run("ROLLBACK");
        throw Fault{"40001", 1205, "[Test Server]Transaction was deadlocked and chosen as the victim."};
    }
}

Rows Session::prepare(const std::string& sql, bool hasTimeLimit) {
    count();
    if (attribute("Slow") == "1")
        throw hasTimeLimit ? Fault{"HYT00", 0, "[Test Server]Query timeout expired"}
                           : Fault{"HY000", 0, "[Test Server]This would have taken for ever."};
    try {
        const Tokens tokens = Tokenize(sql);
        if (!attribute("Deny").empty() && NamesBare(tokens, attribute("Deny")))
            throw Fault{"42000", 229, "[Test Server]The SELECT permission was denied on the object."};
        if (!automatic_ && sqlite3_get_autocommit(database_.get()) != 0)
            run("BEGIN IMMEDIATE");
        if (const std::string name = DatabaseToCreate(tokens); !name.empty()) {
            createDatabase(name);
            return {};
        }
        if (const Alteration alteration = FindAlteration(tokens); !alteration.table.empty()) {
            alter(alteration);
            return {};
        }
        const std::string translated = Translate(tokens);
        if (translated.find("\"sysdatabases\"") != std::string::npos)
            listDatabases();
        return ready(translated);
    } catch (const BadStatement& bad) {
        throw Fault{"42000", 105, "[Test Server]" + bad.why};
    }
}

void Session::end(bool commit) {
    count();
    if (sqlite3_get_autocommit(database_.get()) == 0)
        run(commit ? "COMMIT" : "ROLLBACK");
}

void Session::listDatabases() {
    run("CREATE TEMP TABLE IF NOT EXISTS sysdatabases (name NVARCHAR(128) COLLATE SERVER, dbid SMALLINT)");
    run("DELETE FROM sysdatabases");
    std::vector<std::string> names = {"master", "tempdb",       "model",
                                      "msdb",   "ReportServer", "ReportServerTempDB"};
    for (const auto& entry : fs::directory_iterator(attribute("Server"))) {
        const std::string coded = entry.path().stem();
        std::string name;
        for (std::size_t i = 0; i < coded.size(); i += coded[i] == '%' ? 3 : 1)
            name += coded[i] == '%' ? static_cast<char>(std::stoi(coded.substr(i + 1, 2), nullptr, 16))
                                    : coded[i];
        names.push_back(name);
    }
    for (const std::string& name : names)
        step(readyFor("INSERT INTO sysdatabases VALUES (?, 7)", name));
}

void Session::createDatabase(const std::string& name) {
    if (!automatic_)
        throw Fault{"25000", 226, "[Test Server]CREATE DATABASE is not allowed within a transaction."};
    if (attribute("Locked") == "1")
        throw Fault{"42000", 262, "[Test Server]CREATE DATABASE permission denied in database 'master'."};
    if (fs::exists(fileOf(name)))
        throw Fault{"42000", 1801, "[Test Server]Database '" + name + "' already exists."};
    std::ofstream(fileOf(name)).close();
}

bool Session::exists(const std::string& kind, const std::string& name) {
    return step(readyFor("SELECT 1 FROM sqlite_master WHERE type = '" + kind + "' AND name = ?", name));
}

// A column without nulls is implemented by a trigger, a primary key by a unique index over such columns.
void Session::alter(const Alteration& alteration) {
    const std::string table = Quoted(alteration.table);
    const auto triggerFor = [&](const std::string& column) {
        return IndexName(alteration.table, column) + "|filled";
    };
    if (alteration.constraint.empty()) {
        const std::string column = Quoted(alteration.columns.front());
        if (step(ready("SELECT 1 FROM " + table + " WHERE " + column + " IS NULL")))
            throw Fault{"23000", 515, "[Test Server]Cannot insert the value NULL into column " + column};
        run("CREATE TRIGGER " + Quoted(triggerFor(alteration.columns.front())) + " BEFORE INSERT ON " +
            table + " WHEN NEW." + column +
            " IS NULL BEGIN SELECT RAISE(ABORT, 'Cannot insert the value NULL'); END");
        return;
    }
    std::string columns;
    for (const std::string& column : alteration.columns) {
        if (!exists("trigger", triggerFor(column)))
            throw Fault{"42000", 8111,
                        "[Test Server]Cannot define PRIMARY KEY on a column that takes nulls."};
        columns += (columns.empty() ? "" : ", ") + Quoted(column);
    }
    // Names of constraints are unique in the whole database.
    if (step(readyFor("SELECT 1 FROM sqlite_master WHERE name LIKE '%|' || ?", alteration.constraint)))
        throw Fault{"42S01", 2714,
                    "[Test Server]There is already an object named '" + alteration.constraint + "'"};
    run("CREATE UNIQUE INDEX " + Quoted(IndexName(alteration.table, alteration.constraint)) + " ON " + table +
        " (" + columns + ")");
}

Rows Session::columns(const std::string& table) {
    count();
    return readyFor(
        "SELECT NULL, 'dbo', m.name, c.name, 0, lower(replace(substr(c.type, 1, "
        "instr(c.type || '(', '(') - 1), '_MAX', '')), CASE WHEN instr(c.type, '(') THEN CAST(substr(c.type, "
        "instr(c.type, '(') + 1) AS INTEGER) ELSE 0 END, NULL, NULL, NULL, NOT (c.\"notnull\" OR EXISTS "
        "(SELECT 1 "
        "FROM sqlite_master WHERE type = 'trigger' AND name = m.name || '|' || c.name || '|filled')), NULL, "
        "c.dflt_value, "
        "0, NULL, NULL, c.cid + 1, NULL FROM sqlite_master m, pragma_table_info(m.name) c "
        "WHERE m.type = 'table' AND m.name LIKE ? ESCAPE '\\' ORDER BY m.name, c.cid",
        table);
}

Rows Session::indexes(const std::string& table) {
    count();
    return readyFor(
        "SELECT NULL, 'dbo', m.tbl_name, NOT i.\"unique\", NULL, substr(m.name, length(m.tbl_name) + 2), 3, "
        "c.seqno + 1, c.name FROM sqlite_master m, pragma_index_list(m.tbl_name) i, "
        "pragma_index_info(m.name) c WHERE m.type = 'index' AND i.name = m.name AND m.tbl_name = ? "
        "COLLATE NOCASE ORDER BY i.\"unique\" DESC, m.name, c.seqno",
        table);
}

} // namespace testserver
