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
    for (const char* address : {"xyz", "100", "1G"})
        EXPECT_EQ(run({"hardware", "card", "3", "advantech", address}).status, 2) << address;
    // No driver here: the card is stored all the same, and the fault is reported once.
    const Result advantech = run({"hardware", "card", "3", "advantech", "0x1F"});
    EXPECT_EQ(advantech.status, 0);
    EXPECT_EQ(advantech.err.count("Calling the Advantech Driver"), 1);
    EXPECT_TRUE(advantech.err.contains("Card 3: Device 31 does not say which lines it has"));
    EXPECT_EQ(run({"profile", "get", "tolvex.ini", "Hardware3", "BaseAddress"}).out, "31\n");
}

TEST_F(Ctl, HardwareTextsAreStoredWholeOrRefused) {
    run({"profile", "set", "tolvex.ini", "FileLocations", "Data", "C:\\DATA"});
    run({"hardware", "card", "1", "rs232", "1"});
    const auto describe = [this](const QString& text) {
        return run({"hardware", "set", "1", "2", "--type", "input", "--description", text});
    };
    const QString longest(254, u'x');
    EXPECT_EQ(describe(longest).status, 0);
    const Result refused = describe(QString(300, u'x'));
    EXPECT_EQ(refused.status, 2);
    EXPECT_TRUE(refused.err.contains("has 300 characters; at most 254"));
    EXPECT_EQ(describe("two\nlines").status, 2);
    const auto read = [this] {
        const QJsonObject line = run({"--json", "hardware", "list", "1"}).json().array()[1].toObject();
        return line["description"].toString();
    };
    EXPECT_EQ(read(), longest);
    EXPECT_EQ(describe("'Go'").status, 0);
    EXPECT_EQ(read(), "'Go'");
}

// Another card is changed while an Advantech card's driver is missing.
TEST_F(Ctl, AnAbsentHardwareDriverCostsNoLines) {
    run({"profile", "set", "tolvex.ini", "FileLocations", "Data", "C:\\DATA"});
    const QString file = "tolvex.ini";
    for (const auto& [key, value] : {std::pair("CardType", "4"),
                                     {"BaseAddress", "5"},
                                     {"LineType1", "1"},
                                     {"Action1", "151"},
                                     {"LineType33", "0"},
                                     {"Action33", "1"}})
        run({"profile", "set", file, "Hardware2", key, value});
    EXPECT_EQ(run({"hardware", "card", "1", "rs232", "1"}).status, 0);
    const Result set = run({"hardware", "set", "2", "1", "--type", "input", "--action", "IC Trigger", "4"});
    EXPECT_EQ(set.status, 0) << set.err.toStdString();
    for (const auto& [key, value] :
         {std::pair("LineType1", "1"), {"Action1", "1"}, {"LineType33", "0"}, {"Action33", "1"}})
        EXPECT_EQ(run({"profile", "get", file, "Hardware2", key}).out, QByteArray(value) + "\n") << key;
    EXPECT_TRUE(run({"hardware", "list", "2"}).err.contains("Card 2: Device 5 does not say"));
}
