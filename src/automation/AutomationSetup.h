// The workstation's side of the automation player: nine keys in section KOVA of its local ini file. Its form,
// the shell and the tests work from these rows.
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

// A flag as bool, a number as int, the name of the database as text. A number that is not in its list is
// moved to the nearer end of it.
QVariant AutomationKeyValue(const Settings& settings, const AutomationKey& key);
void SetAutomationKeyValue(Settings& settings, const AutomationKey& key, const QVariant& value);

// The value in the words of the form, and back: of a list its text or number, of a flag yes or no in many
// spellings. Nothing, with the end of a sentence in *why, for what the form has no place for.
QString AutomationKeyText(const Settings& settings, const AutomationKey& key);
QVariant ParseAutomationKey(const AutomationKey& key, const QString& text, QString* why);

// Writes all nine, in their order and as one replacement, to the local ini file. Result: 0 or the platform's
// error number.
int StoreAutomationSetup(Settings& settings);

} // namespace tolvex
