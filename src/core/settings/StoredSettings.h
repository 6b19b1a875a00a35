// The declared settings as they are stored in files, whether or not those files are in use: lists them,
// changes one, and compares two workstations.
#pragma once

#include "core/settings/SettingsTable.h"
#include "platform/profile/ProfileFile.h"

namespace tolvex {

// The three files of the settings; an empty path leaves that file out.
struct SettingsFiles {
    QString local;
    QString system;
    QString audiowall;
    const QString& of(SettingsFile file) const;
};

// The path of the station's file in a data location, and of the audiowall's in the folder of its first part;
// empty if the location is.
QString SystemIniIn(const QString& dataLocation);
QString AudiowallIniIn(const QString& firstPart);

// What must be done first for a file that no location leads to: "set the data location".
QString WhatMakesFileKnown(SettingsFile file);

// Those of a workstation, from its settings.
SettingsFiles FilesInForce(const Settings& values);

using platform::ProfilePath;

struct StoredSetting {
    SettingPlace place;
    QString key;          // with its number
    QString value;        // as it is loaded; the default if the file has none
    QString defaultValue; // given the other settings in the files
    // The text in the file, without the quotes around it; for a key that has only its older form, the value.
    // Nothing if neither exists.
    std::optional<QString> stored;
};

// Every declared setting that is read, file by file.
QList<StoredSetting> ReadStoredSettings(const SettingsFiles& files);

// Loads the settings of these files into a record of their own.
Settings LoadFrom(const SettingsFiles& files);

// The text of a declared key, without the quotes around it; nothing if the file lacks it.
std::optional<QString> StoredTextOf(const SettingRow& row, int index, const QString& file);

// A key to write.
struct StoredChange {
    const SettingRow* row = nullptr;
    QString key; // with its number
    QString text;
};

// The changes to the derived keys of a local ini file that follow from changed settings. A key that is not in
// the file is not added, unless it is one of `wanted`.
QList<StoredChange> DerivedChanges(const QString& localIni, const Settings& before, const Settings& after,
                                   const QList<const SettingRow*>& wanted = {});

// Changes one setting in its file, and the derived keys in it that follow from it. False, with a sentence in
// *why that names the setting, if the key is not declared or not to be set by hand, or the value is refused
// or cannot be written; *error is then the number of the failed write, 0 if none was tried.
bool SetStoredSetting(const SettingsFiles& files, const QString& section, const QString& key,
                      const QString& value, QString* why, int* error = nullptr);

// The differences between the local settings of two workstations: the declared keys with different values,
// one of which may be a default.
struct SettingDifference {
    QString section;
    QString key;
    QString first; // null: that workstation has no such entry
    QString second;
};
QList<SettingDifference> DiffSettings(const QString& firstIni, const QString& secondIni);

// The meaning of a failed write to a settings file, as a sentence.
QString ProfileErrorText(int error, const QString& file);

} // namespace tolvex
