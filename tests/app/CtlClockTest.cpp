// The radio clock's receiver from a shell.
#include "RunningCtl.h"

#include "support/ClockReceiver.h"

namespace tolvex::tests {

using CtlClock = RunningCtl;

TEST_F(CtlClock, IsTested) {
    EXPECT_EQ(run({"clock", "test"}).status, 1);
    EXPECT_EQ(run({"clock", "test", "17"}).status, 2);
    const Result missing = run({"--json", "clock", "test", "COM2"});
    EXPECT_EQ(missing.status, 3);
    const QJsonObject error = missing.json()["error"].toObject();
    EXPECT_TRUE(error["text"].toString().startsWith("Error opening Com Port : COM2 "));
    EXPECT_EQ(error["details"].toObject()["opened"], false);

    ClockReceiver receiver(PseudoTerminal::Hold::Free);
    receiver.now = [] { return QDateTime({2024, 3, 5}, {22, 10, 30}); };
    ASSERT_TRUE(QFile::link(receiver.device.path(), home() + "/dosdevices/com2"));
    start({"--json", "clock", "test", "2"});
    ASSERT_TRUE(waitFor([&] { return receiver.requests.contains('o'); }));
    runEvents(50);
    EXPECT_EQ(end(), 0) << "a test that is stopped early shows what it has";
    const QJsonObject tested = QJsonDocument::fromJson(process.readAllStandardOutput()).object();
    EXPECT_EQ(tested["port"], 2);
    EXPECT_EQ(tested["strength"], 80);
    const QJsonArray lines = tested["lines"].toArray();
    ASSERT_GE(lines.size(), 2);
    EXPECT_EQ(
        lines[0].toObject(),
        (QJsonObject{{"raw", "S4"}, {"kind", "strength"}, {"strength", 80}, {"decoded", "strength 4"}}));
    EXPECT_EQ(lines[1].toObject(), (QJsonObject{{"raw", "221030-05032401"},
                                                {"kind", "time"},
                                                {"valid", true},
                                                {"lowBattery", false},
                                                {"setsClock", true},
                                                {"dateTime", "2024-03-05T22:10:30"},
                                                {"decoded", "5 March 2024 22:10:30, valid"}}));
}

TEST_F(CtlClock, IsWatchedUntilItIsPulledOut) {
    ClockReceiver receiver(PseudoTerminal::Hold::Free);
    receiver.now = [] { return QDateTime({2024, 3, 5}, {22, 10, 30}); };
    receiver.status = '8';
    ASSERT_TRUE(QFile::link(receiver.device.path(), home() + "/dosdevices/com2"));
    ASSERT_EQ(run({"profile", "set", "tolvex.ini", "DateTimeSettings", "RadioClockComPort", "2"}).status, 0);
    start({"--json", "clock", "watch"});
    EXPECT_EQ(next()["kind"], "strength");
    const QJsonObject unusable = next();
    EXPECT_EQ(unusable["lowBattery"], true);
    EXPECT_EQ(unusable["setsClock"], false);
    EXPECT_EQ(unusable["whyNot"], "the receiver has no valid time");
    receiver.device.unplug();
    ASSERT_TRUE(waitFor([this] { return process.state() == QProcess::NotRunning; }));
    EXPECT_EQ(process.exitCode(), 3);
    EXPECT_TRUE(process.readAllStandardError().contains("COM2")) << "it says which port is gone";
}

} // namespace tolvex::tests
