// The declared settings as they are stored in files, whether or not they are the ones in force: listing,
// changing one, and comparing two workstations.
#pragma once

#include "core/settings/SettingsTable.h"
#include "platform/profile/ProfileFile.h"

namespace tolvex {

// The three files that settings lie in; an empty path: that file is left out.
struct SettingsFiles {
    QString local;
    QString system;
    QString audiowall;
    const QString& of(SettingsFile file) const;
};

// Where the station's file lies for a data location, and the audiowall's for the folder of its first part;
// empty when the location is.
QString SystemIniIn(const QString& dataLocation);
QString AudiowallIniIn(const QString& firstPart);

// What has to be done first for a file that no location leads to: "set the data location".
QString WhatMakesFileKnown(SettingsFile file);

// Those of a workstation, as its settings name them.
SettingsFiles FilesInForce(const Settings& values);

using platform::ProfilePath;

struct StoredSetting {
    SettingPlace place;
    QString key;          // with its number
    QString value;        // as it is loaded; the default where the file has none
    QString defaultValue; // with the other settings as the files have them
    // The text in the file, without the quotes around it; for a key that only has its older form, the value.
    // Nothing when neither is there.
    std::optional<QString> stored;
};

// Every declared setting that is read, file by file.
QList<StoredSetting> ReadStoredSettings(const SettingsFiles& files);

// The settings of these files in a record of their own.
Settings LoadFrom(const SettingsFiles& files);

// The text of a declared key, without the quotes around it; nothing when it is not in the file.
std::optional<QString> StoredTextOf(const SettingRow& row, int index, const QString& file);

// A key to be written.
struct StoredChange {
    const SettingRow* row = nullptr;
    QString key; // with its number
    QString text;
};

// What has to become of the derived keys of a local ini file when the settings they follow from change. A key
// that is not in the file stays out of it, unless it is one of `wanted`.
QList<StoredChange> DerivedChanges(const QString& localIni, const Settings& before, const Settings& after,
                                   const QList<const SettingRow*>& wanted = {});

// Changes one setting in its file, and the derived keys in it that follow from it. False, with a sentence in
// *why that names the setting, when the key is not declared, not to be set by hand, or the value is refused
// or cannot be written; then *error is the number of the write that failed, 0 when it was not tried.
bool SetStoredSetting(const SettingsFiles& files, const QString& section, const QString& key,
                      const QString& value, QString* why, int* error = nullptr);

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
