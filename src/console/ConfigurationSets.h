// Configuration sets: the local ini files that a workstation can choose from at each start. Their names
// stand, separated by blanks, in one registry text, `ConfigFiles`; a name without a folder lies in the
// Windows folder.
#pragma once

#include <QList>
#include <QString>

namespace tolvex {

// The key that holds `ConfigFiles` of this program, and the set that is there from the start.
inline constexpr char16_t SetsRegistryKey[] = u"SOFTWARE\\Norvane\\Tolvex";
inline constexpr char16_t DefaultSetFile[] = u"tolvex.ini";

enum class SetPlace { LocalDrive, NetworkDrive, Network };

struct ConfigurationSet {
    QString file;        // as it stands in the list
    QString description; // `ConfigName`, else the file name
    QString location;    // its data location; empty when not set
    SetPlace place = SetPlace::LocalDrive;
};

// The sets of a registry key. An empty list is filled with `defaultIni` first, described as "Standard
// Configuration".
QList<ConfigurationSet> ListSets(const QString& registryKey, const QString& defaultIni);

// Turns an answer into the file name of a new set: blanks go, ".ini" is added. Empty when something else than
// letters and digits is left.
QString SetFileName(const QString& answer);

// Copies a set's file under a new bare name in the Windows folder and adds it to the list. False when the
// copy failed.
bool CopySet(const QString& registryKey, const QString& from, const QString& newFile,
             const QString& description);

// Changes the description; the file keeps its name. The profile error of the write.
int RenameSet(const QString& file, const QString& description);

// Deletes a set's file (in the Windows folder, else in the system folder, unless the name has a folder of its
// own) and takes its name out of the list, as a substring and without regard to case: another name that ends
// in it loses that end. False after an error, which was reported; the list then stays.
bool DeleteSet(const QString& registryKey, const QString& file);

} // namespace tolvex
