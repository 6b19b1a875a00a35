#include "audio/transfers/TransferSetup.h"

#include "audio/transfers/TransportLists.h"
#include "core/report/Folders.h"
#include "core/settings/NewerSettings.h"
#include "core/settings/SettingCheck.h"
#include "core/settings/SettingText.h"
#include "core/settings/SettingsLoader.h"
#include "core/settings/StoredSettings.h"

#include <algorithm>

namespace tolvex {

namespace {

std::span<const SettingRow* const> rows() {
    static const SettingRow* const all[] = {
        &RowOf<&Settings::OPALDirectory>(),
        &RowOf<&Settings::OPALDefault>(),
        &RowOf<&Settings::PromptDeleteAfterSend>(),
        &RowOf<&Settings::PromptForDestinationCart>(),
    };
    return all;
}

Settings asSettings(const TransferSetup& setup) {
    Settings settings;
    settings.OPALDirectory = setup.allow ? setup.directory : QString();
    settings.OPALDefault = setup.defaultList;
    settings.PromptDeleteAfterSend = setup.askDelete ? 1 : 0;
    settings.PromptForDestinationCart = setup.askDestination ? 1 : 0;
    return settings;
}

TransferSetup of(const Settings& settings) {
    return {!settings.OPALDirectory.isEmpty(), settings.OPALDirectory, settings.OPALDefault,
            settings.PromptDeleteAfterSend != 0, settings.PromptForDestinationCart != 0};
}

SetupOutcome check(const TransferSetup& setup) {
    if (!setup.allow)
        return {};
    if (setup.directory.isEmpty())
        return {QStringLiteral("You must select a directory"), QStringLiteral("cmdBrowse")};
    QString why;
    if (!CheckSettingValue(RowOf<&Settings::OPALDirectory>(), setup.directory, &why))
        return {QStringLiteral("The folder \"%1\" cannot be stored: %2.").arg(setup.directory, why),
                QStringLiteral("cmdBrowse")};
    if (!CheckSettingValue(RowOf<&Settings::OPALDefault>(), setup.defaultList, &why))
        return {QStringLiteral("\"%1\" cannot be the default list: %2.").arg(setup.defaultList, why),
                QStringLiteral("listFiles")};
    return {};
}

int writeIni(const TransferSetup& setup, const QString& file) {
    platform::ProfileBatch batch(file);
    Settings settings = asSettings(setup);
    if (!setup.allow)
        batch.removeSection(QLatin1String(rows().front()->section));
    else
        for (const SettingRow* row : rows())
            PutSettingText(batch, *row, StoredText(*row, 0, settings).value_or(QString()));
    return batch.commit();
}

// The values are called as the keys of the ini file.
QString nameOf(const SettingRow* row) {
    return QLatin1String(row->key);
}

// False where the registry did not take it.
bool writeRegistry(const TransferSetup& setup, const TransferStore& store) {
    const quint32 root = store.registryRoot;
    const QString& key = store.registryKey;
    if (!setup.allow) {
        DeleteRegistryValue(root, key, nameOf(rows()[0]));
        DeleteRegistryValue(root, key, nameOf(rows()[1]));
        return !LoadTransfersFromRegistry(root, key).allow;
    }
    WriteRegistryString(root, key, nameOf(rows()[0]), setup.directory, {});
    WriteRegistryString(root, key, nameOf(rows()[1]), setup.defaultList, {});
    WriteRegistryLong(root, key, nameOf(rows()[2]), setup.askDelete ? 1 : 0, 0);
    WriteRegistryLong(root, key, nameOf(rows()[3]), setup.askDestination ? 1 : 0, 0);
    const TransferSetup stored = LoadTransfersFromRegistry(root, key);
    return stored.directory == setup.directory && stored.defaultList == setup.defaultList &&
           stored.askDelete == setup.askDelete && stored.askDestination == setup.askDestination;
}

} // namespace

TransferSetup LoadTransfersFromIni(const QString& iniFile) {
    Settings stored;
    for (const SettingRow* row : rows())
        LoadRow(*row, {iniFile}, stored);
    return of(stored);
}

TransferSetup LoadTransfersFromRegistry(quint32 root, const QString& key) {
    Settings stored;
    stored.OPALDirectory = ReadRegistryString(root, key, nameOf(rows()[0]), {});
    stored.OPALDefault = ReadRegistryString(root, key, nameOf(rows()[1]), {});
    stored.PromptDeleteAfterSend = ReadRegistryLong(root, key, nameOf(rows()[2]), 0) != 0;
    stored.PromptForDestinationCart = ReadRegistryLong(root, key, nameOf(rows()[3]), 0) != 0;
    return of(stored);
}

QString ShownDefault(const TransferSetup& setup) {
    return TransportListExists(setup.directory, setup.defaultList) ? setup.defaultList : QString();
}

SetupOutcome StoreTransferSetup(TransferSetup& setup, TransferSetup& shown, const TransferStore& store) {
    if (SetupOutcome refused = check(setup); !refused.stored())
        return refused;
    if (store.iniFile.isEmpty() && store.registryKey.isEmpty())
        return {
            QStringLiteral("There is no file for these settings: set the Data Location (in File Locations) "
                           "first")};
    if (!store.iniFile.isEmpty()) {
        Settings wanted = asSettings(setup);
        Settings before = asSettings(shown);
        const QStringList changed =
            TakeNewer(rows(), asSettings(LoadTransfersFromIni(store.iniFile)), before, wanted);
        if (!changed.isEmpty()) {
            setup = of(wanted);
            shown = of(before);
            return {NewerSettingsText(changed)};
        }
    }
    TransferSetup next = setup;
    if (DirectoryExists(next.directory))
        next.defaultList = ShownDefault(next);
    if (!store.iniFile.isEmpty()) {
        if (const int error = writeIni(next, store.iniFile))
            return {ProfileErrorText(error, platform::ProfilePath(store.iniFile)), {}, error};
        setup = shown = next;
    }
    if (!store.registryKey.isEmpty() && !writeRegistry(next, store))
        return {QStringLiteral("The registry did not take the settings: %1 cannot be written.")
                    .arg(store.registryKey)};
    return {};
}

QString TransferFault(const Settings& settings) {
    if (settings.OPALDirectory.isEmpty() || DirectoryExists(settings.OPALDirectory))
        return {};
    return QStringLiteral("The folder of the transport lists could not be found");
}

} // namespace tolvex
