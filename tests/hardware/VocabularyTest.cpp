// The whole vocabulary: what each list offers, in order, what is stored for it, how it is shown, and the way
// back from the words.
#include "support/QtPrinters.h"

#include "hardware/HardwareStore.h"
#include "hardware/LineDisplay.h"
#include "hardware/LineEdits.h"
#include "support/MachineFolder.h"

#include <gtest/gtest.h>

using namespace tolvex;
using namespace tolvex::tests;

namespace {

QString written(const Choices& choices) {
    QStringList entries;
    for (const Choice& choice : choices)
        entries += QStringLiteral("%1=%2").arg(choice.text).arg(choice.value);
    return entries.join(u'|');
}

HardwareLine lineOf(LineKinds kind, qint32 action, qint32 first = 0, qint32 second = 0) {
    HardwareLine line;
    line.LineType = kind == OnOutputs ? 1 : 0;
    line.Action = action;
    line.ActionData = {first, second, 0, 0};
    return line;
}

QString offered(LineKinds kind, qint32 action, int column) {
    return written(EditorOf(lineOf(kind, action), column).choices);
}

} // namespace

TEST(Vocabulary, ListsOfferTheirEntriesInOrder) {
    EXPECT_EQ(offered(OnInputs, 0, ColumnAction),
              "Not in use=0|IC Trigger=1|Cart Control=64|Player Control=3|K-OVA - Set Mode=96|"
              "K-OVA - Other=5|Set Time=6|Miscellaneous=144");
    EXPECT_EQ(offered(OnOutputs, 0, ColumnAction),
              "Not in use=0|IC Display=2|Cart Display=4|Disp K-OVA Mode=96|Station Control=80|"
              "Miscellaneous=151");
    const QString carts = offered(OnInputs, 1, ColumnInfo1);
    EXPECT_TRUE(carts.startsWith("Instant Cart 1=1|Instant Cart 2=2|"));
    EXPECT_TRUE(carts.endsWith("|Instant Cart 10=10"));
    EXPECT_EQ(offered(OnOutputs, 2, ColumnInfo1), carts);
    const QString players = "Cart Player 1=1|Cart Player 2=2|Cart Player 3=3|Cart Player 4=4|"
                            "Cart Player 5=5|Cart Player 6=6";
    EXPECT_EQ(offered(OnInputs, 3, ColumnInfo1), players);
    EXPECT_EQ(offered(OnOutputs, 4, ColumnInfo1), players);
    EXPECT_EQ(offered(OnInputs, 3, ColumnInfo2),
              "Play=0|Pause=1|Cue=2|Eject=3|Rewind=5|Forward=4|Inhibit Logging=240");
    EXPECT_EQ(offered(OnOutputs, 4, ColumnInfo2),
              "Playing=0|Playing/Extro flashing=5|Is Cued Ready=1|Cued/Extro flashing=4|During Intro=2|"
              "After Extro=3");
    EXPECT_EQ(offered(OnInputs, 5, ColumnInfo1), "K-OVA Go=1|K-OVA SegEdit=2");
    EXPECT_EQ(offered(OnInputs, 6, ColumnInfo2), "Set on Activate=0|Set on Clear=1");
    EXPECT_EQ(offered(OnInputs, 64, ColumnInfo1), "Play Cart=0|Cue Cart=2");
    EXPECT_EQ(offered(OnOutputs, 80, ColumnInfo1), "Has Control=1");
    EXPECT_EQ(offered(OnInputs, 96, ColumnInfo1),
              "Standby=1|Use Log Mode=255|Live Assist=2|Auto-Mation=3|Auto-Fade=4");
    EXPECT_EQ(offered(OnOutputs, 96, ColumnInfo1),
              "Standby=1|Running=255|Live Assist=2|Auto-Mation=3|Auto-Fade=4");
    EXPECT_EQ(offered(OnInputs, 144, ColumnInfo1), "Exit Looping Carts=1|Generate Rec Logs=2");
    EXPECT_EQ(offered(OnOutputs, 151, ColumnInfo1), "Heartbeat pulse=1|Audio Run Ended=2");
    for (const qint32 groups : {257, 258}) {
        EXPECT_TRUE(offered(OnInputs, groups, ColumnInfo1).startsWith("Group : 1=1|"));
        EXPECT_TRUE(offered(OnInputs, groups, ColumnInfo1).endsWith("|Group : 100=100"));
    }
}

TEST(Vocabulary, CellsOpenTheEditorOfTheirAction) {
    using Kind = CellEditor::Kind;
    const auto kindOf = [](qint32 action, int column) {
        return EditorOf(lineOf(OnInputs, action), column).kind;
    };
    for (const ActionRow& row : LineActions()) {
        const bool typed = row.code == 6;
        EXPECT_EQ(kindOf(row.code, ColumnInfo1), row.code == 0 ? Kind::None
                                                 : typed       ? Kind::Number
                                                               : Kind::List)
            << row.code;
        const bool second = row.code == 3 || row.code == 4 || row.code == 6;
        EXPECT_EQ(kindOf(row.code, ColumnInfo2), second           ? Kind::List
                                                 : row.code == 64 ? Kind::Number
                                                                  : Kind::None)
            << row.code;
        EXPECT_EQ(kindOf(row.code, ColumnInfo3), Kind::None);
    }
    // An unknown action opens empty lists; its entry in the list of actions is the first.
    const CellEditor unknown = EditorOf(lineOf(OnInputs, 999, 5), ColumnInfo2);
    EXPECT_EQ(unknown.kind, Kind::List);
    EXPECT_EQ(unknown.tag, 2);
    EXPECT_TRUE(unknown.choices.isEmpty());
    EXPECT_EQ(EditorOf(lineOf(OnInputs, 999), ColumnAction).selected, 0);
    // A value that the list does not offer selects nothing.
    EXPECT_EQ(EditorOf(lineOf(OnInputs, 3, 7), ColumnInfo1).selected, -1);
    EXPECT_EQ(EditorOf(lineOf(OnInputs, 3, 7, 5), ColumnInfo2).selected, 4);
}

TEST(Vocabulary, LinesAreShownAndDescribed) {
    struct Case {
        LineKinds kind;
        qint32 action, first, second;
        const char* shown; // action, info 1, info 2, default description
    };
    const Case cases[] = {
        {OnInputs, 0, 5, 5, "Not in use|||"},
        {OnInputs, 1, 3, 0, "IC Trigger|Instant Cart 3||IC Trigger 3"},
        {OnOutputs, 2, 11, 0, "IC Display|Instant Cart 11||IC Display 11"},
        {OnInputs, 3, 7, 240, "Player Control|Cart Player 7|Inhibit Logging|Inhibit Logging Player 7"},
        {OnInputs, 3, 2, 9, "Player Control|Cart Player 2|| Player 2"},
        {OnOutputs, 4, 2, 5,
         "Player Display|Cart Player 2|Playing/Extro flashing|"
         "Player 2 Playing/Extro flashing"},
        {OnInputs, 5, 1, 0, "K-OVA - Other|K-OVA - Go||K-OVA - Go"},
        {OnInputs, 5, 2, 0, "K-OVA - Other|K-OVA - SegEdit||K-OVA - SegEdit"},
        {OnInputs, 5, 3, 0, "K-OVA - Other|||"},
        {OnInputs, 6, -30, 0, "Set Time|offset: -30|Set on Activate|Set Time"},
        {OnInputs, 6, 0, 7, "Set Time|offset: 0|Set on Clear|Set Time"},
        {OnInputs, 64, 0, 1234, "Cart Control|Play Cart|Cart: 1234|Play Cart 1234"},
        {OnInputs, 64, 1, 5, "Cart Control||Cart: 5| 5"},
        {OnInputs, 64, 2, 0, "Cart Control|Cue Cart|Cart: 0|Cue Cart 0"},
        {OnOutputs, 80, 1, 0, "Station Control|Has Control||Has Control"},
        {OnInputs, 96, 255, 0, "K-OVA - Set Mode|Use Log Mode||K-OVA - Use Log Mode"},
        {OnOutputs, 96, 255, 0, "Disp K-OVA Mode|Running||K-OVA - Running"},
        {OnOutputs, 96, 9, 0, "Disp K-OVA Mode|||K-OVA - "},
        {OnInputs, 144, 3, 0, "Miscellaneous|ZQS - Ignore RS232 Cmds||ZQS - Ignore RS232 Cmds"},
        {OnOutputs, 151, 1, 0, "Miscellaneous|Heartbeat Pulse||Heartbeat Pulse"},
        {OnInputs, 257, 12, 0, "ZQS - Play Group|Group : 12||ZQS - Play Group 12"},
        {OnOutputs, 258, 101, 0, "ZQS - Group Active|Group : 101||ZQS - Group 101 Active"},
        {OnOutputs, 999, 1, 2, "Not in use|||"},
    };
    for (const Case& c : cases) {
        HardwareLine line = lineOf(c.kind, c.action, c.first, c.second);
        const LineTexts texts = GetGridinfo(line);
        EXPECT_EQ((QStringList{texts.action, texts.info1, texts.info2, line.Description}.join(u'|')),
                  c.shown);
        EXPECT_EQ(texts.description, line.Description.trimmed());
        EXPECT_EQ(line.Action, c.action);
        line.Description = "  Studio light ";
        EXPECT_EQ(GetGridinfo(line).description, "Studio light");
        EXPECT_EQ(line.Description, "  Studio light ");
    }
}

// Every action and every listed value: chosen, written,
// read again, shown, and found by its words.
TEST(Vocabulary, EveryChoiceSurvivesTheFileAndItsWords) {
    TestMachine machine;
    HardwareCardTable cards;
    HardwareCard& card = cards[2];
    card.CardType = CardRS232;
    int choicesSeen = 0;
    const auto roundTrip = [&](LineKinds kind, qint32 action, int number, const Choice& choice) {
        card.Lines[8] = lineOf(kind, 0);
        ChooseAction(card, {8}, action);
        SetParameter(card, {8}, number, choice.value);
        const LineTexts shown = GetGridinfo(card.Lines[8]);
        const HardwareLine before = card.Lines[8];
        ASSERT_EQ(WriteHardwareSettings(cards, "TOLVEX.INI"), 0);
        cards = {};
        ReadHardwareSettings(cards, "TOLVEX.INI");
        const HardwareLine& after = card.Lines[8];
        EXPECT_EQ(after.LineType, before.LineType);
        EXPECT_EQ(after.Action, action);
        EXPECT_EQ(after.ActionData, before.ActionData);
        const LineTexts again = TextsOf(after);
        EXPECT_EQ(again.action, shown.action);
        EXPECT_EQ(again.info1, shown.info1);
        EXPECT_EQ(again.info2, shown.info2);
        const Parameter& parameter = FindLineAction(action)->parameter(number);
        for (const QString& words : {choice.text, number == 1 ? again.info1 : again.info2})
            EXPECT_EQ(ParameterByText(parameter, words, kind, false, nullptr), choice.value)
                << words.toStdString();
        EXPECT_EQ(ActionByName(again.action, kind, nullptr), action);
        ++choicesSeen;
    };
    for (const LineKinds kind : {OnInputs, OnOutputs}) {
        for (const Choice& action : ActionChoices(kind)) {
            EXPECT_EQ(ActionByName(action.text.toUpper(), kind, nullptr), action.value);
            for (const int number : {1, 2})
                for (const Choice& choice :
                     ParameterChoices(FindLineAction(action.value)->parameter(number), kind))
                    roundTrip(kind, action.value, number, choice);
        }
    }
    EXPECT_EQ(choicesSeen, 10 + 2 + 6 + 7 + 5 + 2 + 2 + 2 + 10 + 6 + 6 + 5 + 1 + 2);
}

TEST(Vocabulary, WordsThatNoListOffersAreRefusedWithThoseItDoes) {
    QString expected;
    EXPECT_FALSE(ActionByName("IC Display", OnInputs, &expected));
    EXPECT_TRUE(expected.startsWith("\"Not in use\", \"IC Trigger\", "));
    EXPECT_FALSE(ActionByName("ZQS - Play Group", OnInputs, &expected));
    const Parameter& mode = FindLineAction(96)->first;
    EXPECT_FALSE(ParameterByText(mode, "Running", OnInputs, false, &expected));
    EXPECT_EQ(expected, "\"Standby\", \"Use Log Mode\", \"Live Assist\", \"Auto-Mation\", \"Auto-Fade\"");
    EXPECT_FALSE(ParameterByText(mode, "9", OnInputs, false, &expected));
    EXPECT_EQ(ParameterByText(mode, "9", OnInputs, true, &expected), 9);
    EXPECT_EQ(ParameterByText(mode, "255", OnOutputs, false, &expected), 255);
    EXPECT_FALSE(
        ParameterByText(FindLineAction(144)->first, "ZQS - Ignore RS232 Cmds", OnInputs, false, &expected));
    EXPECT_EQ(ParameterByText(FindLineAction(64)->second, "cart: 1234", OnInputs, false, &expected), 1234);
    EXPECT_FALSE(ParameterByText(FindLineAction(64)->second, "12x", OnInputs, false, &expected));
    EXPECT_EQ(expected, "a whole number");
}
