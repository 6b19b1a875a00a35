// The radio clock: what its lines mean, when it is asked, and that the computer follows it for a day.
#include "network/clock/RadioClock.h"
#include "network/clock/ReceiverTest.h"
#include "support/ClockReceiver.h"
#include "support/MachineFolder.h"
#include "support/ScriptedPrompts.h"
#include "support/VirtualClock.h"
#include "support/WaitFor.h"

#include <gtest/gtest.h>

#include <ctime>
#include <random>

using namespace tolvex;
using namespace tolvex::tests;

namespace {

ClockLine lineOf(const QByteArray& bytes) {
    ClockLineReader reader;
    const QList<ClockLine> lines = reader.take(bytes + '\r');
    EXPECT_EQ(lines.size(), 1);
    return lines.value(0);
}

} // namespace

TEST(ClockLines, MeanWhatTheirColumnsSay) {
    const struct {
        const char* line;
        bool sets;
        bool lowBattery;
        QDateTime time; // invalid if the digits are not a date and a time
    } rows[] = {
        {"221030?05032401", true, false, {{2024, 3, 5}, {22, 10, 30}}},
        {"221030?050324x9", true, true, {{2024, 3, 5}, {22, 10, 30}}},
        {"221030?05032408", false, true, {{2024, 3, 5}, {22, 10, 30}}},
        {"221030?05032400", false, false, {{2024, 3, 5}, {22, 10, 30}}},
        {"221030?0503240A", true, false, {{2024, 3, 5}, {22, 10, 30}}}, // code 65
        {"221030?05039001", true, false, {{2090, 3, 5}, {22, 10, 30}}},
        {"221030?05039101", false, false, {{1991, 3, 5}, {22, 10, 30}}},
        {"221030?01010201", false, false, {{2002, 1, 1}, {22, 10, 30}}},
        {"221030?02010201", true, false, {{2002, 1, 2}, {22, 10, 30}}},
        {"000000?05032401", false, false, {{2024, 3, 5}, {0, 0, 0}}},
        {"000001?05032401", true, false, {{2024, 3, 5}, {0, 0, 1}}},
        {"235959?29022401", true, false, {{2024, 2, 29}, {23, 59, 59}}},
        {"221030?29022301", false, false, {}},
        {"221030?05132401", false, false, {}},
        {"221030?00032401", false, false, {}},
        {"240000?05032401", false, false, {}},
        {"225960?05032401", false, false, {}},
        {"22103x?05032401", false, false, {}},
        {"221030? 5032401", false, false, {}},
    };
    for (const auto& row : rows) {
        const ClockLine line = lineOf(row.line);
        EXPECT_EQ(line.kind, ClockLine::Kind::Time) << row.line;
        EXPECT_EQ(line.setsClock(), row.sets) << row.line;
        EXPECT_EQ(line.whyNot().isEmpty(), row.sets) << row.line;
        EXPECT_EQ(line.lowBattery, row.lowBattery) << row.line;
        const bool whole = line.date && line.seconds >= 0;
        EXPECT_EQ(whole, row.time.isValid()) << row.line;
        if (whole) {
            EXPECT_EQ(QDateTime(*line.date, QTime(0, 0)).addSecs(line.seconds), row.time) << row.line;
        }
    }
    const int levels[] = {0, 1, 2, 3, 4, 5};
    const int server[] = {16, 33, 50, 66, 83, 100};
    const int form[] = {0, 20, 40, 60, 80, 100};
    for (const int level : levels) {
        EXPECT_EQ(lineOf(QByteArray("x") + char('0' + level)).level, level);
        EXPECT_EQ(ServerStrength(level), server[level]);
        EXPECT_EQ(TestStrength(level), form[level]);
    }
    EXPECT_EQ(lineOf("x6").level, -1);
    EXPECT_EQ(lineOf("x/").level, -1);
    for (const char* other : {"", "x", "xxx", "221030?0503240", "221030?050324011", "\n5x"})
        EXPECT_EQ(lineOf(other).kind, ClockLine::Kind::Other) << other;
    EXPECT_EQ(lineOf("221030?05032409").text(), QString("5 March 2024 22:10:30, valid, battery low"));
    EXPECT_EQ(lineOf("240000?30022409").text(),
              QString("? ?, not used: its date is not a date, battery low"));
}

// The lines are the same however the bytes arrive, and noise is dropped.
TEST(ClockLines, ArriveInAnyPieces) {
    const QByteArray bytes =
        "junk\r221030?05032401\rx3\r\n221031?05032401\r" + QByteArray(100000, 'z') + "\rx5\r" + "22103";
    const auto kinds = [](const QList<ClockLine>& lines) {
        QString text;
        for (const ClockLine& line : lines)
            text += QStringLiteral("%1:%2 ").arg(int(line.kind)).arg(QString::fromLatin1(line.raw.left(16)));
        return text;
    };
    ClockLineReader whole;
    const QString expected = kinds(whole.take(bytes));
    EXPECT_EQ(expected,
              QString("2:junk 0:221030?05032401 1:x3 2:\n221031?05032401 2:zzzzzzzzzzzzzzzz 1:x5 "));
    std::minstd_rand random(1);
    for (int round = 0; round < 50; ++round) {
        ClockLineReader reader;
        QList<ClockLine> lines;
        for (qsizetype at = 0; at < bytes.size();) {
            const qsizetype size = round == 0 ? 1 : 1 + qsizetype(random() % (round < 25 ? 7 : 30000));
            lines += reader.take(bytes.mid(at, size));
            at += size;
        }
        ASSERT_EQ(kinds(lines), expected) << round;
    }
}

// In an hour that the clock goes through twice, the reading alone does not say which one it is.
TEST(ClockLines, ARepeatedHourIsTheOneNearerToNow) {
    const QByteArray before = qgetenv("TZ");
    qputenv("TZ", "Europe/London");
    ::tzset();
    const QDate night(2024, 10, 27);
    const QDateTime first = QDateTime::fromSecsSinceEpoch(1729989000); // 00:30 UTC, 01:30 in summer time
    ASSERT_EQ(first.time(), QTime(1, 30));
    const QDateTime second = first.addSecs(3600);
    ASSERT_EQ(second.time(), QTime(1, 30));
    for (const QDateTime& now : {first, second})
        EXPECT_EQ(LocalMoment(night, 5400, now.addSecs(20)).toSecsSinceEpoch(), now.toSecsSinceEpoch());
    EXPECT_EQ(LocalMoment(night, 43200, first).time(), QTime(12, 0));
    before.isNull() ? qunsetenv("TZ") : qputenv("TZ", before);
    ::tzset();
}

namespace {

// What a poll puts onto the line, and at what time of day.
class ClockPollTest : public testing::Test {
protected:
    VirtualClock clock{QDateTime({2024, 3, 5}, {12, 0})};
    bool isOpen = true;
    QStringList sent;
    ClockPoll poll{[this](char byte) {
        if (isOpen)
            sent += clock.time.toString("HH:mm:ss.zzz ") + (byte == '\r' ? "CR" : QString(QLatin1Char(byte)));
        return isOpen;
    }};

    // What was sent since the last call, after so much more time.
    QStringList over(qint64 milliseconds) {
        clock.advance(milliseconds);
        return std::exchange(sent, {});
    }
};

} // namespace

TEST_F(ClockPollTest, AsksForTheTimeEveryFiveMinutes) {
    poll.start(ClockPoll::Mode::Running);
    EXPECT_EQ(over(9999), QStringList());
    EXPECT_EQ(over(900000), (QStringList{"12:00:10.000 o", "12:00:10.200 CR", "12:05:10.000 o",
                                         "12:05:10.200 CR", "12:10:10.000 o", "12:10:10.200 CR"}));
    // Setting the clock back or forward does not change the time since the last request.
    clock.time = clock.time.addSecs(-3600);
    poll.clockMoved(-3600'000);
    EXPECT_EQ(over(300000), (QStringList{"11:15:10.000 o", "11:15:10.200 CR"}));
    // Somebody else set it back.
    clock.time = clock.time.addSecs(-7200);
    EXPECT_EQ(over(300000).size(), 2);
    // While the port is closed nothing goes out, and the request is not forgotten.
    isOpen = false;
    EXPECT_EQ(over(600000), QStringList());
    isOpen = true;
    EXPECT_EQ(over(10000).size(), 2);
    poll.stop();
    EXPECT_EQ(over(600000), QStringList());
}

TEST_F(ClockPollTest, IsSilentBeforeMidnight) {
    clock.time = QDateTime({2024, 3, 5}, {23, 59, 45});
    poll.start(ClockPoll::Mode::Running);
    EXPECT_EQ(over(9000), QStringList());
    EXPECT_EQ(over(3000), (QStringList{"23:59:55.000 o", "23:59:55.200 CR"})) << "95 is not above 95";
    clock.time = QDateTime({2024, 3, 5}, {23, 59, 46});
    poll.start(ClockPoll::Mode::Off);
    ClockPoll other([this](char byte) {
        sent += clock.time.toString("HH:mm:ss.zzz ") + byte;
        return true;
    });
    other.start(ClockPoll::Mode::Running);
    EXPECT_EQ(over(15000), QStringList());
    EXPECT_EQ(over(10000).value(0), QString("00:00:06.000 o"));
    other.stop();
    clock.time = QDateTime({2024, 3, 5}, {23, 59, 54, 500});
    poll.start(ClockPoll::Mode::Testing);
    EXPECT_EQ(over(5499), (QStringList{"23:59:54.750 i", "23:59:54.950 CR"}));
    EXPECT_GT(over(1500).size(), 2);
    clock.time = QDateTime({2024, 3, 5}, {23, 59, 58, 400});
    poll.start(ClockPoll::Mode::Form);
    EXPECT_EQ(over(1599), (QStringList{"23:59:58.400 i", "23:59:58.900 CR"}));
}

TEST_F(ClockPollTest, AsksForTheStrengthInTwoHalves) {
    poll.start(ClockPoll::Mode::Testing);
    EXPECT_EQ(over(3000), (QStringList{"12:00:00.250 i", "12:00:00.450 CR", "12:00:01.450 g",
                                       "12:00:01.650 CR", "12:00:01.900 i", "12:00:02.100 CR"}));
    // A new start drops what was under way.
    poll.start(ClockPoll::Mode::Form);
    EXPECT_EQ(over(2500),
              (QStringList{"12:00:03.000 i", "12:00:03.500 CR", "12:00:03.750 i", "12:00:03.950 CR",
                           "12:00:04.950 g", "12:00:05.150 CR", "12:00:05.400 i"}));
    poll.start(ClockPoll::Mode::Measure);
    EXPECT_EQ(over(2700),
              (QStringList{"12:00:05.500 i", "12:00:05.700 CR", "12:00:06.700 g", "12:00:06.900 CR",
                           "12:00:06.900 o", "12:00:07.100 CR", "12:00:08.100 i"}));
}

namespace {

class RadioClockTest : public testing::Test {
protected:
    RadioClockTest() {
        machine.link("com2", receiver.device.path());
        receiver.now = [this] { return trueTime(); };
        radio.onLine = [this](const ClockLine& line) { lines += line.kind != ClockLine::Kind::Other; };
        radio.onClockSet = [this](double difference) { differences += difference; };
        radio.onError = [this](const QString& what) { errors += what; };
    }
    QDateTime trueTime() const { return start.addMSecs(clock.passed); }
    // Lets virtual time pass. When the receiver is asked, waits for its answer.
    void pass(qint64 milliseconds) {
        const qint64 end = clock.passed + milliseconds;
        for (bool more = true; more;) {
            const int asked = radio.counts().requests;
            const int answered = lines;
            more = clock.step(end);
            QCoreApplication::processEvents();
            if (radio.counts().requests == asked)
                continue;
            ASSERT_TRUE(waitFor([&] { return receiver.requests.size() == asked + 1; }));
            const bool answers = !receiver.isMute && receiver.requests.back() != 'i';
            ASSERT_TRUE(!answers || waitFor([&] { return lines > answered; }));
        }
    }

    QDateTime start{QDate(2024, 12, 31), QTime(0, 3)};
    TestMachine machine;
    ScriptedPrompts prompts;
    VirtualClock clock{start};
    ClockReceiver receiver;
    RadioClock radio;
    int lines = 0;
    QList<double> differences;
    QStringList errors;
};

} // namespace

// A day over New Year's midnight: the computer's clock drifts, jumps, and is put right; noise, split and
// joined lines, a receiver without reception and a low battery on the way.
TEST_F(RadioClockTest, KeepsTheComputerRightForADay) {
    std::minstd_rand random(7);
    receiver.answer = [&](const QByteArray& line) {
        switch (random() % 4) {
        case 0:
            receiver.device.send("noise\r" + line);
            break;
        case 1:
            receiver.device.send(line.left(7));
            receiver.device.send(line.mid(7));
            break;
        case 2:
            receiver.device.send(line.left(14) + '\r' + line);
            break;
        default:
            receiver.device.send(line);
        }
    };
    clock.time = clock.time.addSecs(-47);
    radio.connectTo(2);
    EXPECT_EQ(radio.status(), QString(" Enabled"));
    for (int hour = 0; hour < 25; ++hour) {
        receiver.status = hour == 5 ? '0' : hour == 6 ? '9' : '1';
        if (hour == 9)
            clock.time = clock.time.addSecs(3600); // somebody plays with it
        if (hour == 12)
            clock.time = clock.time.addDays(-1);
        pass(3600'000);
        const double off = double(clock.time.msecsTo(trueTime())) / 1000;
        EXPECT_EQ(radio.lowBattery(), hour == 6) << hour;
        // A line holds whole seconds.
        EXPECT_LT(qAbs(off), 1.01) << "hour " << hour;
        clock.time = clock.time.addMSecs(300); // drift
    }
    EXPECT_EQ(clock.time.date(), QDate(2025, 1, 1));
    EXPECT_NEAR(differences.first(), 47, 1.01);
    const qsizetype timeRequests = receiver.requests.count('o');
    EXPECT_GE(timeRequests, 25 * 12 - 5);
    EXPECT_LE(timeRequests, 25 * 12 + 5);
    EXPECT_EQ(receiver.requests.size(), timeRequests);
    EXPECT_TRUE(prompts.asked.isEmpty() && errors.isEmpty());
    EXPECT_EQ(clock.attempts.size(), differences.size());
    EXPECT_EQ(radio.difference(), differences.last());
    EXPECT_EQ(radio.counts().requests, timeRequests);
    EXPECT_EQ(radio.counts().good, differences.size());
    EXPECT_EQ(radio.counts().good + radio.counts().unusable, timeRequests);
    EXPECT_GT(radio.counts().dropped, 50);
    receiver.status = '0';
    pass(400'000);
    EXPECT_FALSE(radio.difference()) << "an unusable line moves nothing";
}

TEST_F(RadioClockTest, ARefusalIsToldOnce) {
    receiver.device.send("x"); // before the port is open: dropped
    clock.refusal = {platform::ClockKeptByNetwork, "Kept by the network"};
    clock.time = clock.time.addSecs(600);
    radio.connectTo(2);
    pass(1200'000);
    EXPECT_EQ(clock.attempts, (QList<bool>{true, false, false, false})) << "the user is asked once";
    ASSERT_EQ(prompts.asked.size(), 1);
    EXPECT_FALSE(radio.difference()) << "nothing was moved";
    EXPECT_EQ(
        prompts.asked[0].text,
        QString("There was a problem setting the Time/Date on the computer and the error's description was "
                "reported as : \n\n\"Kept by the network\" (50)"));
    clock.refusal = {platform::NoRightToSetClock, "Another reason"};
    pass(600'000);
    EXPECT_EQ(prompts.asked.size(), 2);
    clock.refusal = {};
    pass(300'000);
    clock.refusal = {platform::NoRightToSetClock, "Another reason"};
    pass(600'000);
    EXPECT_EQ(prompts.asked.size(), 3) << "after a success it is news again";
    EXPECT_EQ(differences.size(), 1);
    EXPECT_NEAR(differences[0], -600, 1.01);
}

TEST_F(RadioClockTest, TheButtonTestsTheReception) {
    radio.pressButton();
    EXPECT_FALSE(radio.buttonEnabled());
    EXPECT_EQ(radio.status(), QString(" Disabled"));
    radio.connectTo(2);
    EXPECT_EQ(radio.buttonCaption(), QString("Test"));
    receiver.device.send("x5\r");
    ASSERT_TRUE(waitFor([&] { return lines == 1; }));
    EXPECT_EQ(radio.strength().percent(), 0) << "only while testing";

    radio.pressButton();
    EXPECT_EQ(radio.buttonCaption(), QString("Testing"));
    receiver.level = 3;
    pass(1650);
    EXPECT_EQ(radio.strength().percent(), 1);
    EXPECT_EQ(radio.strength().colour(), StrengthGreen);
    clock.advance(100);
    EXPECT_EQ(radio.strength().percent(), 21) << "a step every 5 ms";
    // A new strength moves the panel on from where it is.
    receiver.device.send("x0\r");
    ASSERT_TRUE(waitFor([&] { return lines == 3; }));
    EXPECT_EQ(radio.strength().colour(), StrengthRed);
    clock.advance(100);
    EXPECT_EQ(radio.strength().percent(), 16);
    receiver.device.send("x6\r");
    ASSERT_TRUE(waitFor([&] { return lines == 4; }));
    clock.advance(1000);
    EXPECT_EQ(radio.strength().percent(), 16);
    receiver.level = 5;
    pass(2000);
    EXPECT_EQ(radio.strength().percent(), 100);
    radio.pressButton();
    EXPECT_EQ(radio.buttonCaption(), QString("Test"));
    EXPECT_EQ(radio.strength().percent(), 0);
    EXPECT_FALSE(receiver.requests.contains('o'));
    pass(10500);
    EXPECT_TRUE(receiver.requests.endsWith('o'));
}

TEST_F(RadioClockTest, APortThatIsNotThereCanBeConnectedLater) {
    radio.connectTo(3);
    EXPECT_TRUE(radio.status().startsWith(" Error - COM3 is not set up"));
    EXPECT_EQ(radio.buttonCaption(), QString("Connect"));
    ASSERT_EQ(prompts.asked.size(), 1);
    EXPECT_TRUE(prompts.asked[0].text.startsWith("There was a problem connecting to the radio clock and "));
    radio.pressButton();
    EXPECT_FALSE(radio.testing());
    EXPECT_EQ(prompts.asked.size(), 2);
    radio.connectTo(2);
    radio.pressButton();
    EXPECT_TRUE(radio.testing());
    receiver.device.unplug();
    ASSERT_TRUE(waitFor([&] { return radio.buttonCaption() == "Connect"; }));
    EXPECT_TRUE(radio.status().contains("is gone")) << radio.status().toStdString();
    EXPECT_FALSE(radio.testing());
    clock.advance(600'000);
    radio.close();
    radio.connectTo(2);
    radio.pressButton();
    EXPECT_EQ(prompts.asked.size(), 2) << "nothing after the end";
}

TEST_F(RadioClockTest, AReceiverIsTestedBeforeItIsPutInUse) {
    ReceiverTest test(ReceiverTest::Scope::Strength);
    QString lost;
    test.onError = [&lost](const QString& what) { lost = what; };
    test.onLine = [this](const ClockLine&) { ++lines; };
    EXPECT_TRUE(test.setPort(9).text.startsWith("COM9 is not set up"));
    EXPECT_FALSE(test.setPort(2));
    receiver.level = 3;
    for (int i = 0; i < 400 && lines == 0; ++i) {
        clock.advance(20);
        runEvents(3);
    }
    clock.advance(1000);
    EXPECT_EQ(test.strength().percent(), 60);
    EXPECT_TRUE(receiver.requests.startsWith("iig")) << receiver.requests.constData();
    receiver.device.send(ClockReceiver::timeLine(start, '1'));
    ASSERT_TRUE(waitFor([&] { return lines >= 2; }));
    EXPECT_TRUE(clock.attempts.isEmpty()) << "a test sets nothing";
    receiver.device.unplug();
    EXPECT_TRUE(waitFor([&] { return lost.contains("is gone"); }));
}
