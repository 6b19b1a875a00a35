#include "console/StoreFileLocations.h"

#include "core/report/Folders.h"
#include "core/report/ProblemReport.h"
#include "core/settings/SettingCheck.h"
#include "core/settings/SettingText.h"
#include "core/settings/Settings.h"
#include "core/settings/SettingsLoader.h"
#include "core/system/Registry.h"
#include "core/text/PathNames.h"
#include "platform/Prompts.h"
#include "platform/profile/ProfileFile.h"
#include "platform/registry/RegistryStore.h"

namespace tolvex {

namespace {

// A folder whose name the ini file cannot hold would have another name there; it is not made, and the user is
// told.
bool mayBeMade(const QString& location) {
    const QString fault = StoredTextFault(location);
    if (!fault.isEmpty())
        ShowExclamation(QStringLiteral("\"%1\" was not made: %2.").arg(location, fault));
    return fault.isEmpty();
}

bool makeFolder(const QString& location) {
    return mayBeMade(location) && CreatePath(location, false);
}

void setState(Settings& settings, const QString& location, CartPartState state) {
    for (CartPart& part : settings.CartPartTable)
        if (part.Location == location)
            part.State = state;
}

} // namespace

int StoreFileLocations(Settings& settings, const QString& data, const QStringList& carts,
                       const QString& iniFile, const QString& registryKey) {
    const platform::PointerKeeper pointer(platform::Pointer::Wait);
    const QString dataLocation = TidyLocation(data);
    auto& table = settings.CartPartTable;
    for (int n = 1; n <= CartPartCount; ++n) {
        table[n].Location = TidyLocation(carts.value(n - 1));
        table[n].State = NotChecked;
    }

    const SettingRow& cartsRow = RowOf<&Settings::CartPartTable, &CartPart::Location>();
    platform::ProfileBatch batch(iniFile);
    for (int n = 1; n <= CartPartCount; ++n) {
        CartPart& part = table[n];
        if (part.State == NotChecked) {
            const bool there =
                !part.Location.isEmpty() && (DirectoryExists(part.Location) || makeFolder(part.Location));
            setState(settings, part.Location, there ? Available : Unavailable);
        }
        PutSettingText(batch, cartsRow, part.Location, n);
        if (!registryKey.isEmpty())
            WriteRegistryString(platform::LocalMachineHive, registryKey,
                                QLatin1String(cartsRow.valueName) + QString::number(n), part.Location,
                                QString());
    }

    settings.DataLocation = dataLocation;
    PutSettingText(batch, RowOf<&Settings::DataLocation>(), dataLocation);
    PutSettingText(batch, SchedulesRow, dataLocation + QStringLiteral("\\SCHEDULE"));
    PutSettingText(batch, LogsRow, dataLocation + QStringLiteral("\\LOGS"));
    const int error = iniFile.isEmpty() ? 0 : batch.commit();
    if (!registryKey.isEmpty())
        WriteRegistryString(platform::LocalMachineHive, registryKey, QStringLiteral("DataLocation"),
                            dataLocation, QString());

    if (mayBeMade(dataLocation))
        CreateDataDirectories(dataLocation);
    LoadRow(RowOf<&Settings::NoCarts>(), {table[1].Location + QStringLiteral("\\Audwall.ini")}, settings);
    return error;
}

} // namespace tolvex
