// The items of the automation settings as rows: how each is named when it is read and when it is written,
// what stands in for a missing one, and the value that is not stored.
#pragma once

#include "automation/AutomationSettings.h"

#include <QVariant>

#include <span>
#include <variant>

namespace tolvex {

// Defaults that are no constants.
enum class DefaultRule {
    LogsFolder, // the data location's folder LOGS
    InMemory,   // the value that the record has
    NotWritten  // other programs write the item
};

// A number never equals a text: an item of numbers whose write default is a text always has a row.
using ItemDefault = std::variant<qint32, bool, const char*, DefaultRule>;

struct AutomationItem {
    using Record = KOVADatabaseSettings;
    using Member = std::variant<qint32 Record::*, qint16 Record::*, float Record::*, bool Record::*,
                                QString Record::*, double Record::*>;

    const char* name; // as it is written
    Member member;
    ItemDefault readDefault;
    ItemDefault writeDefault;
    const char* readName = name;
    bool isTrimmed = false;

    constexpr AutomationItem readAs(const char* other) const {
        AutomationItem item = *this;
        item.readName = other;
        return item;
    }
    constexpr AutomationItem trimmed() const {
        AutomationItem item = *this;
        item.isTrimmed = true;
        return item;
    }
    bool isWritten() const {
        const auto* rule = std::get_if<DefaultRule>(&writeDefault);
        return !rule || *rule != DefaultRule::NotWritten;
    }
};

// In the order of reading.
std::span<const AutomationItem> AutomationItems();

// Items are written group by group, those whose name begins with each of these, in this order.
std::span<const char* const> AutomationWriteOrder();

// A default as a value of the store.
QVariant DefaultValue(const AutomationItem& item, const ItemDefault& fallback,
                      const KOVADatabaseSettings& record, const QString& dataLocation);

// A member as a value of the store: a date is a text.
QVariant MemberValue(const AutomationItem& item, const KOVADatabaseSettings& record);

// Takes a stored value into a member: the number at the start of a text, a text, a date. False when the
// number does not fit; the member is then unchanged.
bool TakeMember(const AutomationItem& item, const QVariant& value, KOVADatabaseSettings& record);

} // namespace tolvex
