// Any Jet file: its tables, their design, export and import of rows, queries, check and compaction.
#include "app/ctl/Commands.h"

#include "databases/compaction/CompactRepair.h"
#include "jet/Check.h"
#include "jet/Database.h"
#include "jet/Design.h"
#include "jet/Error.h"
#include "jet/Query.h"
#include "jet/Salvage.h"
#include "jet/Transfer.h"
#include "platform/paths/Paths.h"

#include <cstdio>

namespace tolvex::ctl {

namespace {

QString hostFile(const Call& call) {
    return platform::HostPath(call.path(0));
}

std::string pathOf(const QString& hostPath) {
    return hostPath.toStdString();
}

QString toQString(std::u16string_view text) {
    return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

// Runs a step that uses the engine; its error becomes the command's.
template<typename Job>
int guarded(Call& call, Job job) {
    try {
        return job();
    } catch (const jet::Error& error) {
        return call.fail(QStringLiteral("%1: %2 (error %3)")
                             .arg(call.argument(0), QString::fromStdString(error.what()))
                             .arg(error.number()),
                         error.number());
    }
}

jet::Database openFile(const Call& call, bool readOnly) {
    jet::OpenOptions options;
    options.readOnly = readOnly;
    return jet::Database::open(pathOf(hostFile(call)), options);
}

const char* nameOf(jet::ColumnType type) {
    using jet::ColumnType;
    switch (type) {
    case ColumnType::Boolean:
        return "Boolean";
    case ColumnType::Byte:
        return "Byte";
    case ColumnType::Integer:
        return "Integer";
    case ColumnType::Long:
        return "Long";
    case ColumnType::Currency:
        return "Currency";
    case ColumnType::Single:
        return "Single";
    case ColumnType::Double:
        return "Double";
    case ColumnType::DateTime:
        return "DateTime";
    case ColumnType::Binary:
        return "Binary";
    case ColumnType::Text:
        return "Text";
    case ColumnType::Ole:
        return "OLE";
    case ColumnType::Memo:
        return "Memo";
    case ColumnType::Guid:
        return "GUID";
    case ColumnType::Numeric:
        return "Numeric";
    case ColumnType::Private:
        return "Private";
    }
    return "unknown";
}

// Reports the damage of a database while the rest of it is listed.
class Damage {
public:
    explicit Damage(const Call& call)
        : call_(call) {}
    void operator()(jet::PageNumber, const jet::Error& error) { say(error); }
    // Lists a table, or reports why it cannot be.
    template<typename List>
    void list(const jet::CatalogObject& table, List list) {
        const auto damaged = [&](jet::PageNumber, const jet::Error& error) {
            say(error, toQString(table.name) + QStringLiteral(": "));
        };
        jet::DespiteDamage(0, damaged, list);
    }
    int status() const { return met_ ? Failed : Done; }

private:
    void say(const jet::Error& error, const QString& table = {}) {
        met_ = true;
        call_.fail(QStringLiteral("%1: %2%3 (error %4)")
                       .arg(call_.argument(0), table, QString::fromStdString(error.what()))
                       .arg(error.number()),
                   error.number());
    }
    const Call& call_;
    bool met_ = false;
};

std::vector<jet::CatalogObject> listedTables(const Call& call, jet::Database& database, Damage& damage) {
    std::vector<jet::CatalogObject> tables = database.catalog().readObjects(std::ref(damage));
    std::erase_if(tables, [&](const jet::CatalogObject& object) {
        return !object.isTable() || (object.isSystem() && !call.has("--system"));
    });
    return tables;
}

int tables(Call& call) {
    return guarded(call, [&]() -> int {
        jet::Database database = openFile(call, true);
        QJsonArray records;
        Damage damage(call);
        for (const jet::CatalogObject& object : listedTables(call, database, damage)) {
            QJsonObject record{{QStringLiteral("table"), toQString(object.name)},
                               {QStringLiteral("rows"), QJsonValue()}};
            damage.list(object, [&] {
                const jet::Table table = database.catalog().table(object);
                record[QLatin1String("rows")] = static_cast<qint64>(table.rowCount());
            });
            records += record;
        }
        call.output.records(records, {{"table", "Table"}, {"rows", "Rows", true}});
        return damage.status();
    });
}

QJsonArray columnsOf(const jet::TableDesign& design) {
    QJsonArray columns;
    for (const jet::FieldDesign& field : design.fields) {
        columns += QJsonObject{{QStringLiteral("name"), toQString(field.name)},
                               {QStringLiteral("type"), QLatin1String(nameOf(field.type))},
                               {QStringLiteral("size"), field.size},
                               {QStringLiteral("autonumber"), field.autonumber},
                               {QStringLiteral("required"), field.required},
                               {QStringLiteral("allowZeroLength"), field.allowZeroLength}};
    }
    return columns;
}

QJsonArray indexesOf(const jet::TableDesign& design) {
    QJsonArray indexes;
    for (const jet::IndexDesign& index : design.indexes) {
        QJsonArray fields;
        for (const jet::IndexField& field : index.fields)
            fields += toQString(field.name) + (field.descending ? QStringLiteral(" DESC") : QString());
        indexes += QJsonObject{{QStringLiteral("name"), toQString(index.name)},
                               {QStringLiteral("fields"), fields},
                               {QStringLiteral("unique"), index.unique || index.primary},
                               {QStringLiteral("primary"), index.primary},
                               {QStringLiteral("ignoreNulls"), index.ignoreNulls}};
    }
    return indexes;
}

int schema(Call& call) {
    return guarded(call, [&]() -> int {
        jet::Database database = openFile(call, true);
        QJsonArray all;
        Damage damage(call);
        for (const jet::CatalogObject& object : listedTables(call, database, damage)) {
            if (call.arguments.size() > 1 && !jet::SameName(object.name, call.argument(1).toStdU16String()))
                continue;
            damage.list(object, [&] {
                const jet::TableDesign design = jet::DescribeTable(database.catalog(), object);
                all += QJsonObject{{QStringLiteral("table"), toQString(design.name)},
                                   {QStringLiteral("columns"), columnsOf(design)},
                                   {QStringLiteral("indexes"), indexesOf(design)}};
            });
        }
        if (all.isEmpty() && call.arguments.size() > 1 && damage.status() == Done)
            return call.no(QStringLiteral("%1 has no table %2.").arg(call.argument(0), call.argument(1)));
        if (call.output.json()) {
            call.output.records(all, {});
            return damage.status();
        }
        for (const QJsonValue value : all) {
            const QJsonObject table = value.toObject();
            call.output.value("table", table[QLatin1String("table")]);
            call.output.records(table[QLatin1String("columns")].toArray(),
                                {{"name", "Column"},
                                 {"type", "Type"},
                                 {"size", "Size", true},
                                 {"autonumber", "Autonumber"},
                                 {"required", "Required"},
                                 {"allowZeroLength", "Empty text"}});
            call.output.records(table[QLatin1String("indexes")].toArray(), {{"name", "Index"},
                                                                            {"fields", "Columns"},
                                                                            {"unique", "Unique"},
                                                                            {"primary", "Primary"},
                                                                            {"ignoreNulls", "Skips nulls"}});
            call.output.line({});
        }
        return damage.status();
    });
}

jet::TextFormat formatOf(const Call& call) {
    return call.output.json() ? jet::TextFormat::JsonLines : jet::TextFormat::Csv;
}

void exportRows(Call& call, const jet::Filter& selection) {
    call.output.piece({}); // makes a valid document even without rows
    jet::ExportRows(selection, formatOf(call), [&](std::string_view text) { call.output.piece(text); });
}

int exportTable(Call& call) {
    return guarded(call, [&]() -> int {
        jet::Database database = openFile(call, true);
        const jet::Table table = jet::FindTable(database.catalog(), call.argument(1).toStdU16String());
        exportRows(call, jet::Filter(table, std::nullopt));
        return Done;
    });
}

int importTable(Call& call) {
    return guarded(call, [&]() -> int {
        jet::Database database = openFile(call, false);
        jet::Table table = jet::FindTable(database.catalog(), call.argument(1).toStdU16String());
        jet::TextInput input(
            [](char* into, std::size_t length) { return std::fread(into, 1, length, stdin); });
        const std::uint32_t rows = jet::ImportRows(table, formatOf(call), input);
        database.close();
        if (call.output.json())
            call.output.value("rows", static_cast<qint64>(rows));
        call.output.note(QStringLiteral("%1 rows were added to %2.").arg(rows).arg(call.argument(1)));
        return Done;
    });
}

bool queryChanges(const Call& call) {
    try {
        return !std::holds_alternative<jet::sql::Select>(
            jet::sql::ParseStatement(call.argument(1).toStdU16String()));
    } catch (const jet::Error&) {
        return false;
    }
}

int query(Call& call) {
    return guarded(call, [&]() -> int {
        const jet::sql::Statement statement = jet::sql::ParseStatement(call.argument(1).toStdU16String());
        const auto* select = std::get_if<jet::sql::Select>(&statement);
        jet::Database database = openFile(call, select != nullptr);
        if (select != nullptr) {
            const jet::Table table = jet::FindTable(database.catalog(), select->table);
            exportRows(call, jet::Filter(table, *select));
            return Done;
        }
        const std::uint32_t rows = jet::Execute(database.catalog(), statement);
        database.close();
        call.output.value("rows", static_cast<qint64>(rows));
        return Done;
    });
}

QJsonObject recordOf(const jet::Fault& fault) {
    return {{QStringLiteral("page"), static_cast<qint64>(fault.page)},
            {QStringLiteral("table"), toQString(fault.table)},
            {QStringLiteral("reason"), QString::fromStdString(fault.reason)}};
}

const Columns faultColumns = {{"page", "Page", true}, {"table", "Table"}, {"reason", "Reason"}};

int check(Call& call) {
    return guarded(call, [&]() -> int {
        jet::Database database = openFile(call, true);
        QJsonArray faults;
        const auto report = [&](const jet::Fault& fault) {
            if (!fault.harmless)
                faults += recordOf(fault);
            else if (!call.output.json())
                call.output.note(QStringLiteral("Remark: page %1 %2")
                                     .arg(fault.page)
                                     .arg(QString::fromStdString(fault.reason)));
        };
        const jet::CheckResult result = jet::CheckDatabase(database, report);
        const QJsonObject record{{QStringLiteral("faults"), faults},
                                 {QStringLiteral("pages"), static_cast<qint64>(result.pages)},
                                 {QStringLiteral("tables"), static_cast<qint64>(result.tables)},
                                 {QStringLiteral("rows"), static_cast<qint64>(result.rows)}};
        if (!call.output.json() && !faults.isEmpty())
            call.output.records(faults, faultColumns);
        call.output.record(record,
                           {{"pages", "Pages", true}, {"tables", "Tables", true}, {"rows", "Rows", true}});
        return faults.isEmpty() ? Done : No;
    });
}

// Silent: a script that says "db compact" has already decided. Failures are reported on standard error.
int compact(Call& call) {
    QJsonArray losses;
    const auto lost = [&](const jet::Fault& loss) { losses += recordOf(loss); };
    if (!CompactRepairDatabase(call.path(0), false, {}, true, lost))
        return call.fail(QStringLiteral("%1 was not compacted.").arg(call.argument(0)));
    if (!losses.isEmpty() || call.output.json())
        call.output.records(losses, faultColumns);
    return losses.isEmpty() ? Done : No;
}

} // namespace

CommandRows EngineCommands() {
    const Option system{"--system", nullptr, "include system tables"};
    return {
        {"db tables", "FILE", "List the tables of a database with their numbers of rows", tables, {system}},
        {"db schema", "FILE [TABLE]", "Show the columns and indexes of the tables", schema, {system}},
        {"db export", "FILE TABLE", "Write the rows of a table as CSV, or with --json as JSON lines",
         exportTable},
        Changing({"db import", "FILE TABLE",
                  "Add rows from standard input, CSV or with --json JSON lines: all or none", importTable}),
        Changing({"db query", "FILE SQL",
                  "Run SELECT, INSERT, UPDATE or DELETE; rows are written as by export", query},
                 queryChanges),
        {"db check", "FILE", "Check the integrity of a database and list its faults", check},
        Changing(
            {"db compact", "FILE",
             "Compact and repair a database, keeping the old file as -0001.BAK; list what could not be saved",
             compact}),
    };
}

} // namespace tolvex::ctl
