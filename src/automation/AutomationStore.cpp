#include "automation/AutomationStore.h"

#include "automation/AutomationFields.h"
#include "automation/AutomationSchema.h"
#include "core/settings/SettingText.h"
#include "core/settings/Settings.h"
#include "core/text/Numbers.h"
#include "databases/store/Report.h"
#include "databases/store/SuiteDatabase.h"
#include "databases/suite/DatabaseKinds.h"
#include "databases/suite/DatabaseSettings.h"
#include "databases/suite/FindDatabases.h"
#include "databases/suite/ValidateDatabase.h"
#include "platform/profile/ProfileFile.h"

#include <QHash>

namespace tolvex {

namespace {

constexpr int OverflowError = 6;
constexpr qint32 NotConfigured = -1;
const QString BeenSet = QStringLiteral("BeenSet");
const QString Storing = QStringLiteral("storing the K-OVA settings");
const char* const OldAddress = "KOVA.ZQSServerAddress";
const char* const Address = "KOVA.SCComputerAddress";
const char* const Port = "KOVA.SCComputerPort";

// Items that come from the voice-tracker's own file when the database has 0.
constexpr struct {
    const char* item;
    const char* key;
    qint32 fallback;
} voiceTracker[] = {
    {"SEGUE.PreviewLength", "PreviewLength", 10},
    {"SEGUE.VoiceStartCart", "StartLinksCartNumber", 8001},
    {"SEGUE.VoiceEndCart", "EndLinksCartNumber", 8999},
};

bool is(const AutomationItem& item, const char* name) {
    return qstrcmp(item.name, name) == 0;
}

// Opens the settings table in the order of its index. Null after an error, which is reported.
std::unique_ptr<SuiteRecordset> openSettings(SuiteDatabase& database, int* error) {
    QString action = QStringLiteral("opening the K-OVA settings table");
    try {
        auto rows = database.open(QStringLiteral("Settings"), RecordsetMode::Table);
        action = QStringLiteral("setting the K-OVA Settings index");
        if (rows->tableMode())
            rows->setIndex(QStringLiteral("Main"));
        return rows;
    } catch (const DatabaseError& thrown) {
        *error = Report(action, thrown);
        return nullptr;
    }
}

// Returns the stored value of an item, or the fallback when it has none.
using LookUp = std::function<QVariant(const AutomationItem& item, const QVariant& fallback)>;

LookUp inTable(SuiteRecordset& rows) {
    return [&rows](const AutomationItem& item, const QVariant& fallback) {
        return GetDatabaseSetting(&rows, QLatin1String(item.readName), fallback);
    };
}

// The values of all items, read from the table in one pass. As in the table's index, case and blanks at the
// end of a name do not count.
class StoredItems {
public:
    explicit StoredItems(SuiteRecordset& rows)
        : values_(AutomationItems().size()) {
        if (rows.bof() && rows.eof())
            return;
        for (rows.moveFirst(); !rows.eof(); rows.moveNext()) {
            const auto at = places().constFind(key(rows.value(QStringLiteral("Item")).toString()));
            if (at != places().constEnd())
                values_[*at] = rows.value(QStringLiteral("Value"));
        }
    }
    // None when the item has no row; invalid when its row has no value.
    const std::optional<QVariant>& row(const AutomationItem& item) const {
        return values_[static_cast<std::size_t>(&item - AutomationItems().data())];
    }
    bool has(const AutomationItem& item, const QVariant& value) const {
        const std::optional<QVariant>& stored = row(item);
        const bool isFlag = value.typeId() == QMetaType::Bool;
        return stored && stored->isValid() &&
               stored->toString() == (isFlag ? QString::number(value.toBool() ? -1 : 0) : value.toString());
    }

private:
    static QString key(QString name) {
        while (name.endsWith(u' '))
            name.chop(1);
        return name.toLower();
    }
    // The items by name.
    static const QHash<QString, std::size_t>& places() {
        static const QHash<QString, std::size_t> all = [] {
            QHash<QString, std::size_t> made;
            for (std::size_t at = 0; at < AutomationItems().size(); ++at)
                made.insert(key(QLatin1String(AutomationItems()[at].name)), at);
            return made;
        }();
        return all;
    }

    std::vector<std::optional<QVariant>> values_;
};

QVariant readItem(const LookUp& lookUp, const AutomationItem& item, const KOVADatabaseSettings& record,
                  const QString& dataLocation) {
    QVariant value = lookUp(item, DefaultValue(item, item.readDefault, record, dataLocation));
    for (const auto& other : voiceTracker)
        if (is(item, other.item) && LeadingNumber(value.toString()) == 0)
            value = platform::ProfileInteger(QStringLiteral("Settings"), QLatin1String(other.key),
                                             other.fallback, QStringLiteral("stailor.ini"));
    return value;
}

// An address under its older name stands for the station control computer.
void adoptOldAddress(KOVADatabaseSettings& record) {
    record.KOVA_SCComputerAddress = record.KOVA_ZQSServerAddress;
    record.KOVA_SCComputerPort = 0;
}

bool readItems(const LookUp& lookUp, KOVADatabaseSettings& record, const QString& dataLocation) {
    bool oldAddress = false;
    for (const AutomationItem& item : AutomationItems()) {
        if (oldAddress && (is(item, Address) || is(item, Port)))
            continue;
        if (!TakeMember(item, readItem(lookUp, item, record, dataLocation), record))
            return false;
        if (is(item, OldAddress) && !record.KOVA_ZQSServerAddress.isEmpty()) {
            oldAddress = true;
            adoptOldAddress(record);
        }
    }
    return true;
}

bool isConfigured(SuiteRecordset& rows) {
    return LeadingNumber(GetDatabaseSetting(&rows, BeenSet, 0).toString()) != 0;
}

int writeItem(SuiteRecordset& rows, const StoredItems& stored, const AutomationItem& item,
              const KOVADatabaseSettings& record, const QString& dataLocation) {
    if (!item.isWritten())
        return 0;
    const QString name = QLatin1String(item.name);
    // The address goes on under its new name.
    if (is(item, OldAddress))
        return stored.row(item).value_or(QVariant()).toString().isEmpty()
                   ? 0
                   : PutDatabaseSetting(&rows, name, QString(), QString());
    const QVariant value = MemberValue(item, record);
    const QVariant fallback = DefaultValue(item, item.writeDefault, record, dataLocation);
    // The table is not searched for an item whose row is right already.
    const bool isAsItShouldBe =
        SameStoredValue(value, fallback) ? !stored.row(item) : stored.has(item, value);
    if (isAsItShouldBe)
        return 0;
    return PutDatabaseSetting(&rows, name, value, fallback);
}

// The items in the order of writing.
const std::vector<const AutomationItem*>& writtenItems() {
    static const std::vector<const AutomationItem*> all = [] {
        std::vector<const AutomationItem*> made;
        for (const char* group : AutomationWriteOrder())
            for (const AutomationItem& item : AutomationItems())
                if (QLatin1String(item.name).startsWith(QLatin1String(group)))
                    made.push_back(&item);
        return made;
    }();
    return all;
}

int writeItems(SuiteRecordset& rows, const StoredItems& stored, const KOVADatabaseSettings& record,
               const QString& dataLocation) {
    for (const AutomationItem* item : writtenItems())
        if (const int error = writeItem(rows, stored, *item, record, dataLocation))
            return error;
    return 0;
}

int markConfigured(SuiteRecordset& rows) {
    return isConfigured(rows) ? 0 : PutDatabaseSetting(&rows, BeenSet, 1, 0);
}

int putBeenSet(SuiteDatabase& database) {
    auto rows = database.open(QStringLiteral("Settings"), RecordsetMode::Table);
    rows->setIndex(QStringLiteral("Main"));
    return markConfigured(*rows);
}

// Runs `write` on the settings table as one transaction, which is rolled back if it returns a number other
// than 0 or throws. Reports wait until the transaction is over.
int inTransaction(SuiteDatabase& database, const std::function<int(SuiteRecordset& rows)>& write) {
    int error = 0;
    const HeldReports reports;
    if (const QString why = database.readOnlyReason(); !why.isEmpty())
        return Report(Storing, {ReadOnlyError, QStringLiteral("The database may not be changed: ") + why});
    try {
        DatabaseTransaction transaction(database);
        const auto rows = openSettings(database, &error);
        if (!rows)
            return error;
        // PutDatabaseSetting does nothing with such a table, and reports nothing.
        if (!rows->updatable())
            return Report(Storing, {ReadOnlyError, QStringLiteral("The settings table may not be changed.")});
        error = write(*rows);
        if (error == 0)
            transaction.commit();
    } catch (const DatabaseError& thrown) {
        error = Report(Storing, thrown);
    }
    return error;
}

// What others have changed in the table since it was read; `loaded` becomes the table as it is now.
QList<AutomationChange> changesSince(const StoredItems& stored, KOVADatabaseSettings& loaded,
                                     const QString& dataLocation) {
    KOVADatabaseSettings now = loaded;
    const auto lookUp = [&stored](const AutomationItem& item, const QVariant& fallback) {
        return stored.row(item).value_or(fallback);
    };
    readItems(lookUp, now, dataLocation);
    QList<AutomationChange> changes;
    for (const AutomationItem& item : AutomationItems())
        if (item.isWritten() && !is(item, OldAddress) && MemberValue(item, now) != MemberValue(item, loaded))
            changes.append(
                {QLatin1String(item.name), AutomationItemText(item, loaded), AutomationItemText(item, now)});
    loaded = now;
    return changes;
}

// Fills the default database. 0 or, reported, the error number. An index that could not be added is an error
// too, since nobody would add it later.
int fillDefault(SuiteDatabase& database) {
    if (const int error = CheckTables(database, KOVADatabaseTables()))
        return error;
    return HasKOVADatabaseIndexes(database) ? putBeenSet(database) : int{ItemNotFoundError};
}

int markFile(const QString& path) {
    try {
        const auto database = OpenSuiteDatabase(path);
        const int error = putBeenSet(*database);
        database->close();
        return error;
    } catch (const DatabaseError& error) {
        return Report(QStringLiteral("opening the K-OVA settings table"), error);
    }
}

} // namespace

qint32 LoadKOVASettings(SuiteDatabase& database, KOVADatabaseSettings& record, const QString& dataLocation,
                        const std::function<void()>& showDialogIfNew) {
    int error = 0;
    const auto rows = openSettings(database, &error);
    if (!rows)
        return error;
    if (!readItems(inTable(*rows), record, dataLocation))
        return OverflowError;
    if (showDialogIfNew && !isConfigured(*rows))
        showDialogIfNew();
    return isConfigured(*rows) ? 0 : NotConfigured;
}

QString ItemOutOfRange(SuiteDatabase& database, const QString& dataLocation) {
    int error = 0;
    const auto rows = openSettings(database, &error);
    if (!rows)
        return {};
    const LookUp lookUp = inTable(*rows);
    KOVADatabaseSettings scratch;
    for (const AutomationItem& item : AutomationItems())
        if (!TakeMember(item, readItem(lookUp, item, scratch, dataLocation), scratch))
            return QLatin1String(item.name);
    return {};
}

qint16 SaveKOVASettings(SuiteDatabase& database, const KOVADatabaseSettings& record,
                        const QString& dataLocation) {
    return static_cast<qint16>(inTransaction(database, [&](SuiteRecordset& rows) {
        return writeItems(rows, StoredItems(rows), record, dataLocation);
    }));
}

qint32 StoreKOVASettings(SuiteDatabase& database, const KOVADatabaseSettings& record,
                         KOVADatabaseSettings& loaded, const QString& dataLocation,
                         const MayOverwrite& mayOverwrite) {
    for (;;) {
        QList<AutomationChange> changes;
        const int error = inTransaction(database, [&](SuiteRecordset& rows) -> int {
            const StoredItems stored(rows);
            changes = changesSince(stored, loaded, dataLocation);
            if (!changes.isEmpty())
                return NotStored;
            if (const int failed = writeItems(rows, stored, record, dataLocation))
                return failed;
            return markConfigured(rows);
        });
        if (error == 0)
            loaded = record;
        if (changes.isEmpty())
            return error;
        if (!mayOverwrite(changes))
            return NotStored;
    }
}

qint32 CreateDefaultKOVADatabase(Settings& values, bool setAsDefault) {
    const SettingRow& row = RowOf<&Settings::DefaultDatabase>();
    const QString fileName = QStringLiteral("KOVA26.MDB");
    const QString folder = values.DataLocation + QStringLiteral("\\SCHEDULE\\");
    const QString path = folder + fileName;
    QString first;
    if (!SettingText(row, values.LocalIniFile).isEmpty() ||
        FindDatabaseOfType(folder, KOVAType, &first, 1) > 0)
        return 0;
    QString title = QStringLiteral("K-Ova Database");
    if (ValidateDatabase(path, KOVAType, true, &title, {}, fillDefault) != 0 ||
        ValidateKOVADatabaseTables(path) != 0 || markFile(path) != 0)
        return 0;
    if (setAsDefault && WriteSettingText(row, fileName, values.LocalIniFile) == platform::ProfileOk)
        values.DefaultDatabase = fileName;
    return -1;
}

} // namespace tolvex
