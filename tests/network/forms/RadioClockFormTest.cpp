// The test of a radio clock's receiver with a receiver at the other end of a pseudo terminal.
#include "network/forms/FormTest.h"
#include "network/forms/StrengthMeter.h"
#include "network/forms/frmRadioClockTest.h"
#include "support/ClockReceiver.h"

using namespace tolvex;
using namespace tolvex::tests;

using RadioClockForm = FormTest;

TEST_F(RadioClockForm, ShowsTheStrengthAndTheFaultsOfThePort) {
    ClockReceiver receiver;
    machine.link("com3", receiver.device.path());
    frmRadioClockTest form;
    EXPECT_EQ(form.windowTitle(), "Test Radio Clock");
    form.setPort(3);
    show(form);
    auto* strength = find<StrengthMeter>(form, "pnlSignalStrength");
    const auto state = [&form] { return find<QLabel>(form, "lblState")->text(); };
    EXPECT_TRUE(find<QLabel>(form, "lblComPortNo")->text().startsWith("3 ("));
    EXPECT_EQ(strength->percent(), -1);
    const struct {
        int level;
        int percent;
        QColor colour;
    } rows[] = {{2, 40, QColor(255, 0, 0)}, {5, 100, QColor(0, 255, 0)}, {0, 0, QColor(255, 0, 0)}};
    for (const auto& row : rows) {
        receiver.level = row.level;
        EXPECT_TRUE(waitFor([&] { return strength->percent() == row.percent; })) << row.level;
        EXPECT_EQ(strength->colour(), row.colour) << row.level;
    }
    EXPECT_EQ(strength->accessibleName(), "Signal strength: 0 %, no signal");
    EXPECT_EQ(state(), "The receiver answers.");
    EXPECT_FALSE(receiver.requests.contains('o')); // nothing here sets a clock
    receiver.device.unplug();
    EXPECT_TRUE(waitFor([&] { return state() != "The receiver answers."; }));
    EXPECT_EQ(strength->percent(), -1);
    expectTextsFit(form);
    EXPECT_TRUE(prompts.asked.isEmpty());

    form.setPort(4);
    ASSERT_EQ(prompts.asked.size(), 1);
    EXPECT_TRUE(prompts.asked[0].text.startsWith("Error opening Com Port : "));
    EXPECT_EQ(state(), prompts.asked[0].text);
    clickButton("Command1");
    EXPECT_FALSE(form.isVisible());
}

TEST_F(RadioClockForm, LetsGoOfThePortWhenItGoes) {
    ClockReceiver receiver;
    machine.link("com1", receiver.device.path());
    for (int i = 0; i < 2; ++i) {
        frmRadioClockTest form;
        form.setPort(1);
        EXPECT_TRUE(prompts.asked.isEmpty());
    }
}
