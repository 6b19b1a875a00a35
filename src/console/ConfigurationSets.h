// Configuration sets: the local ini files that a workstation can choose from at each start. Their names are
// in one registry text, `ConfigFiles`, separated by blanks; a name without a folder refers to the Windows
// folder.
#pragma once

#include <QList>
#include <QString>

namespace tolvex {

// The key with this program's `ConfigFiles`, and the set that exists from the start.
inline constexpr char16_t SetsRegistryKey[] = u"SOFTWARE\\Norvane\\Tolvex";
inline constexpr char16_t DefaultSetFile[] = u"tolvex.ini";

enum class SetPlace { LocalDrive, NetworkDrive, Network };

struct ConfigurationSet {
    QString file;        // as in the list
    QString description; // `ConfigName`, else the file name
    QString location;    // its data location; empty if not set
    SetPlace place = SetPlace::LocalDrive;
};

// The sets of a registry key. An empty list first gets
// `defaultIni`, described as "Standard Configuration".
QList<ConfigurationSet> ListSets(const QString& registryKey, const QString& defaultIni);

// Converts an answer to the file name of a new set: removes blanks, appends ".ini". Empty if anything except
// letters and digits remains.
QString SetFileName(const QString& answer);

// Copies a set's file to a new bare name in the Windows folder and adds it to the list. False if the copy
// failed.
bool CopySet(const QString& registryKey, const QString& from, const QString& newFile,
             const QString& description);

// Changes the description; the file keeps its name. Returns the profile error of the write.
int RenameSet(const QString& file, const QString& description);

// Deletes a set's file (in the Windows folder, else in the system folder, unless the name includes a folder)
// and removes its name from the list, as a substring and without regard to case: another name that ends in it
// loses that end. False after an error, which was reported; the list then stays.
bool DeleteSet(const QString& registryKey, const QString& file);

} // namespace tolvex
