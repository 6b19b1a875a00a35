// Setting output lines in the table, and when a pulse ends.
#include "hardware/OutputLines.h"

#include "core/time/Dates.h"
#include "support/FixedClock.h"

#include <gtest/gtest.h>

using namespace tolvex;
using namespace tolvex::tests;

namespace {

struct Table {
    Table() {
        for (HardwareCard& card : cards)
            card.CardType = CardAdvantech;
    }
    ~Table() { WriteHardwareOutputs = nullptr; }

    HardwareCardTable cards;
};

std::vector<int> driven;

} // namespace

TEST(OutputLines, StatesAreAppliedByTheNumberOverAllCards) {
    Table table;
    FixedClock clock(QDateTime({2026, 3, 1}, {23, 59, 59, 500}));
    driven.clear();
    WriteHardwareOutputs = [](int card, int line) {
        EXPECT_EQ(HardwareBusy(), -1);
        driven.push_back(card * 1000 + line);
    };
    EXPECT_FALSE(SetOutputLine(table.cards, 0, OutputLineState::On));
    EXPECT_FALSE(SetOutputLine(table.cards, 301, OutputLineState::On));
    EXPECT_TRUE(SetOutputLine(table.cards, 300, OutputLineState::On));
    EXPECT_EQ(table.cards[3].Lines[100].OutputState, -1);
    EXPECT_TRUE(SetOutputLine(table.cards, 200, OutputLineState::Flash));
    HardwareLine& last = table.cards[2].Lines[100];
    EXPECT_EQ(last.OutputState, -1);
    EXPECT_EQ(last.Flashing, -1);
    EXPECT_TRUE(SetOutputLine(table.cards, 200, OutputLineState::Pulse));
    EXPECT_EQ(last.Flashing, 0);
    const DayTime now = CurrentDayTime();
    EXPECT_EQ(last.PulseEnd.Day, now.Day + 1);
    EXPECT_FLOAT_EQ(last.PulseEnd.Seconds, 0.5F);
    EXPECT_TRUE(SetOutputLine(table.cards, 200, static_cast<OutputLineState>(4)));
    EXPECT_EQ(last.PulseEnd.Day, now.Day + 1);
    EXPECT_TRUE(SetOutputLine(table.cards, 200, OutputLineState::Off));
    EXPECT_EQ(last.OutputState, 0);
    EXPECT_EQ(last.PulseEnd.Day, 0);
    table.cards[1].CardType = CardDisabled;
    EXPECT_TRUE(SetOutputLine(table.cards, 1, OutputLineState::On));
    EXPECT_EQ(table.cards[1].Lines[1].OutputState, 0);
    EXPECT_TRUE(SetOutputLine(table.cards, 201, OutputLineState::On));
    EXPECT_EQ(table.cards[3].Lines[1].OutputState, -1);
    EXPECT_EQ(driven, (std::vector<int>{3100, 2100, 2100, 2100, 3001}));
    EXPECT_EQ(HardwareBusy(), 0);
}

TEST(OutputLines, SecondsAreAddedInHundredths) {
    struct Case {
        DayTime from;
        double seconds;
        DayTime to;
    };
    for (const Case& c :
         {Case{{10, 0}, 0.004, {10, 0}}, Case{{10, 1.25F}, 1, {10, 2.25F}}, Case{{10, 86399}, 1, {11, 0}},
          Case{{10, 86399.5F}, 3 * 86400 + 0.5, {14, 0}}, Case{{10, 0.004F}, 86399.99, {10, 86399.99F}}}) {
        const DayTime to = AddHundredths(c.from, c.seconds);
        EXPECT_EQ(to.Day, c.to.Day) << c.seconds;
        EXPECT_FLOAT_EQ(to.Seconds, c.to.Seconds) << c.seconds;
    }
}

TEST(OutputLines, AllLinesOfAnActionFollowItsParameters) {
    Table table;
    const auto put = [&table](int card, int line, qint32 type, std::array<qint32, 4> data) {
        HardwareLine& at = table.cards[card].Lines[line];
        at.Action = 4;
        at.LineType = type;
        at.ActionData = data;
    };
    put(1, 1, 1, {2, 0, 0, 0});
    put(1, 2, 0, {2, 0, 0, 0}); // an input
    put(2, 100, 2, {2, 5, 7, 9});
    put(3, 1, 1, {2, 0, 0, 0}); // on a disabled card
    table.cards[3].CardType = CardDisabled;
    const auto on = [&table](qint32 d1, qint32 d2, qint32 d3, qint32 d4, bool outputsOnly) {
        for (HardwareCard& card : table.cards)
            for (HardwareLine& line : card.Lines)
                line.OutputState = 0;
        SetLinesForAction(table.cards, 4, OutputLineState::On, d1, d2, d3, d4, outputsOnly);
        return std::vector<int>{table.cards[1].Lines[1].OutputState, table.cards[1].Lines[2].OutputState,
                                table.cards[2].Lines[100].OutputState, table.cards[3].Lines[1].OutputState};
    };
    EXPECT_EQ(on(2, 0, 0, 0, true), (std::vector<int>{-1, 0, 0, 0}));
    EXPECT_EQ(on(2, 0, 0, 0, false), (std::vector<int>{-1, -1, 0, 0}));
    EXPECT_EQ(on(2, 255, 255, 255, true), (std::vector<int>{-1, 0, -1, 0}));
    EXPECT_EQ(on(255, 5, 7, 9, false), (std::vector<int>{0, 0, -1, 0}));
    EXPECT_EQ(on(255, 5, 7, 8, false), (std::vector<int>{0, 0, 0, 0}));
}
