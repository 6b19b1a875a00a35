// Hardware cards from a shell.
#include "RunCtl.h"

#include <QJsonArray>
#include <QJsonObject>

using tolvex::tests::Ctl;

TEST_F(Ctl, SetsHardwareLinesByWords) {
    run({"profile", "set", "tolvex.ini", "FileLocations", "Data", "C:\\DATA"});
    EXPECT_EQ(run({"hardware", "list"}).status, 1);
    EXPECT_EQ(run({"hardware", "card", "1", "rs232"}).status, 2);
    EXPECT_TRUE(
        run({"hardware", "card", "1", "serial"}).err.contains("disabled, rs232, advantech, joystick"));
    EXPECT_EQ(run({"hardware", "card", "1", "rs232", "2"}).status, 0);
    EXPECT_EQ(run({"hardware", "card", "2", "Joystick Port"}).status, 0);

    EXPECT_EQ(run({"hardware", "set", "1", "3", "--type", "input", "--action", "player control",
                   "Cart Player 2", "Inhibit Logging", "--active-low"})
                  .status,
              0);
    const QJsonObject line = run({"--json", "hardware", "list", "1"}).json().array()[2].toObject();
    EXPECT_EQ(line, (QJsonObject{{"card", 1},
                                 {"line", 3},
                                 {"type", "input"},
                                 {"activeLow", true},
                                 {"description", "Inhibit Logging Player 2"},
                                 {"action", "Player Control"},
                                 {"info1", "Cart Player 2"},
                                 {"info2", "Inhibit Logging"},
                                 {"actionCode", 3},
                                 {"data", QJsonArray{2, 240, 0, 0}}}));
    EXPECT_EQ(run({"--json", "hardware", "list"}).json().array().size(), 12);
    EXPECT_EQ(run({"profile", "get", "tolvex.ini", "Hardware1", "ActiveLow3"}).out, "-1\n");

    const QByteArray before = read(onC("WINDOWS/tolvex.ini"));
    const auto refused = [this](const QStringList& words, const char* why) {
        const Result result = run(QStringList{"hardware", "set"} + words);
        EXPECT_EQ(result.status, 2) << words.join(' ').toStdString();
        EXPECT_TRUE(result.err.contains(why)) << result.err.toStdString();
    };
    refused({"1", "3"}, "input");
    refused({"4", "3", "--type", "input"}, "A card from 1 to 3");
    refused({"1", "9", "--type", "input"}, "A line from 1 to 8");
    refused({"2", "1", "--type", "output"}, "is an input and stays one");
    refused({"3", "1", "--type", "input"}, "Card 3 has no lines");
    refused({"1", "3", "--type", "output", "--action", "IC Trigger"}, "\"Not in use\", \"IC Display\"");
    refused({"1", "3", "--type", "input", "--action", "IC Trigger", "11"}, "\"Instant Cart 10\"");
    refused({"1", "3", "--type", "input", "--action", "IC Trigger", "1", "2"}, "it can be nothing");
    refused({"1", "3", "--type", "input", "5"}, "--action is expected");
    EXPECT_EQ(read(onC("WINDOWS/tolvex.ini")), before);

    EXPECT_EQ(run({"hardware", "set", "2", "4", "--type", "input", "--description", "Desk button"}).status,
              0);
    EXPECT_EQ(run({"profile", "get", "tolvex.ini", "Hardware2", "LineType4"}).out, "0\n");
    EXPECT_EQ(run({"hardware", "card", "1", "disabled"}).status, 0);
    EXPECT_FALSE(read(onC("WINDOWS/tolvex.ini")).contains("Hardware1"));
    EXPECT_EQ(run({"hardware", "card", "3", "advantech", "xyz"}).status, 2);
    // No driver here: the card is taken all the same, and what is wrong is told once.
    const Result advantech = run({"hardware", "card", "3", "advantech", "1F"});
    EXPECT_EQ(advantech.status, 0);
    EXPECT_TRUE(advantech.err.contains("Calling the Advantech Driver"));
    EXPECT_EQ(run({"profile", "get", "tolvex.ini", "Hardware3", "BaseAddress"}).out, "31\n");
}
