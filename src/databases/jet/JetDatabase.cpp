#include "databases/jet/JetDatabase.h"

#include "core/text/PathNames.h"
#include "core/time/Dates.h"
#include "jet/Database.h"
#include "jet/Design.h"
#include "jet/Draft.h"
#include "jet/Query.h"
#include "jet/Recordset.h"
#include "jet/Salvage.h"
#include "platform/host/LookOnly.h"
#include "platform/paths/Paths.h"

#include <type_traits>

namespace tolvex {

namespace {

// Runs operations of the engine on one database; rethrows their errors as DatabaseErrors, and names the file
// in those of damage.
class OnEngine {
public:
    explicit OnEngine(QString path)
        : path_(std::move(path)) {}
    template<typename Operation>
    auto operator()(Operation operation) const -> decltype(operation()) {
        try {
            return operation();
        } catch (const jet::Error& error) {
            DatabaseError thrown = FromEngine(error, path_);
            if (jet::IsDamage(error) && !thrown.text.contains(path_))
                thrown.text.prepend(path_ + QStringLiteral(": "));
            throw thrown;
        }
    }

private:
    QString path_;
};

std::u16string engineText(const QString& text) {
    return text.toStdU16String();
}

QString suiteText(const std::u16string& text) {
    return QString::fromStdU16String(text);
}

jet::FieldDesign fieldDesign(const Field& field, bool allowZeroLength) {
    jet::FieldDesign design;
    design.name = engineText(QLatin1String(field.name));
    design.type = static_cast<jet::ColumnType>(field.kind);
    design.size = field.size;
    design.allowZeroLength =
        allowZeroLength && (field.kind == FieldKind::Text || field.kind == FieldKind::Memo);
    return design;
}

class JetRecordset final : public SuiteRecordset {
public:
    JetRecordset(jet::Recordset rows, OnEngine engine)
        : rows_(std::move(rows))
        , onEngine(std::move(engine)) {}

    QString name() const override { return suiteText(rows_.name()); }
    bool tableMode() const override { return rows_.kind() == jet::Recordset::Kind::Table; }
    bool updatable() const override { return rows_.updatable(); }
    int recordCount() const override {
        return onEngine([&] { return static_cast<int>(rows_.recordCount()); });
    }
    int size(const QString& field) const override {
        return onEngine([&] { return rows_.size(rows_.field(engineText(field))); });
    }
    void setIndex(const QString& index) override {
        onEngine([&] { rows_.setIndex(engineText(index)); });
    }
    void seek(const QVariant& value) override {
        onEngine([&] { rows_.seek(jet::SeekComparison::Equal, ToEngineValue(value)); });
    }
    void findFirst(const QString& criterion) override {
        onEngine([&] { rows_.findFirst(engineText(criterion)); });
    }
    bool noMatch() const override { return rows_.noMatch(); }
    bool bof() const override { return rows_.bof(); }
    bool eof() const override { return rows_.eof(); }
    void moveFirst() override {
        onEngine([&] { rows_.moveFirst(); });
    }
    void moveNext() override {
        onEngine([&] { rows_.moveNext(); });
    }
    QVariant value(const QString& field) override {
        return onEngine([&] { return ToVariant(rows_.value(engineText(field))); });
    }
    void addNew() override {
        onEngine([&] { rows_.addNew(); });
    }
    void edit() override {
        onEngine([&] { rows_.edit(); });
    }
    void set(const QString& field, const QVariant& value) override {
        onEngine([&] { rows_.set(engineText(field), ToEngineValue(value)); });
    }
    void update() override {
        onEngine([&] { rows_.update(); });
    }
    void remove() override {
        onEngine([&] { rows_.remove(); });
    }

private:
    jet::Recordset rows_;
    const OnEngine onEngine;
};

class JetDatabase final : public SuiteDatabase {
public:
    JetDatabase(jet::Database database, OnEngine engine)
        : database_(std::move(database))
        , onEngine(std::move(engine)) {}

    QString engineVersion() const override {
        return database_.header().version == jet::PageZero::Jet3 ? QStringLiteral("3.0")
                                                                 : QStringLiteral("4.0");
    }

    QString readOnlyReason() const override { return QString::fromStdString(database_.readOnlyReason()); }

    std::optional<Shape> table(const QString& name) override {
        return onEngine([&]() -> std::optional<Shape> {
            const auto object = database_.catalog().findTable(engineText(name));
            if (!object)
                return std::nullopt;
            Shape shape;
            const jet::TableDesign design = jet::DescribeTable(database_.catalog(), *object);
            for (const jet::FieldDesign& field : design.fields)
                shape.fields += suiteText(field.name);
            for (const jet::IndexDesign& index : design.indexes)
                shape.indexes += suiteText(index.name);
            return shape;
        });
    }
    void createTable(const QString& name, const Field& first, bool allowZeroLength) override {
        onEngine([&] {
            jet::AppendTable(database_.catalog(),
                             {engineText(name), {fieldDesign(first, allowZeroLength)}, {}, {}});
        });
    }
    void appendField(const QString& table, const Field& field, bool allowZeroLength) override {
        onEngine([&] {
            jet::AppendField(database_.catalog(), engineText(table), fieldDesign(field, allowZeroLength));
        });
    }
    void appendIndex(const QString& table, const Index& index) override {
        onEngine([&] {
            jet::IndexDesign design;
            design.name = engineText(QLatin1String(index.name));
            for (const char* field : index.fields)
                design.fields.push_back({engineText(QLatin1String(field)), false});
            design.unique = index.unique;
            design.primary = index.primary;
            jet::AppendIndex(database_.catalog(), engineText(table), design);
        });
    }

    std::unique_ptr<SuiteRecordset> open(const QString& source, RecordsetMode mode) override {
        return onEngine([&]() -> std::unique_ptr<SuiteRecordset> {
            const auto kind =
                mode == RecordsetMode::Table ? jet::Recordset::Kind::Table : jet::Recordset::Kind::Dynaset;
            return std::make_unique<JetRecordset>(jet::Recordset::open(database_, engineText(source), kind),
                                                  onEngine);
        });
    }
    void execute(const QString& statement) override {
        onEngine([&] { jet::Execute(database_.catalog(), engineText(statement)); });
    }

    void begin() override {
        onEngine([&] { database_.beginTransaction(); });
    }
    void commit() override {
        onEngine([&] { database_.commit(); });
    }
    void rollback() override {
        onEngine([&] { database_.rollback(); });
    }
    void refresh() override {
        onEngine([&] {
            try {
                if (database_.transactionDepth() == 0)
                    database_.flush();
            } catch (const jet::Error& error) {
                // A running transaction brings everything into the file when it ends.
                if (error.code() != jet::ErrorNumber::RecordLocked)
                    throw;
            }
            database_.refresh();
        });
    }
    void close() override {
        onEngine([&] { database_.close(); });
    }

private:
    jet::Database database_;
    const OnEngine onEngine;
};

// Nothing for a number that is not a day.
QVariant dateOf(double days) {
    const QDateTime date = FromSerialDate(days);
    return date.isValid() ? QVariant(date) : QVariant();
}

} // namespace

QVariant ToVariant(const jet::Value& value) {
    return std::visit(
        [](const auto& held) -> QVariant {
            using Held = std::decay_t<decltype(held)>;
            if constexpr (std::is_same_v<Held, std::monostate>)
                return {};
            else if constexpr (std::is_same_v<Held, bool> || std::is_floating_point_v<Held>)
                return held;
            else if constexpr (std::is_integral_v<Held>)
                return static_cast<int>(held);
            else if constexpr (std::is_same_v<Held, jet::Currency>)
                return static_cast<double>(held.tenThousandths) / 10000;
            else if constexpr (std::is_same_v<Held, jet::Date>)
                return dateOf(held.days);
            else if constexpr (std::is_same_v<Held, std::u16string>)
                return QString::fromStdU16String(held);
            else if constexpr (std::is_same_v<Held, jet::Bytes>)
                return QByteArray(reinterpret_cast<const char*>(held.data()),
                                  static_cast<qsizetype>(held.size()));
            else
                throw DatabaseError{TypeMismatchError, QStringLiteral("Type mismatch")};
        },
        value);
}

jet::Value ToEngineValue(const QVariant& value) {
    switch (value.typeId()) {
    case QMetaType::UnknownType:
        return {};
    case QMetaType::Bool:
        return value.toBool();
    case QMetaType::Short:
    case QMetaType::Int:
        return std::int32_t{value.toInt()};
    case QMetaType::Float:
        return value.toFloat();
    case QMetaType::Double:
        return value.toDouble();
    case QMetaType::QDateTime:
        return jet::Date{SerialDate(value.toDateTime())};
    case QMetaType::QString:
        return value.toString().toStdU16String();
    default:
        throw DatabaseError{TypeMismatchError, QStringLiteral("Type mismatch")};
    }
}

DatabaseError FromEngine(const jet::Error& error, const QString& path) {
    DatabaseError thrown{error.number(), QString::fromUtf8(error.what())};
    // Without the extension: the lock file and the log stand beside the database.
    if (const QString host = PathWithoutExtension(platform::HostPath(path)); !host.isEmpty())
        thrown.text.replace(host, PathWithoutExtension(path));
    return thrown;
}

std::string EnginePath(const QString& path) {
    const QString host = platform::HostPath(path);
    if (host.isEmpty())
        throw FromEngine(jet::Error(jet::ErrorNumber::SearchKeyNotFound, path.toStdString()));
    return host.toStdString();
}

std::unique_ptr<SuiteDatabase> OpenJetDatabase(const QString& path) {
    const std::string host = EnginePath(path);
    jet::OpenOptions options;
    options.readOnly = platform::LookingOnly();
    const OnEngine onEngine(path);
    return onEngine([&]() -> std::unique_ptr<SuiteDatabase> {
        return std::make_unique<JetDatabase>(jet::Database::open(host, options), onEngine);
    });
}

void CreateSuiteDatabase(const QString& path, const std::function<void(SuiteDatabase&)>& fill) {
    const std::string host = EnginePath(path);
    const OnEngine onEngine(path);
    onEngine([&] {
        jet::Storage& storage = jet::MachineStorage();
        jet::Draft draft(storage, host);
        if (fill) {
            jet::OpenOptions alone;
            alone.exclusive = true;
            JetDatabase database(jet::Database::open(storage, draft.path(), alone), onEngine);
            fill(database);
            database.close();
        }
        draft.publish();
    });
}

void RemoveEmptyDatabase(const QString& path) {
    const std::string host = EnginePath(path);
    OnEngine{path}([&] { jet::Draft::removeEmpty(jet::MachineStorage(), host); });
}

} // namespace tolvex
