#include "databases/suite/DatabaseSettings.h"

#include "databases/store/Report.h"
#include "databases/store/SuiteDatabase.h"

#include <optional>

namespace tolvex {

namespace {

constexpr int LongestItem = 250;
constexpr int MostAttempts = 10; // at a row that other workstations change at the same time
const QString Item = QStringLiteral("Item");
const QString Value = QStringLiteral("Value");
const QString MainIndex = QStringLiteral("Main");

QString cutItem(const SuiteRecordset& recordset, const QString& item) {
    const int size = recordset.size(Item);
    return item.left(size == 0 ? LongestItem : size);
}

void useMainIndex(SuiteRecordset& recordset) {
    try {
        recordset.setIndex(MainIndex);
    } catch (const DatabaseError& error) {
        // Tables imported from a server have its prefix in their names.
        try {
            recordset.setIndex(recordset.name() + MainIndex);
        } catch (const DatabaseError&) {
            throw error;
        }
    }
}

// Moves to the item's row; false if there is none.
bool locate(SuiteRecordset& recordset, const QString& item) {
    if (recordset.tableMode()) {
        useMainIndex(recordset);
        recordset.seek(item);
        return !recordset.noMatch();
    }
    if (recordset.recordCount() < 1)
        return false;
    recordset.findFirst(QStringLiteral("Item=") + QuotedText(item.trimmed(), u'"'));
    return !recordset.noMatch();
}

std::optional<double> numberOf(const QVariant& value) {
    switch (value.typeId()) {
    case QMetaType::Bool:
        return value.toBool() ? -1 : 0;
    case QMetaType::Short:
    case QMetaType::Int:
    case QMetaType::Float:
    case QMetaType::Double:
        return value.toDouble();
    default:
        return std::nullopt;
    }
}

void clear(SuiteRecordset& recordset) {
    recordset.remove();
    if (!recordset.eof())
        recordset.moveNext();
}

// `action` says what was being done when it throws.
void put(SuiteRecordset& recordset, const QString& name, const QVariant& value, const QVariant& fallback,
         const char*& action) {
    const bool found = locate(recordset, name);
    if (SameStoredValue(value, fallback)) {
        action = "clearing the database setting : ";
        if (found)
            clear(recordset);
        return;
    }
    if (found) {
        action = "starting to edit an existing setting : ";
        recordset.edit();
    } else {
        action = "starting to add a new setting : ";
        recordset.addNew();
        action = "setting the item name for a new setting : ";
        recordset.set(Item, name);
    }
    action = "setting the value for a setting : ";
    recordset.set(Value, value);
    action = "updating the database setting : ";
    recordset.update();
}

} // namespace

bool SameStoredValue(const QVariant& first, const QVariant& second) {
    const auto number = numberOf(first);
    const auto other = numberOf(second);
    if (number || other)
        return number == other;
    return first.isValid() && first.typeId() == second.typeId() && first == second;
}

QVariant GetDatabaseSetting(SuiteRecordset* recordset, const QString& item, const QVariant& fallback) {
    if (!recordset || item.isEmpty())
        return {};
    try {
        return locate(*recordset, cutItem(*recordset, item)) ? recordset->value(Value) : fallback;
    } catch (const DatabaseError& error) {
        KeepSilent(error);
        return fallback;
    }
}

qint32 PutDatabaseSetting(SuiteRecordset* recordset, const QString& item, const QVariant& value,
                          const QVariant& fallback, const QString& errorContext) {
    if (!recordset || item.isEmpty() || !recordset->updatable())
        return 0;
    for (int attempt = 1;; ++attempt) {
        const char* action = "locating the database setting : ";
        try {
            put(*recordset, cutItem(*recordset, item), value, fallback, action);
            return 0;
        } catch (const DatabaseError& error) {
            if (attempt == MostAttempts || !IsOthersChange(error.number))
                return Report(errorContext + QLatin1String(action) + item, error);
        }
    }
}

} // namespace tolvex
