#include "databases/odbc/OdbcDatabase.h"

#include "databases/jet/JetDatabase.h"
#include "databases/odbc/OdbcConnectString.h"
#include "databases/odbc/OdbcRecordset.h"

namespace tolvex {

namespace {

std::shared_ptr<ServerSession> connectTo(const QString& attributes, const QString& connect) {
    return std::make_shared<ServerSession>(attributes, ServerName(connect), ServerAttributes(connect));
}

void runStatements(ServerSession& session, const QStringList& statements) {
    session.run([statements](OdbcConnection& connection, bool) {
        for (const QString& statement : statements)
            OdbcStatement(connection).execute(statement);
    });
}

class OdbcDatabase final : public SuiteDatabase {
public:
    OdbcDatabase(const QString& name, const QString& connect)
        : session_(connectTo(DatabaseAttributes(connect, name), connect)) {}

    QString engineVersion() const override { return {}; }
    QString readOnlyReason() const override {
        return session().readOnly() ? QStringLiteral("the server lets it be read only") : QString();
    }

    std::optional<Shape> table(const QString& name) override {
        const auto found = find(name);
        if (!found)
            return std::nullopt;
        Shape shape;
        for (const OdbcTable::Field& field : found->fields)
            shape.fields += field.name;
        for (const OdbcIndex& index : found->indexes) {
            shape.indexes += index.name;
            if (index.unique)
                shape.keys += index.fields;
        }
        return shape;
    }
    // A server's texts may always be empty.
    void createTable(const QString& name, const Field& first, bool) override {
        execute(QStringLiteral("CREATE TABLE %1 (%2)").arg(BracketedTable(name), declaration(first)));
    }
    void appendField(const QString& table, const Field& field, bool) override {
        execute(QStringLiteral("ALTER TABLE %1 ADD %2").arg(BracketedTable(table), declaration(field)));
    }
    void appendIndex(const QString& table, const Index& index) override {
        runStatements(session(), IndexStatements(existing(table), index));
    }

    std::unique_ptr<SuiteRecordset> open(const QString& source, RecordsetMode) override {
        session(); // which may be closed
        if (source.startsWith(QStringLiteral("SELECT "), Qt::CaseInsensitive))
            return std::make_unique<OdbcRecordset>(session_, source);
        return std::make_unique<OdbcRecordset>(session_, existing(source));
    }
    void execute(const QString& statement) override { runStatements(session(), {statement}); }

    void begin() override {
        session().run([](OdbcConnection& connection, bool) { connection.begin(); });
    }
    void commit() override {
        session().run([](OdbcConnection& connection, bool) { connection.commit(); });
    }
    void rollback() override {
        session().run([](OdbcConnection& connection, bool) { connection.rollback(); });
    }
    void refresh() override {} // every statement asks the server
    void close() override { session_.reset(); }

private:
    static QString declaration(const Field& field) {
        return BracketedName(QLatin1String(field.name)) + u' ' + ServerType(field);
    }
    ServerSession& session() const {
        if (!session_)
            throw DatabaseError{ServerCallFailed, QStringLiteral("The connection is closed.")};
        return *session_;
    }
    std::optional<OdbcTable> find(const QString& name) const {
        return session().run(
            [name](OdbcConnection& connection, bool) { return FindServerTable(connection, name); });
    }
    OdbcTable existing(const QString& name) const {
        auto table = find(name);
        if (!table)
            throw FromEngine(jet::Error(jet::ErrorNumber::TableNotFound, name.toStdString()));
        return *std::move(table);
    }

    std::shared_ptr<ServerSession> session_; // shared with the recordsets
};

class OdbcServer final : public DatabaseServer {
public:
    explicit OdbcServer(const QString& connect)
        : session_(connectTo(ServerAttributes(connect), connect)) {}

    QStringList databases(const QString& statement) override {
        OdbcRecordset rows(session_, statement);
        QStringList names;
        for (; !rows.eof(); rows.moveNext())
            names += rows.value(QStringLiteral("Name")).toString();
        return names;
    }
    void execute(const QString& statement) override { runStatements(*session_, {statement}); }

private:
    std::shared_ptr<ServerSession> session_;
};

} // namespace

std::unique_ptr<SuiteDatabase> OpenServerDatabase(const QString& name, const QString& connect) {
    return std::make_unique<OdbcDatabase>(name, connect);
}

std::unique_ptr<DatabaseServer> OpenServer(const QString& connect) {
    return std::make_unique<OdbcServer>(connect);
}

} // namespace tolvex
