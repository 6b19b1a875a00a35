// The controls of the window that edits an automation database, as rows: which item each one edits, and how.
// From the rows follow what the controls show, what is checked on OK and what is stored; none of it needs a
// widget.
#pragma once

#include "automation/AutomationItems.h"

#include <QMap>

#include <optional>

namespace tolvex {

// What stands in the controls, by their names: of a box to tick or a radio button 0 or 1, of a list the
// entry, of a button with a colour the colour, all as int; of a box to type in the text.
using AutomationEntries = QMap<QString, QVariant>;

struct AutomationField {
    enum class Kind {
        Flag,
        Number, // typed
        Digits, // typed, and only digits
        Text,
        List,   // the entry is the number
        Player, // a cart player, 255 for the last one
        Colour,
        // Edited by several controls, of which `control` is one.
        AutoRestart,
        LevelTrigger,
        ClientDatabase,
        FadeTime,
        StationControl,
        // In the record itself: a form shows and changes it there.
        Font,
        AudioFormat
    };
    const char* item;
    const char* control;
    Kind kind;
    std::span<const char* const> words = {}; // of a list
};
std::span<const AutomationField> AutomationFields();
// Null for an item that no control edits.
const AutomationField* FindAutomationField(const QString& item);
// The texts of the lists that show several items.
std::span<const char* const> PlayerWords();
std::span<const char* const> StationControlWords();
// Formats of file names that are offered; any other may be typed.
std::span<const char* const> FilenameFormats();

// A panel that shows how texts will look, painted by two buttons with a colour; null: it keeps its own. What
// the buttons of an item hold is stored; that of the others only paints.
struct AutomationPanel {
    const char* panel;
    const char* ground;
    const char* text;
};
std::span<const AutomationPanel> AutomationPanels();

// What the controls show of a record. Values that a list does not have are moved to the nearer end of it.
AutomationEntries ShowAutomationSettings(const KOVADatabaseSettings& record);

// Why the entries cannot be stored, and the control that is wrong.
struct AutomationFault {
    QString message;
    QString control;
};
// The checks of OK, in their order; the first that fails. Folders lose a trailing backslash. `carts`: how
// many carts the audiowall has.
std::optional<AutomationFault> CheckAutomationSettings(AutomationEntries& entries, qint32 carts);

// Takes checked entries into the record; items without a control stay as they are.
void TakeAutomationSettings(const AutomationEntries& entries, KOVADatabaseSettings& record);

// The name that a log file of a day has.
QString SampleLogFilename(const QString& prefix, const QString& format, const QDateTime& day);

// Whether the window would store the record as it stands: gives what is wrong with it, else brings it into
// the form in which the window stores it.
std::optional<AutomationFault> CheckAutomationRecord(KOVADatabaseSettings& record, qint32 carts);

// An item's value in the words of the window, and a record with the item set to such a text, with what
// follows from it: false, with the end of a sentence in *why, when the window has no place for it.
QString AutomationItemText(const AutomationItem& item, const KOVADatabaseSettings& record);
bool SetAutomationItem(const AutomationItem& item, const QString& text, KOVADatabaseSettings& record,
                       QString* why);
// Null when there is no item of that name; case does not count.
const AutomationItem* FindAutomationItem(const QString& name);

} // namespace tolvex
