// Common start of the tests of start-up and loading: a machine of their own, scripted prompts, a stopped
// clock, no sound devices, and an empty workstation.
#pragma once

#include "platform/devices/WaveDevices.h"
#include "station/Workstation.h"
#include "support/FixedClock.h"
#include "support/MachineFolder.h"
#include "support/QtPrinters.h"
#include "support/ScriptedPrompts.h"

#include <gtest/gtest.h>

#include <optional>

namespace tolvex::tests {

class StationTest : public testing::Test {
protected:
    StationTest() { platform::SetWaveDevices({}, {}); }
    ~StationTest() override { platform::SetOperatingSystem({10, 0, 0, 2, {}}); }

    // As at a new start of the program.
    void begin() { held_.emplace(); }

    TestMachine machine;
    ScriptedPrompts prompts;
    FixedClock clock{QDateTime(QDate(2026, 11, 21), QTime(14, 30))};

private:
    std::optional<Workstation> held_{std::in_place};

protected:
    Workstation& station = *held_;
};

} // namespace tolvex::tests
