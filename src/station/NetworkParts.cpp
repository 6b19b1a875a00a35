#include "station/NetworkParts.h"

#include "automation/LogMentions.h"
#include "hardware/HardwareStore.h"
#include "platform/files/Files.h"
#include "station/Workstation.h"

namespace tolvex {

LinkMeshServerSetup ServerSetupOf(Workstation& station) {
    DriverReports reports; // not shown: the hardware form reports driver failures
    ReadHardwareSettings(station.cards, station.settings.LocalIniFile, reports);
    LinkMeshServerSetup setup;
    setup.dataLocation = station.settings.DataLocation;
    setup.radioClockPort = station.settings.RadioClockComPort;
    setup.setControlOutputs = [&station](bool on) { StationControlOutputs(station.cards, on); };
    setup.stampTerminal = [&station] { StampOwnTerminalRecord(station.terminals); };
    return setup;
}

QList<CommandUse> UsesOfCommand(Workstation& station, const QString& name, QString* why) {
    constexpr int mostEntries = 20;
    HardwareCardTable cards;
    DriverReports reports;
    ReadHardwareSettings(cards, station.settings.LocalIniFile, reports);
    const CommandUseSource log = [&station, why](const QString& wanted) {
        QList<CommandUse> uses;
        const QString path = AutomationLogPath(station.settings);
        if (!platform::FileExists(path))
            return uses;
        for (const LogMention& mention : FindInAutomationLog(
                 path, [&wanted](const QString& text) { return NamesCommand(text, wanted); }, mostEntries,
                 why))
            uses += CommandUse{QStringLiteral("Automation log, entry %1").arg(mention.entry), mention.text};
        return uses;
    };
    return CommandUses(name, cards, {log});
}

} // namespace tolvex
