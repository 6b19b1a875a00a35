// What the tests of start-up and loading start from: a machine of their own, prompts by script, a clock that
// stands still, no sound devices, and a workstation of which nothing is known yet.
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

    // As a new start of the program has it.
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
