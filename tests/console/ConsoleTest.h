// What the tests of start-up and loading start from: a machine of their own, prompts by script, a clock that
// stands still, no sound devices, and nothing loaded or open.
#pragma once

#include "audio/CartStore.h"
#include "audio/Hotlist.h"
#include "console/StartUp.h"
#include "core/settings/Settings.h"
#include "network/TerminalList.h"
#include "platform/devices/WaveDevices.h"
#include "support/FixedClock.h"
#include "support/MachineFolder.h"
#include "support/QtPrinters.h"
#include "support/ScriptedPrompts.h"

#include <gtest/gtest.h>

namespace tolvex::tests {

class ConsoleTest : public testing::Test {
public:
    static void forget() {
        CloseHotlist();
        ResetTerminalList();
        ResetCartStore();
        ResetStartUp();
        ResetSettings();
    }

protected:
    ConsoleTest() {
        forget();
        platform::SetWaveDevices({}, {});
    }
    ~ConsoleTest() override {
        forget();
        platform::SetOperatingSystem({10, 0, 0, 2, {}});
    }
    TestMachine machine;
    ScriptedPrompts prompts;
    FixedClock clock{QDateTime(QDate(2026, 11, 21), QTime(14, 30))};
};

} // namespace tolvex::tests
