// All commands of tolvexctl. A new subject adds its declaration here and its line in Commands.cpp.
#pragma once

#include "app/ctl/Command.h"

namespace tolvex::ctl {

using CommandRows = std::vector<Command>;

CommandRows StatusCommands();
CommandRows SettingsCommands();
CommandRows ProfileCommands();
CommandRows RegistryCommands();
CommandRows SetsCommands();
CommandRows CartCommands();
CommandRows AudioCommands();
CommandRows AudioSetupCommands();
CommandRows AudiowallCommands();
CommandRows RippingCommands();
CommandRows TransferCommands();
CommandRows SuiteDatabaseCommands();
CommandRows EngineCommands();
CommandRows UsersCommands();
CommandRows HardwareCommands();
CommandRows AutoConfigCommands();
CommandRows TerminalCommands();
CommandRows CommandCommands();
CommandRows PortCommands();
CommandRows AutomationCommands();
CommandRows DatabaseFileCommands();
CommandRows ServeCommands();
CommandRows ClockCommands();
CommandRows ReportCommands();

// In the order of the help.
const CommandRows& AllCommands();

} // namespace tolvex::ctl
