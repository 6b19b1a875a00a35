// One open database of the suite, as the routines of this folder see it: just the operations they need, so
// that each kind of storage has the same interface. Values are plain variants: null is an invalid QVariant,
// flags are bool, numbers int, float or double, dates QDateTime, texts QString.
//
// Operations throw DatabaseError; the public routines of this folder catch it and report.
#pragma once

#include "databases/store/Schema.h"

#include <QDateTime>
#include <QVariant>

#include <functional>
#include <memory>
#include <optional>

namespace tolvex {

// The engine's error number, which programs of the suite know and compare, and its sentence.
struct DatabaseError {
    int number = 0;
    QString text;
};

// Error numbers that routines act on.
enum DatabaseErrorNumber : int {
    TypeMismatchError = 13,
    TableExistsError = 3010,
    DuplicateKeyError = 3022,
    ReadOnlyError = 3027,
    NullKeyError = 3058,
    ServerCallFailed = 3146,
    ConnectionFailed = 3151,
    FieldTooSmallError = 3163,
    RecordDeletedError = 3167,
    FieldExistsError = 3191,
    RecordChangedError = 3197,
    DatabaseExistsError = 3204,
    NoPermissionOnServer = 3228,
    ItemNotFoundError = 3265,
    IndexExistsError = 3284,
    UnrecognisedDatabase = 3343,
};

// Whether an error of a row means that another workstation has added, changed or removed it since it was
// looked up.
inline bool IsOthersChange(int number) {
    return number == DuplicateKeyError || number == RecordChangedError || number == RecordDeletedError;
}

// The rows of a table, or of a query's result, one of which is current.
class SuiteRecordset {
public:
    virtual ~SuiteRecordset() = default;

    virtual QString name() const = 0;
    virtual bool tableMode() const = 0; // rows can be sought by an index
    virtual bool updatable() const = 0;
    virtual int recordCount() const = 0;
    // Declared size of a text field in characters, 0 for other kinds.
    virtual int size(const QString& field) const = 0;

    // Table mode only; any other throws.
    virtual void setIndex(const QString& index) = 0;
    virtual void seek(const QVariant& value) = 0;
    // Any mode: the first row that satisfies a predicate. Not in table mode.
    virtual void findFirst(const QString& criterion) = 0;
    virtual bool noMatch() const = 0;

    virtual bool bof() const = 0;
    virtual bool eof() const = 0;
    virtual void moveFirst() = 0;
    virtual void moveNext() = 0;

    virtual QVariant value(const QString& field) = 0;
    virtual void addNew() = 0;
    virtual void edit() = 0;
    virtual void set(const QString& field, const QVariant& value) = 0;
    virtual void update() = 0;
    virtual void remove() = 0;
};

enum class RecordsetMode { Table, Dynaset };

class SuiteDatabase {
public:
    // What a table contains, by name.
    struct Shape {
        QStringList fields;
        QStringList indexes;
        // On a server: fields of unique indexes and primary keys, which identify them. Their names were
        // chosen by whoever made the table there.
        QList<QStringList> keys = {};
        bool has(const Index& index) const;
    };

    virtual ~SuiteDatabase() = default; // closes; errors are ignored

    // The engine's own version of the file ("4.0"); empty for a server.
    virtual QString engineVersion() const = 0;

    // Empty: may be changed. Otherwise the reason why not.
    virtual QString readOnlyReason() const = 0;

    // Nothing if there is no such table.
    virtual std::optional<Shape> table(const QString& name) = 0;
    virtual void createTable(const QString& name, const Field& first, bool allowZeroLength) = 0;
    virtual void appendField(const QString& table, const Field& field, bool allowZeroLength) = 0;
    virtual void appendIndex(const QString& table, const Index& index) = 0;

    // The database outlives its recordsets. `source`: a table or, in dynaset mode, a query. A server has no
    // table mode and opens a dynaset instead; its queries are read-only.
    virtual std::unique_ptr<SuiteRecordset> open(const QString& source, RecordsetMode mode) = 0;
    virtual void execute(const QString& statement) = 0;

    // Changes between the two become visible to others together; without the second they are rolled back.
    virtual void begin() = 0;
    virtual void commit() = 0;
    virtual void rollback() = 0;

    // Makes our changes visible to those who read the file by other means,
    // safe from a power cut, and reads what others have written. Other
    // users of this engine need no refresh to see what is committed.
    virtual void refresh() = 0;
    // Brings everything into the file; afterwards the object can only be destroyed.
    virtual void close() = 0;
};

// A transaction in a scope: rolled back unless committed.
class DatabaseTransaction {
public:
    explicit DatabaseTransaction(SuiteDatabase& database)
        : database_(&database) {
        database.begin();
    }
    ~DatabaseTransaction();
    DatabaseTransaction(const DatabaseTransaction&) = delete;
    DatabaseTransaction& operator=(const DatabaseTransaction&) = delete;
    void commit() {
        database_->commit();
        database_ = nullptr;
    }

private:
    SuiteDatabase* database_;
};

// Opens a database for reading and writing, shared with others; a file
// is read-only while a LookOnly lives. `connect` empty: a file, by its
// path in the suite. Otherwise a database on a server, by its name.
std::unique_ptr<SuiteDatabase> OpenSuiteDatabase(const QString& name, const QString& connect = {});

// Questions to a server itself. Operations throw DatabaseError.
class DatabaseServer {
public:
    virtual ~DatabaseServer() = default;
    // Names of databases, from a statement on master..sysdatabases.
    virtual QStringList databases(const QString& statement) = 0;
    virtual void execute(const QString& statement) = 0;
};
std::unique_ptr<DatabaseServer> ConnectToServer(const QString& connect);
// The statement that asks a server for its databases, or for the one of this name.
QString DatabasesStatement(const QString& name = {});

// Makes a new file with the content that `fill` puts into it: the file gets its name when it is complete, and
// never replaces another one of that name. Throws DatabaseExistsError if there is one, or what `fill` throws.
void CreateSuiteDatabase(const QString& path, const std::function<void(SuiteDatabase&)>& fill = {});
// Removes a file of length 0, and no other. Throws.
void RemoveEmptyDatabase(const QString& path);

// Puts a text in quotes for a predicate or statement, with quotes in it doubled.
QString QuotedText(const QString& text, QChar quote = u'\'');

// A database name as in files: with ".mdb" appended unless it ends so, in any case.
QString WithDatabaseExtension(const QString& name);

} // namespace tolvex
