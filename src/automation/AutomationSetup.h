// The workstation's side of the automation player: nine keys in section KOVA of its local ini file, as rows
// for its form, the shell and the tests.
#pragma once

#include <QString>
#include <QVariant>

#include <span>
#include <variant>

namespace tolvex {

struct Settings;
struct SettingRow;

struct AutomationKey {
    using Member = std::variant<qint16 Settings::*, qint32 Settings::*, QString Settings::*>;

    const char* key;
    const char* control; // of the form
    Member member;
    std::span<const char* const> words = {}; // of a list, by the stored number
    bool isFlag = false;
    const SettingRow* row = nullptr; // of the settings table
};

// In the order of writing.
std::span<const AutomationKey> AutomationKeys();
// Null when there is no such key. Case does not count.
const AutomationKey* FindAutomationKey(const QString& key);

// The folder of the automation databases, of a data location.
QString AutomationFolder(const Settings& settings);

// A flag as bool, a number as int, the name of the database as text. A number beyond the ends of its list is
// taken as the nearer end.
QVariant AutomationKeyValue(const Settings& settings, const AutomationKey& key);
void SetAutomationKeyValue(Settings& settings, const AutomationKey& key, const QVariant& value);

// The value in the words of the form, and back: the text or number of a list's entry, yes or no of a flag in
// many spellings. Invalid, with the end of a sentence in *why, for a value that the form could not give.
QString AutomationKeyText(const Settings& settings, const AutomationKey& key);
QVariant ParseAutomationKey(const AutomationKey& key, const QString& text, QString* why);

// Writes all nine to the local ini file, in their order and as one replacement. Result: ProfileError.
int StoreAutomationSetup(Settings& settings);

} // namespace tolvex
