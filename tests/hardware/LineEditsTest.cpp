// Changes to a block of lines: numbering up and down, rules of each action, groups of eight, fixed types, and
// the dialog's operations on a card as a whole.
#include "support/QtPrinters.h"

#include "hardware/CardSetup.h"
#include "hardware/FakeDriver.h"
#include "hardware/LineEdits.h"
#include "support/ScriptedPrompts.h"

#include <gtest/gtest.h>

using namespace tolvex;
using namespace tolvex::tests;

namespace {

LineNumbers block(int current, int end) {
    LineNumbers lines;
    for (int n = current; n != end; n += end > current ? 1 : -1)
        lines.append(n);
    lines.append(end);
    return lines;
}

QList<qint32> firstData(const HardwareCard& card, int first, int last) {
    QList<qint32> data;
    for (int n = first; n <= last; ++n)
        data.append(card.Lines[n].ActionData[0]);
    return data;
}

struct Rule {
    qint32 action;
    qint32 before;
    QList<qint32> after; // of lines 1 to 12, processed from the first on
};

class DefaultRules : public testing::TestWithParam<Rule> {};

} // namespace

TEST_P(DefaultRules, NumberABlockInTheOrderOfHandling) {
    const Rule& rule = GetParam();
    for (const bool downwards : {true, false}) {
        HardwareCard card;
        for (HardwareLine& line : card.Lines) {
            line.ActionData = {rule.before, 8, 7, 6};
            line.Description = "old";
        }
        ChooseAction(card, downwards ? block(1, 12) : block(12, 1), rule.action);
        QList<qint32> after = rule.after;
        if (!downwards)
            std::reverse(after.begin(), after.end());
        EXPECT_EQ(firstData(card, 1, 12), after);
        const bool clears = rule.action == 0 || rule.action == 6;
        for (int n = 1; n <= 12; ++n) {
            EXPECT_EQ(card.Lines[n].Action, rule.action);
            EXPECT_EQ(card.Lines[n].Description, "");
            EXPECT_EQ(card.Lines[n].ActionData[1], clears ? 0 : 8);
            EXPECT_EQ(card.Lines[n].ActionData[3], clears ? 0 : 6);
        }
        EXPECT_EQ(card.Lines[13].Description, "old");
    }
}

INSTANTIATE_TEST_SUITE_P(All, DefaultRules,
                         testing::Values(Rule{0, 5, QList<qint32>(12, 0)}, Rule{3, 7, QList<qint32>(12, 7)},
                                         Rule{5, 0, QList<qint32>(12, 1)}, Rule{5, 2, QList<qint32>(12, 1)},
                                         Rule{5, -1, QList<qint32>(12, -1)}, Rule{6, 9, QList<qint32>(12, 0)},
                                         Rule{64, 0, {1, 2, 0, 1, 2, 0, 1, 2, 0, 1, 2, 0}},
                                         Rule{80, 0, QList<qint32>(12, 1)}, Rule{80, 5, QList<qint32>(12, 5)},
                                         Rule{144, 0, QList<qint32>(12, 1)},
                                         Rule{151, 0, QList<qint32>(12, 1)}),
                         [](const auto& rule) {
                             return "Action" + std::to_string(rule.param.action) + "From" +
                                    std::to_string(static_cast<unsigned>(rule.param.before));
                         });

TEST(LineEdits, ABlockIsNumberedUpToTheLastOfItsKindAndAgain) {
    const std::pair<qint32, int> lasts[] = {{1, 10}, {2, 10},    {3, 6},    {4, 6},
                                            {96, 4}, {257, 100}, {258, 100}};
    for (const auto& [action, last] : lasts) {
        HardwareCard card;
        ChooseAction(card, block(1, 100), action);
        for (int n = 1; n <= 100; ++n)
            ASSERT_EQ(card.Lines[n].ActionData[0], (n - 1) % last + 1) << action << " line " << n;
    }
}

TEST(LineEdits, LinesWithAParameterOfTheirOwnStillCount) {
    HardwareCard card;
    card.Lines[2].ActionData[0] = 9;
    ChooseAction(card, block(1, 4), 1);
    EXPECT_EQ(firstData(card, 1, 4), (QList<qint32>{1, 9, 3, 4}));
    SetParameter(card, block(3, 2), 2, 77);
    EXPECT_EQ(card.Lines[2].ActionData, (std::array<qint32, 4>{9, 77, 0, 0}));
    EXPECT_EQ(card.Lines[4].ActionData[1], 0);
}

TEST(LineEdits, TypesFollowTheCurrentLineInGroupsOrNotAtAll) {
    HardwareCard card;
    for (HardwareLine& line : card.Lines)
        line.LineType = 1;
    card.Lines[4].LineType = 0;
    const auto typesOf = [&card](int first, int last) {
        QString types;
        for (int n = first; n <= last; ++n)
            types += card.Lines[n].isOutput() ? u'O' : u'I';
        return types;
    };
    EXPECT_TRUE(ToggleLineType(card, *FindCardType(CardRS232), block(6, 3)));
    EXPECT_EQ(typesOf(1, 8), "OOIIIIOO");
    EXPECT_TRUE(ToggleLineType(card, *FindCardType(CardRS232), block(3, 1)));
    EXPECT_EQ(typesOf(1, 8), "OOOIIIOO");
    // The group of the current line, whatever is selected; 8 and 16 are the last of theirs.
    const CardTypeRow& ports = *FindCardType(CardPorts24);
    EXPECT_TRUE(ToggleLineType(card, ports, {10, 11, 17}));
    EXPECT_EQ(typesOf(8, 17), "OIIIIIIIIO");
    EXPECT_TRUE(ToggleLineType(card, ports, {16}));
    EXPECT_EQ(typesOf(8, 17), "OOOOOOOOOO");
    EXPECT_TRUE(ToggleLineType(card, *FindCardType(CardPorts48), {8}));
    EXPECT_EQ(typesOf(1, 9), "IIIIIIIIO");
    EXPECT_TRUE(ToggleLineType(card, ports, {1}));
    for (const qint32 type : {CardAdvantech, CardJoystick})
        EXPECT_FALSE(ToggleLineType(card, *FindCardType(type), block(1, 8)));
    EXPECT_EQ(typesOf(1, 8), "OOOOOOOO");

    card.Lines[2].ActiveLow = 5;
    ToggleLogic(card, block(1, 3));
    EXPECT_EQ(card.Lines[1].ActiveLow, -1);
    EXPECT_EQ(card.Lines[2].ActiveLow, 0);
    EXPECT_EQ(card.Lines[3].ActiveLow, -1);
}

TEST(CardSetup, ReadsTheDeviceInDecimalWhileTypingAndInHexadecimalAfter) {
    EXPECT_EQ(DeviceWhileTyping("A"), 0);
    EXPECT_EQ(DeviceWhileTyping("10"), 10);
    EXPECT_EQ(DeviceWhileTyping(""), 0);
    EXPECT_EQ(DeviceWhileTyping("99999999999"), 32767);
    EXPECT_EQ(DeviceNumber(" 1f "), 31);
    EXPECT_EQ(DeviceNumber("FF"), 255);
    EXPECT_EQ(DeviceNumber("000FF"), 255);
    EXPECT_EQ(DeviceNumber("0x1F"), 31);
    EXPECT_EQ(DeviceNumber(" "), 0);
    for (const char* refused : {"100", "FFFF", "-1", "FFFFFFFFFFFF", "8000", "xyz", "1G", "0x", "1 F", "h"})
        EXPECT_FALSE(DeviceNumber(refused)) << refused;
    EXPECT_EQ(AddressText(10), "A");
    EXPECT_EQ(AddressText(-1), "FFFF");
}

TEST(CardSetup, SelectingATypeForcesTheLinesThatBelongToIt) {
    ScriptedPrompts prompts;
    FakeDriver driver;
    driver.addFixed(10, 3, 2);
    driver.addFixed(0, 90, 60);
    HardwareCard card;
    for (HardwareLine& line : card.Lines)
        line.LineType = 7;
    DriverReports reports;
    const auto shown = [&](qint32 type, const char* address) {
        return ShownLines(SelectCardType(card, type, address, reports));
    };
    EXPECT_EQ(shown(CardAdvantech, "10"), 5);
    EXPECT_EQ(driver.calls.first(), "open 10");
    EXPECT_EQ(card.Lines[1].LineType, 0);
    EXPECT_EQ(card.Lines[3].LineType, 0);
    EXPECT_EQ(card.Lines[4].LineType, 1); // the first output
    EXPECT_EQ(card.Lines[5].LineType, 1);
    EXPECT_EQ(card.Lines[6].LineType, 7);
    EXPECT_EQ(shown(CardAdvantech, "A"), 100);
    EXPECT_EQ(card.Lines[90].LineType, 0);
    EXPECT_EQ(card.Lines[100].LineType, 1);
    EXPECT_EQ(shown(CardAdvantech, "3"), 0);
    EXPECT_EQ(card.Lines[100].LineType, 1);
    for (HardwareLine& line : card.Lines)
        line.LineType = 7;
    EXPECT_EQ(shown(CardJoystick, ""), 4);
    EXPECT_EQ(card.Lines[4].LineType, 0);
    EXPECT_EQ(card.Lines[5].LineType, 7);
    EXPECT_EQ(shown(CardRS232, ""), 8);
    EXPECT_EQ(card.Lines[5].LineType, 7);
    EXPECT_EQ(shown(CardDisabled, ""), 0);
    EXPECT_EQ(shown(6, ""), 0);
}

TEST(CardSetup, SaysFromWhichDeviceTheLinesCame) {
    EXPECT_EQ(OriginOfLines(10, {5, 3, 2, true, true}),
              "The lines are those of device 10: 3 inputs and 2 outputs.");
    EXPECT_EQ(OriginOfLines(0, {32, 16, 16, false, false}), "Device 0 does not answer.");
    EXPECT_EQ(OriginOfLines(7, {32, 16, 16, true, false}),
              "Device 7 does not say which lines it has: 16 inputs and 16 outputs stand in.");
}

TEST(LineEdits, ALineIsSetOnlyWhereItBelongs) {
    HardwareCard card;
    card.Lines[2].LineType = 1;
    card.Lines[2].Description = QString(300, u'x'); // as left by another program
    const CardLines joystick{card, *FindCardType(CardJoystick), 4};
    HardwareLine line = card.Lines[2];
    line.Action = 2;
    EXPECT_EQ(SetLine(joystick, 2, line), "");
    EXPECT_EQ(card.Lines[2].Action, 2);
    line.Description = "  Lamp ";
    EXPECT_EQ(SetLine(joystick, 1, line), "Line 1 of this card is an input and stays one.");
    EXPECT_EQ(SetLine({card, *FindCardType(CardPorts24), 24}, 1, line),
              "Line 1 of this card is an input and stays one.");
    for (const int number : {0, -1, 5, 101})
        EXPECT_EQ(SetLine(joystick, number, line), QString("The card has no line %1.").arg(number));
    EXPECT_EQ(card.Lines[1].Action, 0);
    EXPECT_EQ(SetLine({card, *FindCardType(CardRS232), 8}, 8, line), "");
    EXPECT_EQ(card.Lines[8].Description, "Lamp");
    // For a range, all or none.
    EXPECT_NE(SetDescription(joystick, {3, 4, 5}, "Desk"), "");
    EXPECT_EQ(card.Lines[3].Description, "");
    EXPECT_EQ(SetDescription(joystick, {3, 4}, "Desk"), "");
    EXPECT_EQ(card.Lines[4].Description, "Desk");
}

TEST(CardSetup, TakesAChoiceOrSaysWhatIsWrong) {
    HardwareCard card;
    card.CardType = CardRS232;
    card.BaseAddress = card.ComPort = 2;
    EXPECT_EQ(SetCard(card, {CardPorts24, "300", -1}), "This card is not currently supported");
    EXPECT_EQ(SetCard(card, {CardRS232, "", -1}), "You must specify a Serial Port to connect to");
    EXPECT_EQ(SetCard(card, {CardRS232, "", 4}), "You must specify a Serial Port to connect to");
    EXPECT_EQ(SetCard(card, {CardAdvantech, "100", -1}), "You must specify a Device Number from 0 to FF");
    EXPECT_EQ(card.CardType, CardRS232);
    EXPECT_EQ(card.BaseAddress, 2);
    EXPECT_EQ(SetCard(card, {CardRS232, "", 3}), "");
    EXPECT_EQ(card.ComPort, 4);
    EXPECT_EQ(SetCard(card, {CardAdvantech, " 1f", 3}), "");
    EXPECT_EQ(card.BaseAddress, 31);
    EXPECT_EQ(card.ComPort, 0);
    EXPECT_EQ(SetCard(card, {CardJoystick, "", -1}), "");
    EXPECT_EQ(card.CardType, CardJoystick);
    EXPECT_EQ(card.BaseAddress, 31);
}
