// The items of the automation settings as rows: the name under which each is read and written, its default
// when the row is missing, and the value that removes the row.
#pragma once

#include "automation/AutomationSettings.h"

#include <QVariant>

#include <span>
#include <variant>

namespace tolvex {

// Defaults that are not constants.
enum class SpecialDefault {
    LogsFolder,   // the folder LOGS of the data location
    InMemory,     // the value in the record
    AlwaysStored, // as a write default: no value equals it
    NotWritten    // as a write default: other programs write the item
};

// A number never equals a text: a numeric item whose write default is a text always has a row.
using ItemDefault = std::variant<qint32, bool, const char*, SpecialDefault>;

struct AutomationItem {
    using Record = KOVADatabaseSettings;
    using Member = std::variant<qint32 Record::*, qint16 Record::*, float Record::*, bool Record::*,
                                QString Record::*, double Record::*>;

    const char* name; // under which it is written
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
        const auto* rule = std::get_if<SpecialDefault>(&writeDefault);
        return !rule || *rule != SpecialDefault::NotWritten;
    }
};

// In the order of reading.
std::span<const AutomationItem> AutomationItems();

// Items are written in groups: those whose names begin with each of these, in this order.
std::span<const char* const> AutomationWriteOrder();

// A default in the form in which the store holds values. Invalid for AlwaysStored and NotWritten.
QVariant DefaultValue(const AutomationItem& item, const ItemDefault& fallback,
                      const KOVADatabaseSettings& record, const QString& dataLocation);

// A member in the form in which the store holds values; a date becomes a text.
QVariant MemberValue(const AutomationItem& item, const KOVADatabaseSettings& record);

// Puts a stored value into a member: the number at the start of a text, a text, or a date. False when the
// number does not fit the member, which then keeps its value.
bool TakeMember(const AutomationItem& item, const QVariant& value, KOVADatabaseSettings& record);

} // namespace tolvex
