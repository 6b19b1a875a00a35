// The configuration of this workstation in a few facts.
#include "app/ctl/Commands.h"

#include "audio/DeviceIdentity.h"
#include "station/CheckConfiguration.h"

namespace tolvex::ctl {

namespace {

int status(Call& call) {
    if (!call.session.read())
        return call.fail(QStringLiteral("No local ini file was chosen."));
    const ConfigurationStatus facts = LookAtConfiguration(call.station);
    QJsonArray locations;
    for (const LocationStatus& location : facts.locations)
        locations += QJsonObject{{QStringLiteral("part"), location.part},
                                 {QStringLiteral("path"), location.path},
                                 {QStringLiteral("state"), location.state},
                                 {QStringLiteral("list"), location.list}};
    QJsonObject record{
        {QStringLiteral("localIni"), facts.localIni},
        {QStringLiteral("configName"), facts.configName},
        {QStringLiteral("systemIni"), facts.systemIni},
        {QStringLiteral("dataLocation"), facts.dataLocation},
        {QStringLiteral("linkMeshId"), facts.linkMeshId},
        {QStringLiteral("cartPlayers"), facts.cartPlayers},
        {QStringLiteral("missing"), QJsonArray::fromStringList(facts.missing)},
        {QStringLiteral("movedDevices"), QJsonArray::fromStringList(MovedDeviceTexts(call.station.settings))},
        {QStringLiteral("locations"), locations}};
    if (facts.missing.isEmpty() && !call.output.json())
        record[QStringLiteral("missing")] = QStringLiteral("nothing");
    call.output.record(record, {{"localIni", "Local ini file"},
                                {"configName", "Configuration"},
                                {"systemIni", "System ini file"},
                                {"dataLocation", "Data location"},
                                {"linkMeshId", "Workstation"},
                                {"cartPlayers", "Cart players"},
                                {"missing", "Not configured"},
                                {"movedDevices", "Sound devices"}});
    if (!call.output.json())
        call.output.records(
            locations,
            {{"part", "Part", true}, {"path", "Location"}, {"state", "State"}, {"list", "Cart list"}});
    for (const QString& fault : facts.listFaults)
        NoteListFault(call, fault);
    return facts.missing.isEmpty() ? Done : No;
}

} // namespace

CommandRows StatusCommands() {
    return {
        {"status", "", "Show how this workstation is configured and what is missing", status},
    };
}

} // namespace tolvex::ctl
