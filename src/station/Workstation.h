// What the program knows of the workstation that it sets up: the settings, and everything that is open while
// it runs. The program makes one and passes it on; a test makes its own. Routines of lower floors take the
// member that they work on.
#pragma once

#include "audio/CartPicking.h"
#include "audio/CartStore.h"
#include "automation/AutomationSettings.h"
#include "core/report/DebugLog.h"
#include "core/settings/Settings.h"
#include "databases/users/UsersDatabase.h"
#include "hardware/HardwareCards.h"
#include "network/TerminalList.h"
#include "station/StartUp.h"

namespace tolvex {

struct Workstation {
    StartUp startUp;
    Settings settings;
    HardwareCardTable cards;
    CartStore carts{settings}; // with the hotlist
    CartPicking picking;
    TerminalList terminals{settings};
    UsersState users{settings};
    KOVADatabaseSettings automation; // of the database that was loaded last
    DebugLogging log{settings.DebugLevel};
};

} // namespace tolvex
