// One open database: the interface of the engine. Tables and their rows are reached through catalog().
#pragma once

#include "jet/jet3/Jet3Import.h"
#include "jet/pager/FilePager.h"
#include "jet/table/Catalog.h"

namespace jet {

class Database {
public:
    // Opens a file (Jet 4, or read-only Jet 3, which is read into memory as a whole). Throws FileNotFound,
    // Unrecognised, InvalidPassword, FileLocked, CannotOpenFile.
    static Database open(const std::string& path, const OpenOptions& options = {});
    static Database open(Storage& storage, const std::string& path, const OpenOptions& options = {});
    // Makes a new, empty database (General order, code page 1252) and opens it. The file appears complete and
    // flushed or not at all. Throws DatabaseExists.
    static Database create(const std::string& path, const OpenOptions& options = {});
    static Database create(Storage& storage, const std::string& path, const OpenOptions& options = {});

    Database(Database&&) noexcept;
    Database& operator=(Database&&) noexcept;
    ~Database(); // closes; errors are ignored

    Catalog& catalog();
    Pager& pager();
    const PageZero& header() const;
    const std::string& path() const;
    // Empty: may be changed. Otherwise the reason why not.
    const std::string& readOnlyReason() const;
    // Whether the file was opened exclusively and for writing: nobody else can open it.
    bool isHeldAlone() const;
    // The findings about a Jet 3 file; null for any other.
    const Jet3Contents* olderContents() const;

    // Transactions nest: an inner rollback undoes only the inner changes. Outside a transaction each call
    // that changes something is one of its own. Other programs wait while one runs, so keep it short. Throws
    // CannotUpdateReadOnly, RecordLocked (another program's transaction takes too long).
    void beginTransaction();
    void commit();
    void rollback();
    int transactionDepth() const;

    // Returns when everything committed so far survives a power cut.
    void flush();
    // For an exclusively opened file: brings everything into it and removes the write-ahead log.
    void emptyLog();
    // Reads what other programs have written since the last operation.
    void refresh();
    // Brings everything into the file and closes it; if that fails it throws, and nothing is lost.
    void close();

private:
    struct Parts;
    explicit Database(std::unique_ptr<Parts> parts);
    std::unique_ptr<Parts> parts_;
};

// A transaction in a scope: rolled back unless committed.
class Transaction {
public:
    explicit Transaction(Database& database)
        : database_(database) {
        database_.beginTransaction();
    }
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    void commit();

private:
    Database& database_;
    bool done_ = false;
};

} // namespace jet
