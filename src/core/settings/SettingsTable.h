// Declares every key of the suite's ini files that belongs to the global settings once, as a row: where it
// lies, what it holds, its default, the older key it replaces, the member it fills, its place in a saved
// file, the form and control that set it. Loading, saving, export, import, search, forms, the settings
// commands of the shell and the reference page in docs/settings.md all use these rows; nothing else names a
// key.
//
// A row whose key carries an index ("Carts1" to "Carts11") has a count; its entries are numbered from 1 and
// the number follows the key without a blank. Key names match without regard to case, so a row has one
// spelling: the one written into a file that lacks the key.
#pragma once

#include "core/settings/Settings.h"

#include <optional>
#include <span>
#include <variant>
#include <vector>

namespace tolvex {

enum class SettingsFile {
    Local,    // this workstation's ini file
    System,   // TLVX_SYS.INI in the data location
    Audiowall // Audwall.ini in the folder of the first part of the audiowall
};

enum class SettingKind {
    Flag,       // 0 off, any other value on; stored without its sign
    Word,       // 16-bit number
    Number,     // 32-bit number
    NumberText, // read as text: its leading number, rounded; used and stored like a flag
    Colour,     // blue-green-red integer
    Text,
    Path, // a data or cart location; stored as TidyLocation has it
    Date  // "dd mmm yyyy hh:nn:ss"
};

// The value a row stands for, in a settings record.
using SettingRef = std::variant<qint16*, qint32*, double*, QString*>;

struct SettingRow {
    using At = SettingRef (*)(Settings&, int index);
    using Count = int (*)(const Settings&);
    using NumberDefault = qint32 (*)(const Settings&, int index);
    using TextDefault = QString (*)(const Settings&, int index);
    using Written = std::optional<QString> (*)(const Settings&, int index);

    const char* section = nullptr;
    const char* key = nullptr;
    SettingKind kind = SettingKind::Number;
    const char* help = nullptr;
    At at = nullptr;       // null: the key is written and never read
    Count count = nullptr; // null: no index
    int highestIndex = 0;  // the highest that an entry can have

    // Where the user sets it: a form and its control, or several radio buttons separated by blanks, where the
    // value selects one. The controls of an indexed row have the number appended.
    const char* form = nullptr;
    const char* control = nullptr;
    bool bound = false;    // the control shows the value itself; else the form handles it in its own way
    qint32 firstEntry = 0; // the value of the first entry of a bound list, or of the first radio button

    // Its place among the keys that SaveLocalSettings writes, and so in a new file; 0: it is not saved there.
    int savePosition = 0;

    qint32 defaultNumber = 0;
    const char* defaultText = "";
    NumberDefault numberDefault =
        nullptr; // a default that depends on other settings, instead of the constant
    TextDefault textDefault = nullptr;
    const char* defaultNote = nullptr; // describes such a default

    // The range that may be set; `held` means that a loaded value outside it is moved to the nearer end.
    qint32 lowest = INT32_MIN;
    qint32 highest = INT32_MAX;
    bool held = false;
    bool absolute = false; // a value loses its sign when it is loaded and when it is stored
    int longest = 0;       // characters of a text; 0: no limit but the buffer
    int buffer = 255;      // of a read, with its terminating zero

    // The key of older versions; its value, if there is one, is the default of this key.
    const char* oldSection = nullptr;
    const char* oldKey = nullptr;
    bool oldIsFraction = false; // it holds a text such as "0.65" for 65 percent

    // Where the value lies if there is no ini file: below the settings' registry root.
    const char* subkey = nullptr;
    const char* valueName = nullptr;

    // What is saved instead of the member's value; nothing: the key is removed.
    Written written = nullptr;

    constexpr SettingRow setIn(const char* itsForm, const char* itsControl = nullptr) const {
        SettingRow row = *this;
        row.form = itsForm;
        row.control = itsControl;
        return row;
    }
    constexpr SettingRow on(const char* itsForm, const char* itsControl, qint32 first = 0) const {
        SettingRow row = setIn(itsForm, itsControl);
        row.bound = true;
        row.firstEntry = first;
        return row;
    }
    constexpr SettingRow saved(int position) const {
        SettingRow row = *this;
        row.savePosition = position;
        return row;
    }
    constexpr SettingRow range(qint32 low, qint32 high) const {
        SettingRow row = *this;
        row.lowest = low;
        row.highest = high;
        return row;
    }
    constexpr SettingRow heldTo(qint32 low, qint32 high) const {
        SettingRow row = range(low, high);
        row.held = true;
        return row;
    }
    constexpr SettingRow withoutSign() const {
        SettingRow row = *this;
        row.absolute = true;
        return row;
    }
    constexpr SettingRow atMost(int characters) const {
        SettingRow row = *this;
        row.longest = characters;
        return row;
    }
    constexpr SettingRow readInto(int bufferSize) const {
        SettingRow row = *this;
        row.buffer = bufferSize;
        return row;
    }
    constexpr SettingRow older(const char* inSection, const char* name, bool fraction = false) const {
        SettingRow row = *this;
        row.oldSection = inSection;
        row.oldKey = name;
        row.oldIsFraction = fraction;
        return row;
    }
    constexpr SettingRow registry(const char* below, const char* name = nullptr) const {
        SettingRow row = *this;
        row.subkey = below;
        row.valueName = name ? name : key;
        return row;
    }
    constexpr SettingRow each(Count entries, int lastIndex) const {
        SettingRow row = *this;
        row.count = entries;
        row.highestIndex = lastIndex;
        return row;
    }
    constexpr SettingRow otherwise(NumberDefault value, const char* note) const {
        SettingRow row = *this;
        row.numberDefault = value;
        row.defaultNote = note;
        return row;
    }
    constexpr SettingRow otherwiseText(TextDefault value, const char* note) const {
        SettingRow row = *this;
        row.textDefault = value;
        row.defaultNote = note;
        return row;
    }
    constexpr SettingRow saves(Written text) const {
        SettingRow row = *this;
        row.written = text;
        return row;
    }
};

using SettingRows = std::span<const SettingRow>;

// Where a row's value lies: a member of the record, or a field of an entry of one of its tables.
template<auto member>
SettingRef Member(Settings& values, int) {
    return &(values.*member);
}
template<auto table, auto field>
SettingRef EntryField(Settings& values, int index) {
    return &((values.*table)[index].*field);
}

// The row of a setting, by where its value lies: RowOf<&Settings::DataLocation>().
const SettingRow& RowAt(SettingRow::At at);
template<auto member>
const SettingRow& RowOf() {
    static const SettingRow& row = RowAt(Member<member>);
    return row;
}
template<auto table, auto field>
const SettingRow& RowOf() {
    static const SettingRow& row = RowAt(EntryField<table, field>);
    return row;
}
// Keys derived from the data location, without a member of their own.
extern const SettingRow& SchedulesRow;
extern const SettingRow& LogsRow;

// The rows in groups, each loaded as a whole and in order; the loaders decide which group comes when, and
// what happens between two of them.
//
// Local ini file.
extern const SettingRows ConfigNameRows;
extern const SettingRows WorkstationRows;   // data location, workstation number, radio clock
extern const SettingRows WrittenOnlyRows;   // derived keys that other programs read
extern const SettingRows AudioWallSizeRows; // load these, then size JumpCartButtons, then load the next two
extern const SettingRows JumpButtonRows;
extern const SettingRows AudioWallRows;
extern const SettingRows DisplayRows;
extern const SettingRows AutomationRows;
extern const SettingRows AutomationControlRows;
// Local ini file or registry.
extern const SettingRows PlayerAssignmentRows; // AutomaticPlayerAssignment, TotalNumberCartPlayers
extern const SettingRows SoundCardRows;        // SoundCardNumber<n>: a player's device in manual mode
extern const SettingRows PlayerColourRows;     // BackColor<n>, ForeColor<n>
extern const SettingRows PlayerRows;           // Instant needs the current TotalNumberCartPlayers
extern const SettingRows VolumeRows;           // UsePlayerDucking, GeneralVolume
extern const SettingRows SweptVolumeRows;      // not loaded while UsePlayerDucking is on
extern const SettingRows AudioRows;            // DuckAudioVolume needs the current GeneralVolume
extern const SettingRows CartDisplayRows;
extern const SettingRows RecordingRows; // RecordingSoundCard; the current value is its default
extern const SettingRows LocationRows;  // AudioEditor, whose default is the current value; Carts<n>
// Audwall.ini.
extern const SettingRows AudiowallFileRows;
extern const SettingRows AudiowallLocatedRows; // read only when the first part has a location
// System ini file.
extern const SettingRows TransferRows;
extern const SettingRows UpdateNoticeRows;
extern const SettingRows NetworkRows;

// All of them, file by file, in the order of the reference page.
struct SettingGroup {
    SettingsFile file;
    SettingRows rows;
};
const std::vector<SettingGroup>& AllSettings();

// The row of a key and the index in it (0 for a row without one); names match without regard to case. Null if
// no row declares that key. An index may be above the current number of entries.
struct SettingPlace {
    const SettingRow* row = nullptr;
    int index = 0;
    SettingsFile file = SettingsFile::Local;
    explicit operator bool() const { return row != nullptr; }
};
SettingPlace FindSetting(const QString& section, const QString& key);

// Key name of an entry: with its number appended if the row is indexed.
QString SettingKey(const SettingRow& row, int index);

// Number of entries; 1 for a row without an index.
int SettingCount(const SettingRow& row, const Settings& values);

} // namespace tolvex
