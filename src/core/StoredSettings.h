// The declared settings as they are stored in files, whether or not they are the ones in force: listing,
// changing one, and comparing two workstations.
#pragma once

#include "core/SettingsTable.h"

namespace tolvex {

// The three files that settings lie in; an empty path: that file is left out.
struct SettingsFiles {
    QString local;
    QString system;
    QString audiowall;
    const QString& of(SettingsFile file) const;
};

// Those of this workstation, as the settings in force name them.
SettingsFiles FilesInForce();

// A bare name with the Windows folder in front, where the profile operations find it; other paths as they
// are.
QString ProfilePath(const QString& file);

struct StoredSetting {
    SettingPlace place;
    QString key;          // with its number
    QString value;        // as it would be written; the default where the file has none
    QString defaultValue; // with the other settings as the files have them
    bool present = false; // the key is in the file
};

// Every declared setting that is read, file by file.
QList<StoredSetting> ReadStoredSettings(const SettingsFiles& files);

// The text that stores `value` for a row, or nothing, with a sentence in *why, when its kind or range forbids
// it. Flags may be given as 0, 1, -1, true, false, on, off, yes, no; colours in hexadecimal (0x00FF00).
std::optional<QString> CheckSettingValue(const SettingRow& row, const QString& value, QString* why);

// Changes one setting in its file. False, with a sentence in *why, when the key is not declared, not to be
// set by hand, or the value is refused or cannot be written.
bool SetStoredSetting(const SettingsFiles& files, const QString& section, const QString& key,
                      const QString& value, QString* why);

// What differs between the local settings of two workstations: the declared keys whose values are not the
// same, one of them perhaps by default.
struct SettingDifference {
    QString section;
    QString key;
    QString first; // null: that workstation has no such entry
    QString second;
};
QList<SettingDifference> DiffSettings(const QString& firstIni, const QString& secondIni);

// What a failed write to a settings file means, as a sentence.
QString ProfileErrorText(int error, const QString& file);

} // namespace tolvex
