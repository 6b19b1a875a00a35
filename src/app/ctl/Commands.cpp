#include "app/ctl/Commands.h"

#include <iterator>

namespace tolvex::ctl {

const CommandRows& AllCommands() {
    static const CommandRows all = [] {
        CommandRows rows;
        for (CommandRows (*subject)() :
             {StatusCommands,        SettingsCommands,     ProfileCommands,  RegistryCommands,
              SetsCommands,          CartCommands,         AudioCommands,    AudioSetupCommands,
              AudiowallCommands,     RippingCommands,      TransferCommands, AutomationCommands,
              SuiteDatabaseCommands, DatabaseFileCommands, EngineCommands,   UsersCommands,
              HardwareCommands,      AutoConfigCommands,   TerminalCommands, CommandCommands,
              PortCommands,          ServeCommands,        ClockCommands,    ReportCommands}) {
            const CommandRows more = subject();
            rows.insert(rows.end(), more.begin(), more.end());
        }
        return rows;
    }();
    return all;
}

} // namespace tolvex::ctl
