// The controls of the window that edits an automation database, as rows: the item that each one edits, and
// how. What the controls show, what OK checks and what is stored follow from the rows; none of it needs a
// widget.
#pragma once

#include "automation/AutomationItems.h"

#include <QMap>

#include <optional>

namespace tolvex {

// The contents of the controls, by their names: 0 or 1 of a check box or radio button, the entry of a list
// and the colour of a colour button, all as int; the text of a text box.
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
        // Edited by several controls; `control` is one of them.
        AutoRestart,
        LevelTrigger,
        ClientDatabase,
        FadeTime,
        StationControl,
        // Kept in the record, where a form shows and changes it.
        Font,
        AudioFormat
    };
    const char* item;
    const char* control;
    Kind kind;
    std::span<const char* const> words = {}; // of a list
};
std::span<const AutomationField> AutomationFields();
// Null for an item without a control.
const AutomationField* FindAutomationField(const QString& item);
// The texts of the lists that show several items.
std::span<const char* const> PlayerWords();
std::span<const char* const> StationControlWords();
// The formats of file names in the list; any other can be typed.
std::span<const char* const> FilenameFormats();

// A panel that shows how texts will look in the colours of two buttons; null: in its own. Only the colours of
// buttons that have an item are stored.
struct AutomationPanel {
    const char* panel;
    const char* ground;
    const char* text;
};
std::span<const AutomationPanel> AutomationPanels();

// What the controls show of a record. A value beyond the ends of its list shows as the nearer end.
AutomationEntries ShowAutomationSettings(const KOVADatabaseSettings& record);

// Why the entries cannot be stored, and the control that is wrong.
struct AutomationFault {
    QString message;
    QString control;
};
// Does the checks of OK in their order and returns the first fault. Folders lose a trailing backslash.
// `carts`: the number of carts on the audiowall.
std::optional<AutomationFault> CheckAutomationSettings(AutomationEntries& entries, qint32 carts);

// Puts checked entries into the record; items without a control keep their values.
void TakeAutomationSettings(const AutomationEntries& entries, KOVADatabaseSettings& record);

// The name of the log file of a day.
QString SampleLogFilename(const QString& prefix, const QString& format, const QDateTime& day);

// What the window would refuse in the record. Without a fault, brings the record into the form in which the
// window stores it.
std::optional<AutomationFault> CheckAutomationRecord(KOVADatabaseSettings& record, qint32 carts);

// An item's value in the words of the window; and the way back: sets an item to such a text, with what
// follows from it. False, with the end of a sentence in *why, for a value that the window could not give it.
QString AutomationItemText(const AutomationItem& item, const KOVADatabaseSettings& record);
bool SetAutomationItem(const AutomationItem& item, const QString& text, KOVADatabaseSettings& record,
                       QString* why);
// Null when there is no such item. Case does not count.
const AutomationItem* FindAutomationItem(const QString& name);

} // namespace tolvex
