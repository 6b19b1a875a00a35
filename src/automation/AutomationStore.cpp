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
const char* const OldAddress = "KOVA.ZQSServerAddress";
const char* const Address = "KOVA.SCComputerAddress";
const char* const Port = "KOVA.SCComputerPort";

// Items that are taken from the voice-tracker's own file where the database says 0.
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

// The settings table in the order of its index; null, reported, with the error number.
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

// Gives the value of an item by its name, or the fallback where it has none.
using LookUp = std::function<QVariant(const QString& name, const QVariant& fallback)>;

LookUp inTable(SuiteRecordset& rows) {
    return [&rows](const QString& name, const QVariant& fallback) {
        return GetDatabaseSetting(&rows, name, fallback);
    };
}

// All items of the table by name, read in one pass. Names match as the table's index has them: without regard
// to case and to blanks at their end.
class StoredItems {
public:
    explicit StoredItems(SuiteRecordset& rows) {
        if (rows.bof() && rows.eof())
            return;
        for (rows.moveFirst(); !rows.eof(); rows.moveNext())
            values_.insert(key(rows.value(QStringLiteral("Item")).toString()),
                           rows.value(QStringLiteral("Value")));
    }
    QVariant value(const QString& name, const QVariant& fallback) const {
        return values_.value(key(name), fallback);
    }
    bool has(const QString& name, const QVariant& value) const {
        const QVariant stored = values_.value(key(name));
        const bool isFlag = value.typeId() == QMetaType::Bool;
        return stored.isValid() &&
               stored.toString() == (isFlag ? QString::number(value.toBool() ? -1 : 0) : value.toString());
    }

private:
    static QString key(QString name) {
        while (name.endsWith(u' '))
            name.chop(1);
        return name.toLower();
    }

    QHash<QString, QVariant> values_;
};

QVariant readItem(const LookUp& lookUp, const AutomationItem& item, const KOVADatabaseSettings& record,
                  const QString& dataLocation) {
    QVariant value =
        lookUp(QLatin1String(item.readName), DefaultValue(item, item.readDefault, record, dataLocation));
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
        return stored.value(name, QString()).toString().isEmpty()
                   ? 0
                   : PutDatabaseSetting(&rows, name, QString(), QString());
    const QVariant value = MemberValue(item, record);
    const QVariant fallback = DefaultValue(item, item.writeDefault, record, dataLocation);
    // Nothing is asked of the table for an item that is as it should be.
    const bool isAsItShouldBe =
        SameStoredValue(value, fallback) ? !stored.value(name, {}).isValid() : stored.has(name, value);
    if (isAsItShouldBe)
        return 0;
    return PutDatabaseSetting(&rows, name, value, fallback);
}

int writeItems(SuiteRecordset& rows, const StoredItems& stored, const KOVADatabaseSettings& record,
               const QString& dataLocation) {
    for (const char* group : AutomationWriteOrder())
        for (const AutomationItem& item : AutomationItems())
            if (QLatin1String(item.name).startsWith(QLatin1String(group)))
                if (const int error = writeItem(rows, stored, item, record, dataLocation))
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

// Runs `write` on the settings table as one transaction, which is undone when it gives a number other than 0
// or throws. Reports wait until it is over.
int inTransaction(SuiteDatabase& database, const std::function<int(SuiteRecordset& rows)>& write) {
    int error = 0;
    const HeldReports reports;
    try {
        DatabaseTransaction transaction(database);
        const auto rows = openSettings(database, &error);
        if (!rows)
            return error;
        // Each item by itself would pass such a table over in silence.
        if (!rows->updatable())
            return Report(
                QStringLiteral("opening the K-OVA settings table"),
                {ReadOnlyError, QStringLiteral("It may not be changed. ") + database.readOnlyReason()});
        error = write(*rows);
        if (error == 0)
            transaction.commit();
    } catch (const DatabaseError& thrown) {
        error = Report(QStringLiteral("updating the database setting : "), thrown);
    }
    return error;
}

// What stands in the table in place of what was read from it.
QList<AutomationChange> changesSince(const StoredItems& stored, KOVADatabaseSettings& loaded,
                                     const QString& dataLocation) {
    KOVADatabaseSettings now = loaded;
    const auto lookUp = [&stored](const QString& name, const QVariant& fallback) {
        return stored.value(name, fallback);
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

// What the default database has from the start. 0 or, reported, the error number: also for an index that
// could not be added, since nobody would add it later.
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
