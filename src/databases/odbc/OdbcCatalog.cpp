#include "databases/odbc/OdbcCatalog.h"

#include <algorithm>

namespace tolvex {

namespace {

const QString DefaultOwner = QStringLiteral("dbo");
const QString MainIndex = QStringLiteral("Main");
constexpr int DefaultTextSize = 255;

struct TableName {
    QString owner; // empty: not specified
    QString table;
};

TableName splitName(const QString& name) {
    const QString prefix = DefaultOwner + u'.';
    if (name.startsWith(prefix, Qt::CaseInsensitive))
        return {name.left(DefaultOwner.size()), name.mid(prefix.size())};
    return {{}, name};
}

bool same(const QString& first, const QString& second) {
    return first.compare(second, Qt::CaseInsensitive) == 0;
}

// The type as a statement declares it, from the catalogue's description.
QString declared(QString type, int size) {
    type = type.section(u' ', 0, 0); // without "identity"
    const bool hasSize = type.contains(QStringLiteral("char"), Qt::CaseInsensitive) ||
                         type.contains(QStringLiteral("binary"), Qt::CaseInsensitive);
    return hasSize && size > 0 ? QStringLiteral("%1(%2)").arg(type).arg(size) : type;
}

// Fields by owner, in the order of the catalogue.
struct OwnedFields {
    QString owner;
    std::vector<OdbcTable::Field> fields;
};

std::vector<OwnedFields> fieldsOf(OdbcConnection& connection, const TableName& name) {
    enum Column { Owner = 2, Table = 3, Name = 4, Type = 6, Size = 7, Nullable = 11 };
    std::vector<OwnedFields> found;
    OdbcStatement catalogue(connection);
    catalogue.columnsOf(name.owner, name.table);
    while (catalogue.fetch()) {
        const QString owner = catalogue.text(Owner);
        const bool wanted = same(catalogue.text(Table), name.table);
        OdbcTable::Field field{catalogue.text(Name), catalogue.text(Type)};
        field.type = declared(field.type, catalogue.number(Size));
        field.nullable = catalogue.number(Nullable) != SQL_NO_NULLS;
        if (!wanted)
            continue;
        if (found.empty() || found.back().owner != owner)
            found.push_back({owner, {}});
        found.back().fields.push_back(std::move(field));
    }
    return found;
}

std::vector<OdbcIndex> indexesOf(OdbcConnection& connection, const QString& owner, const QString& table) {
    enum Column { NotUnique = 4, Name = 6, Kind = 7, Field = 9 };
    std::vector<OdbcIndex> indexes;
    OdbcStatement catalogue(connection);
    catalogue.indexesOf(owner, table);
    while (catalogue.fetch()) {
        const bool unique = catalogue.number(NotUnique) == 0;
        const QString name = catalogue.text(Name);
        const bool isIndex = catalogue.number(Kind) != SQL_TABLE_STAT;
        const QString field = catalogue.text(Field);
        if (!isIndex)
            continue;
        if (indexes.empty() || indexes.back().name != name)
            indexes.push_back({name, unique, {}});
        indexes.back().fields += field;
    }
    return indexes;
}

} // namespace

QString BracketedName(const QString& name) {
    QString doubled = name;
    return u'[' + doubled.replace(u']', QStringLiteral("]]")) + u']';
}

QString BracketedTable(const QString& table) {
    const TableName name = splitName(table);
    return name.owner.isEmpty() ? BracketedName(name.table)
                                : BracketedName(name.owner) + u'.' + BracketedName(name.table);
}

QString BracketedList(const QStringList& names) {
    QStringList bracketed;
    for (const QString& name : names)
        bracketed += BracketedName(name);
    return bracketed.join(QStringLiteral(", "));
}

QStringList OdbcTable::key() const {
    QStringList found;
    for (const OdbcIndex& index : indexes)
        if (index.unique && (found.isEmpty() || same(index.name, MainIndex)))
            found = index.fields;
    return found;
}

std::optional<OdbcTable> FindServerTable(OdbcConnection& connection, const QString& name) {
    const TableName wanted = splitName(name);
    const auto owners = fieldsOf(connection, wanted);
    if (owners.empty())
        return std::nullopt;
    auto chosen = std::find_if(owners.begin(), owners.end(),
                               [](const OwnedFields& each) { return same(each.owner, DefaultOwner); });
    if (chosen == owners.end())
        chosen = owners.begin();
    return OdbcTable{name, chosen->fields, indexesOf(connection, chosen->owner, wanted.table)};
}

QString ServerType(const Field& field) {
    switch (field.kind) {
    case FieldKind::Boolean:
        return QStringLiteral("BIT NOT NULL DEFAULT 0");
    case FieldKind::Integer:
        return QStringLiteral("SMALLINT NULL");
    case FieldKind::Long:
        return QStringLiteral("INT NULL");
    case FieldKind::Single:
        return QStringLiteral("REAL NULL");
    case FieldKind::Double:
        return QStringLiteral("FLOAT NULL");
    case FieldKind::DateTime:
        return QStringLiteral("DATETIME NULL");
    case FieldKind::Text:
        return QStringLiteral("NVARCHAR(%1) NULL").arg(field.size == 0 ? DefaultTextSize : field.size);
    case FieldKind::Memo:
        return QStringLiteral("NVARCHAR(MAX) NULL");
    }
    return {};
}

QStringList IndexStatements(const OdbcTable& table, const Index& index) {
    const QString target = BracketedTable(table.name);
    QStringList fields;
    for (const char* field : index.fields)
        fields += QLatin1String(field);
    const QString name = QLatin1String(index.name);
    if (!index.primary)
        return {QStringLiteral("CREATE %1INDEX %2 ON %3 (%4)")
                    .arg(index.unique ? QStringLiteral("UNIQUE ") : QString(), BracketedName(name), target,
                         BracketedList(fields))};
    QStringList statements;
    for (const OdbcTable::Field& field : table.fields)
        if (field.nullable && fields.contains(field.name, Qt::CaseInsensitive))
            statements += QStringLiteral("ALTER TABLE %1 ALTER COLUMN %2 %3 NOT NULL")
                              .arg(target, BracketedName(field.name), field.type);
    // Constraints share their names with all tables of the database.
    statements += QStringLiteral("ALTER TABLE %1 ADD CONSTRAINT %2 PRIMARY KEY (%3)")
                      .arg(target, BracketedName(splitName(table.name).table + name), BracketedList(fields));
    return statements;
}

} // namespace tolvex
