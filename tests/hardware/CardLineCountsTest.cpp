// How many lines a card has: the calls to the driver, and the reports of its failures.
#include "hardware/CardLineCounts.h"
#include "TestPlaces.h"
#include "hardware/FakeDriver.h"
#include "support/ScriptedPrompts.h"

#include <gtest/gtest.h>

using namespace tolvex;
using namespace tolvex::tests;

namespace {

const QString connecting =
    "There was a problem connecting to the Advantech Card, and the error message was:\n\nDriver error 11";
const QString asking =
    "There was a problem getting information about the Advantech Card, and the error message was:\n\n";
const QString disconnecting =
    "There was a problem disconnecting from the Advantech Card, and the error message was:\n\nDriver error "
    "14";

struct Counts {
    bool good = false;
    qint16 total = -1;
    qint16 inputs = -1;
    qint16 outputs = -1;
    bool answered = true;
    bool operator==(const Counts&) const = default;
};
void PrintTo(const Counts& c, std::ostream* out) {
    *out << c.good << ": " << c.total << ' ' << c.inputs << ' ' << c.outputs << ' ' << c.answered;
}

Counts countsOf(qint32 type, qint16 address = 0) {
    DriverReports reports;
    const LineCounts counts = GetCardLineCounts(type, address, reports);
    return {counts.good, counts.total, counts.inputs, counts.outputs, counts.answered};
}

} // namespace

TEST(CardLineCounts, FixedTypesNeedNoDriver) {
    const NoDriver none;
    EXPECT_EQ(countsOf(CardDisabled), (Counts{true, 0, 0, 0}));
    EXPECT_EQ(countsOf(CardPorts24), (Counts{true, 24, 24, 24}));
    EXPECT_EQ(countsOf(CardPorts48), (Counts{true, 48, 48, 48}));
    EXPECT_EQ(countsOf(CardRS232), (Counts{true, 8, 8, 8}));
    EXPECT_EQ(countsOf(CardJoystick), (Counts{true, 4, 4, 0}));
    EXPECT_EQ(countsOf(6), (Counts{false, 0, 0, 0}));
}

TEST(CardLineCounts, AskABoardForItsChannelsOrPorts) {
    ScriptedPrompts prompts;
    FakeDriver driver;
    driver.addFixed(3, 24, 8);
    EXPECT_EQ(countsOf(CardAdvantech, 3), (Counts{true, 32, 24, 8}));
    EXPECT_EQ(driver.calls, (QStringList{"open 3", "features", "close"}));
    struct Case {
        qint16 ports[4];
        qint16 inputs;
        qint16 outputs;
    };
    // Counts beyond 16 bits and below 0 are clamped.
    driver.addFixed(4, -1, 40000);
    EXPECT_EQ(countsOf(CardAdvantech, 4), (Counts{true, 32767, 0, 32767}));
    // The fourth port is not counted; mode 2 adds to neither count, all three to the total.
    for (const Case& c : {Case{{0, 1, 0, 0}, 16, 8}, Case{{3, 4, 1, 1}, 8, 16}, Case{{2, 9, -1, 0}, 0, 0}}) {
        for (const qint32 board : {6, 8, 9, 39}) {
            FakeDriver::Board& ports = driver.boards[5];
            ports.features = {board, 99, 99};
            std::copy(std::begin(c.ports), std::end(c.ports), ports.modes.begin());
            EXPECT_EQ(countsOf(CardAdvantech, 5), (Counts{true, 24, c.inputs, c.outputs})) << c.ports[0];
        }
    }
    EXPECT_TRUE(prompts.asked.isEmpty());
}

TEST(CardLineCounts, EachFailureHasItsMessageAndLeavesUsableCounts) {
    ScriptedPrompts prompts;
    FakeDriver driver;
    driver.boards[2].features = {39, 0, 0};
    struct Case {
        const char* failing;
        qint16 device;
        Counts counts;
        QString message;
    };
    for (const Case& c : {Case{"", 1, {false, 32, 16, 16, false}, connecting},
                          Case{"features", 2, {true, 32, 16, 16, false}, asking + "Driver error 12"},
                          Case{"portModes", 2, {false, 32, 16, 16, false}, asking + "Driver error 13"},
                          Case{"close", 2, {false, 24, 24, 0, false}, disconnecting}}) {
        prompts.forget();
        driver.failing = c.failing;
        EXPECT_EQ(countsOf(CardAdvantech, c.device), c.counts) << c.failing;
        ASSERT_EQ(prompts.texts(), QStringList{c.message});
        EXPECT_EQ(prompts.asked[0].icon, platform::Icon::Exclamation);
        // Every opened device is closed.
        EXPECT_EQ(driver.calls.count("close"), driver.calls.count("features"));
    }
    {
        const NoDriver none;
        prompts.forget();
        EXPECT_EQ(countsOf(CardAdvantech, 2), (Counts{false, 32, 16, 16, false}));
        ASSERT_EQ(prompts.asked.size(), 1);
        EXPECT_TRUE(
            prompts.asked[0].text.startsWith("There was a problem Calling the Advantech Driver and the "));
    }
}

TEST(CardLineCounts, FailuresAreToldOnceForEachAction) {
    ScriptedPrompts prompts;
    FakeDriver driver;
    DriverReports reports;
    for (int i = 0; i < 3; ++i)
        GetCardLineCounts(CardAdvantech, 1, reports);
    EXPECT_EQ(prompts.texts(), QStringList{connecting});
    reports.clear();
    reports.hold();
    for (int i = 0; i < 3; ++i)
        GetCardLineCounts(CardAdvantech, 1, reports);
    EXPECT_EQ(prompts.asked.size(), 1);
    EXPECT_TRUE(reports.any());
    reports.show();
    reports.show();
    EXPECT_EQ(prompts.asked.size(), 2);
}

TEST(AdvantechDriver, LoadsALibraryThatHasAllOperations) {
    EXPECT_EQ(LoadAdvantechDriver("no-such-library"), nullptr);
    // A library, but not a driver's.
    EXPECT_EQ(LoadAdvantechDriver("libm.so.6"), nullptr);
    const auto driver = LoadAdvantechDriver(TOLVEX_ADSAPI);
    ASSERT_NE(driver, nullptr);
    qint32 handle = 0;
    EXPECT_EQ(driver->errorText(driver->open(1, handle)), "No such device");
    BoardFeatures features;
    ASSERT_EQ(driver->open(7, handle), 0);
    ASSERT_EQ(driver->features(handle, features), 0);
    EXPECT_EQ(features.board, 50);
    EXPECT_EQ(features.maximumInputs, 40);
    EXPECT_EQ(features.maximumOutputs, 24);
    EXPECT_EQ(driver->close(handle), 0);
    ASSERT_EQ(driver->open(9, handle), 0);
    PortModes modes{};
    ASSERT_EQ(driver->portModes(handle, modes), 0);
    EXPECT_EQ(modes, (PortModes{1, 1, 1, 1, 1, 1, 1, 1, 1, 1}));
}
