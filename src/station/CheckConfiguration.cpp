#include "station/CheckConfiguration.h"

#include "audio/CartLists.h"
#include "audio/CartStore.h"
#include "automation/LogMentions.h"
#include "core/report/Folders.h"
#include "core/settings/SettingsLoader.h"
#include "core/text/Numbers.h"
#include "station/Workstation.h"

#include <algorithm>

namespace tolvex {

namespace {

// Number of the last part that holds carts.
int lastPart(const Settings& settings) {
    return std::clamp(PartOfCart(settings.NoCarts), 0, CartPartCount);
}

int unsetLocations(const Settings& settings) {
    int count = 0;
    for (int part = 1; part <= lastPart(settings); ++part)
        count += settings.CartPartTable[part].Location.trimmed().isEmpty();
    return count;
}

void noteState(Settings& settings, const QString& location, CartPartState state) {
    for (CartPart& part : settings.CartPartTable)
        if (part.Location == location)
            part.State = state;
}

int missingLocations(Settings& settings) {
    int count = 0;
    for (int number = 1; number <= lastPart(settings); ++number) {
        const CartPart& part = settings.CartPartTable[number];
        if (part.State == NotChecked)
            noteState(settings, part.Location, DirectoryExists(part.Location) ? Available : Unavailable);
        count += part.State == Unavailable;
    }
    return count;
}

QString stateWord(const CartPart& part, bool needed) {
    if (part.Location.trimmed().isEmpty())
        return needed ? QStringLiteral("not set") : QStringLiteral("not needed");
    return DirectoryExists(part.Location) ? QStringLiteral("available") : QStringLiteral("missing");
}

} // namespace

QString CheckConfiguration(Workstation& station) {
    Settings& values = station.settings;
    QStringList lines;
    if (!DirectoryExists(values.DataLocation))
        lines << QStringLiteral("The Data Location could not be found");
    if (values.DataLocation.trimmed().isEmpty())
        lines << QStringLiteral("The Data Location has not been set");
    if (const int count = unsetLocations(values); count > 0)
        lines << QString::number(count) + QStringLiteral(" AudioWall Location/s have not been set");
    if (const int count = missingLocations(values); count > 0)
        lines << QString::number(count) + QStringLiteral(" AudioWall Location/s could not be found");
    if (values.LinkMeshId < 1)
        lines << QStringLiteral("LinkMesh ID No has not been set");
    if (values.KHz == 0 || values.Channels == 0 || values.Format == 0)
        lines << QStringLiteral("the Default Audio Format has not been set");
    return lines.isEmpty() ? QString() : u'\n' + lines.join(u'\n');
}

ConfigurationStatus LookAtConfiguration(Workstation& station) {
    Settings& values = station.settings;
    LoadRows(ConfigNameRows, {values.LocalIniFile}, values);
    ConfigurationStatus status;
    status.localIni = values.LocalIniFile;
    status.configName = values.ConfigName.trimmed();
    status.systemIni = values.SystemIniFile;
    status.dataLocation = values.DataLocation;
    status.linkMeshId = values.LinkMeshId;
    status.cartPlayers = values.TotalNumberCartPlayers;
    status.missing = CheckConfiguration(station).split(u'\n', Qt::SkipEmptyParts);
    if (const QString log = AutomationLogPath(values); !log.isEmpty() && FileLength(log) <= 0)
        status.missing << QStringLiteral("The automation database %1 could not be found").arg(log);
    for (int number = 1; number <= CartPartCount; ++number) {
        const CartPart& part = values.CartPartTable[number];
        const bool needed = number <= lastPart(values);
        LocationStatus location{number, part.Location, stateWord(part, needed), {}};
        if (needed && location.state == u"available") {
            const CartListFacts list = LookAtCartList(station.carts, number);
            location.list = list.state();
            if (list.isTorn() || list.isShort())
                status.listFaults.append(list.inWords());
        }
        status.locations.append(location);
    }
    return status;
}

} // namespace tolvex
