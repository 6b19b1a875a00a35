// The serial ports of this machine.
#include "app/ctl/Commands.h"

#include "platform/devices/SerialPorts.h"

#include <algorithm>

namespace tolvex::ctl {

namespace {

int list(Call& call) {
    QJsonArray records;
    const QList<platform::SerialPortFacts> ports = platform::SerialPorts();
    for (const platform::SerialPortFacts& port : ports)
        records += QJsonObject{{QStringLiteral("port"), port.number},
                               {QStringLiteral("name"), port.name()},
                               {QStringLiteral("device"), port.device},
                               {QStringLiteral("present"), port.present},
                               {QStringLiteral("description"), port.description},
                               {QStringLiteral("holder"), port.holder}};
    call.output.records(records, {{"name", "Port"},
                                  {"device", "Device"},
                                  {"present", "There"},
                                  {"description", "What it is"},
                                  {"holder", "In use by"}});
    const bool any = std::any_of(ports.begin(), ports.end(), [](const auto& port) { return port.present; });
    return any ? Done : No;
}

} // namespace

CommandRows PortCommands() {
    return {{"ports list", "", "List the serial ports COM1 to COM16 and what each leads to", list}};
}

} // namespace tolvex::ctl
