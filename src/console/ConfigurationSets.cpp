#include "console/ConfigurationSets.h"

#include "core/report/Folders.h"
#include "core/report/ProblemReport.h"
#include "core/settings/SettingText.h"
#include "core/system/Registry.h"
#include "core/text/TextFields.h"
#include "platform/files/Files.h"
#include "platform/paths/Paths.h"
#include "platform/profile/ProfileFile.h"
#include "platform/registry/RegistryStore.h"

namespace tolvex {

namespace {

const QString ConfigFiles = QStringLiteral("ConfigFiles");

const SettingRow& nameRow() {
    return RowOf<&Settings::ConfigName>();
}

QString readList(const QString& registryKey) {
    return ReadRegistryString(platform::LocalMachineHive, registryKey, ConfigFiles, QString());
}

void writeList(const QString& registryKey, const QString& list) {
    WriteRegistryString(platform::LocalMachineHive, registryKey, ConfigFiles, list, QString());
}

SetPlace placeOf(const QString& location) {
    if (location.startsWith(QStringLiteral("\\\\")))
        return SetPlace::Network;
    const bool drive = location.size() >= 2 && location[1] == u':';
    return drive && platform::TypeOfDrive(location[0]) == platform::DriveType::Remote ? SetPlace::NetworkDrive
                                                                                      : SetPlace::LocalDrive;
}

QString inFolder(const QString& folder, const QString& name) {
    return folder + u'\\' + name;
}

// The file of a set by its name; empty if there is none to delete.
QString fileOf(const QString& name) {
    if (name.contains(u'\\') || name.contains(u'/'))
        return name;
    QString windows = inFolder(platform::WindowsFolder(), name);
    if (FileLength(windows) > 0)
        return windows;
    const QString system = inFolder(platform::SystemFolder(), name);
    return FileLength(system) >= 0 ? system : QString();
}

} // namespace

QList<ConfigurationSet> ListSets(const QString& registryKey, const QString& defaultIni) {
    QString list = readList(registryKey);
    QString unnamed; // the name of a set without one; empty: its file name
    if (list.isEmpty() && !defaultIni.isEmpty()) {
        unnamed = QStringLiteral("Standard Configuration");
        writeList(registryKey, defaultIni);
        WriteSettingText(nameRow(), unnamed, defaultIni);
        list = defaultIni;
    }
    QList<ConfigurationSet> sets;
    for (const QString& file : list.split(u' ', Qt::SkipEmptyParts)) {
        ConfigurationSet set;
        set.file = file;
        set.description = SettingText(nameRow(), file, unnamed.isEmpty() ? file : unnamed).trimmed();
        set.location = SettingText(RowOf<&Settings::DataLocation>(), file);
        set.place = placeOf(set.location);
        sets.append(set);
    }
    return sets;
}

QString SetFileName(const QString& answer) {
    QString name = answer;
    name.remove(u' ');
    if (name.isEmpty() || !ValidateCharacters(name, CharacterClass::DigitsAndLetters))
        return {};
    return name.right(4).toUpper() == QStringLiteral(".INI") ? name : name + QStringLiteral(".ini");
}

bool CopySet(const QString& registryKey, const QString& from, const QString& newFile,
             const QString& description) {
    const QString source = inFolder(platform::WindowsFolder(), from);
    const QString target = inFolder(platform::WindowsFolder(), newFile);
    if (CopyFileWithProgress(source, target, QStringLiteral("Copying Configuration"), false, false) != 0)
        return false;
    writeList(registryKey, readList(registryKey) + u' ' + newFile);
    WriteSettingText(nameRow(), description, newFile);
    return true;
}

int RenameSet(const QString& file, const QString& description) {
    return WriteSettingText(nameRow(), description, file);
}

bool DeleteSet(const QString& registryKey, const QString& file) {
    const QString path = fileOf(file);
    if (!path.isEmpty()) {
        if (const int error = platform::RemoveFile(path)) {
            ProblemReport(QStringLiteral("removing the configuration set"), error);
            return false;
        }
    }
    QString list = readList(registryKey);
    list.replace(file, QString(), Qt::CaseInsensitive);
    writeList(registryKey, list.trimmed());
    return true;
}

} // namespace tolvex
