#include "databases/OdbcDatabase.h"

#include "databases/JetDatabase.h"
#include "databases/OdbcConnectString.h"
#include "databases/OdbcRecordset.h"

namespace tolvex {

namespace {

class OdbcDatabase final : public SuiteDatabase {
public:
    OdbcDatabase(const QString& name, const QString& connect)
        : connection_(
              std::make_unique<OdbcConnection>(DatabaseAttributes(connect, name), ServerName(connect))) {}

    QString engineVersion() const override { return {}; }
    QString readOnlyReason() const override {
        return connection().readOnly() ? QStringLiteral("the server lets it be read only") : QString();
    }

    std::optional<Shape> table(const QString& name) override {
        const auto found = FindServerTable(connection(), name);
        if (!found)
            return std::nullopt;
        Shape shape;
        for (const OdbcTable::Field& field : found->fields)
            shape.fields += field.name;
        for (const OdbcIndex& index : found->indexes)
            shape.indexes += index.name;
        return shape;
    }
    // A server's texts may always have no length.
    void createTable(const QString& name, const Field& first, bool) override {
        execute(QStringLiteral("CREATE TABLE %1 (%2)").arg(BracketedTable(name), declaration(first)));
    }
    void appendField(const QString& table, const Field& field, bool) override {
        execute(QStringLiteral("ALTER TABLE %1 ADD %2").arg(BracketedTable(table), declaration(field)));
    }
    void appendIndex(const QString& table, const Index& index) override {
        for (const QString& statement : IndexStatements(existing(table), index))
            execute(statement);
    }

    std::unique_ptr<SuiteRecordset> open(const QString& source, RecordsetMode) override {
        if (source.startsWith(QStringLiteral("SELECT "), Qt::CaseInsensitive))
            return std::make_unique<OdbcRecordset>(connection(), source);
        return std::make_unique<OdbcRecordset>(connection(), existing(source));
    }
    void execute(const QString& statement) override { OdbcStatement(connection()).execute(statement); }

    void begin() override { connection().begin(); }
    void commit() override { connection().commit(); }
    void rollback() override { connection().rollback(); }
    void refresh() override {} // every statement asks the server
    void close() override { connection_.reset(); }

private:
    static QString declaration(const Field& field) {
        return BracketedName(QLatin1String(field.name)) + u' ' + ServerType(field);
    }
    OdbcConnection& connection() const {
        if (!connection_)
            throw DatabaseError{ServerCallFailed, QStringLiteral("The connection is closed.")};
        return *connection_;
    }
    OdbcTable existing(const QString& name) const {
        auto table = FindServerTable(connection(), name);
        if (!table)
            throw FromEngine(jet::Error(jet::ErrorNumber::TableNotFound, name.toStdString()));
        return *std::move(table);
    }

    std::unique_ptr<OdbcConnection> connection_;
};

class OdbcServer final : public DatabaseServer {
public:
    explicit OdbcServer(const QString& connect)
        : connection_(ServerAttributes(connect), ServerName(connect)) {}

    QStringList databases(const QString& statement) override {
        OdbcRecordset rows(connection_, statement);
        QStringList names;
        for (; !rows.eof(); rows.moveNext())
            names += rows.value(QStringLiteral("Name")).toString();
        return names;
    }
    void execute(const QString& statement) override { OdbcStatement(connection_).execute(statement); }

private:
    OdbcConnection connection_;
};

} // namespace

std::unique_ptr<SuiteDatabase> OpenServerDatabase(const QString& name, const QString& connect) {
    return std::make_unique<OdbcDatabase>(name, connect);
}

std::unique_ptr<DatabaseServer> OpenServer(const QString& connect) {
    return std::make_unique<OdbcServer>(connect);
}

} // namespace tolvex
