#include "automation/AutomationStore.h"

#include "automation/AutomationItems.h"
#include "automation/AutomationSchema.h"
#include "core/Folders.h"
#include "core/Numbers.h"
#include "core/Settings.h"
#include "databases/DatabaseKinds.h"
#include "databases/DatabaseSettings.h"
#include "databases/FindDatabases.h"
#include "databases/Report.h"
#include "databases/SuiteDatabase.h"
#include "databases/ValidateDatabase.h"
#include "platform/Files.h"
#include "platform/ProfileFile.h"

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

QVariant readItem(SuiteRecordset& rows, const AutomationItem& item, const KOVADatabaseSettings& record) {
    QVariant value =
        GetDatabaseSetting(&rows, QLatin1String(item.readName), DefaultValue(item, item.readDefault, record));
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

bool readItems(SuiteRecordset& rows, KOVADatabaseSettings& record) {
    bool oldAddress = false;
    for (const AutomationItem& item : AutomationItems()) {
        if (oldAddress && (is(item, Address) || is(item, Port)))
            continue;
        if (!TakeMember(item, readItem(rows, item, record), record))
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

int writeItem(SuiteRecordset& rows, const AutomationItem& item, const KOVADatabaseSettings& record) {
    if (!item.isWritten())
        return 0;
    const QString name = QLatin1String(item.name);
    // The address goes on under its new name.
    if (is(item, OldAddress))
        return GetDatabaseSetting(&rows, name, QString()).toString().isEmpty()
                   ? 0
                   : PutDatabaseSetting(&rows, name, QString(), QString());
    return PutDatabaseSetting(&rows, name, MemberValue(item, record),
                              DefaultValue(item, item.writeDefault, record));
}

int writeItems(SuiteRecordset& rows, const KOVADatabaseSettings& record) {
    for (const char* group : AutomationWriteOrder())
        for (const AutomationItem& item : AutomationItems())
            if (QLatin1String(item.name).startsWith(QLatin1String(group)))
                if (const int error = writeItem(rows, item, record))
                    return error;
    return 0;
}

// Marks a database that is whole. 0; -1 when something is missing in it; else the error number.
int markConfigured(const QString& path) {
    try {
        const auto database = OpenSuiteDatabase(path);
        if (!HasKOVADatabaseIndexes(*database))
            return NotConfigured;
        auto rows = database->open(QStringLiteral("Settings"), RecordsetMode::Table);
        rows->setIndex(QStringLiteral("Main"));
        const int error = PutDatabaseSetting(rows.get(), BeenSet, 1, 0);
        rows.reset();
        database->close();
        return error;
    } catch (const DatabaseError& error) {
        return Report(QStringLiteral("opening the K-OVA settings table"), error);
    }
}

const QString DefaultTitle = QStringLiteral("K-Ova Database");

// Whether the default database was begun and never finished: its making was interrupted. The mark that it is
// configured is the last thing it gets.
bool isUnfinished(const QString& path) {
    if (FileLength(path) <= 0)
        return false;
    try {
        const auto database = OpenSuiteDatabase(path);
        if (!database->table(QStringLiteral("Description")))
            return true;
        const auto row = database->open(QStringLiteral("Description"), RecordsetMode::Table);
        if (row->eof())
            return true;
        if (row->value(QStringLiteral("Type")).toInt() != KOVAType ||
            row->value(QStringLiteral("Description")).toString() != DefaultTitle)
            return false;
        const auto table = database->table(QStringLiteral("Settings"));
        if (!table || !table->indexes.contains(QStringLiteral("Main"), Qt::CaseInsensitive))
            return true;
        const auto rows = database->open(QStringLiteral("Settings"), RecordsetMode::Table);
        rows->setIndex(QStringLiteral("Main"));
        return !isConfigured(*rows);
    } catch (const DatabaseError&) {
        return false;
    }
}

} // namespace

KOVADatabaseSettings& kovaDatabaseSettings() {
    static KOVADatabaseSettings record;
    return record;
}

void ResetKOVADatabaseSettings() {
    kovaDatabaseSettings() = KOVADatabaseSettings();
}

qint32 LoadKOVASettings(SuiteDatabase& database, const std::function<void()>& showDialogIfNew) {
    int error = 0;
    const auto rows = openSettings(database, &error);
    if (!rows)
        return error;
    if (!readItems(*rows, kovaDatabaseSettings()))
        return OverflowError;
    if (showDialogIfNew && !isConfigured(*rows))
        showDialogIfNew();
    return isConfigured(*rows) ? 0 : NotConfigured;
}

qint16 SaveKOVASettings(SuiteDatabase& database) {
    int error = 0;
    const auto rows = openSettings(database, &error);
    if (!rows)
        return static_cast<qint16>(error);
    const HeldReports reports;
    try {
        database.begin();
        error = writeItems(*rows, kovaDatabaseSettings());
        if (error == 0)
            database.commit();
        else
            database.rollback();
    } catch (const DatabaseError& thrown) {
        error = Report(QStringLiteral("updating the database setting : "), thrown);
    }
    return static_cast<qint16>(error);
}

qint32 CreateDefaultKOVADatabase(bool setAsDefault) {
    const QString section = QStringLiteral("KOVA");
    const QString key = QStringLiteral("DefaultDatabase");
    const QString fileName = QStringLiteral("KOVA26.MDB");
    Settings& values = settings();
    const QString folder = values.DataLocation + QStringLiteral("\\SCHEDULE\\");
    const QString path = folder + fileName;
    const QString present = platform::ProfileText(section, key, {}, values.LocalIniFile);
    const bool named = present.compare(fileName, Qt::CaseInsensitive) == 0;
    // A workstation that moves to another data location names one that is not there.
    const bool begun =
        (named && !platform::FileExists(path)) || ((named || present.isEmpty()) && isUnfinished(path));
    if (!begun) {
        QString first;
        if (!present.isEmpty() || FindDatabaseOfType(folder, KOVAType, &first, 1) > 0)
            return 0;
    }
    QString title = DefaultTitle;
    if (ValidateDatabase(path, KOVAType, true, &title) != 0 || ValidateKOVADatabaseTables(path) != 0)
        return 0;
    if (setAsDefault) {
        if (platform::WriteProfileText(section, key, fileName, values.LocalIniFile) != platform::ProfileOk)
            return 0;
        values.DefaultDatabase = fileName;
    }
    return markConfigured(path) == 0 ? -1 : 0;
}

} // namespace tolvex
