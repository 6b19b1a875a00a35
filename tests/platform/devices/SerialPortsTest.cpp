// Serial ports by number, on pseudo terminals: data arrives complete, whatever the device does.
#include "platform/devices/SerialPorts.h"
#include "platform/devices/SerialPort.h"
#include "platform/host/LookOnly.h"
#include "support/MachineFolder.h"
#include "support/PseudoTerminal.h"
#include "support/WaitFor.h"
#include "support/WithoutRights.h"

#include <QProcess>

#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace tolvex::platform;
using namespace tolvex::tests;

namespace {

class SerialPortsTest : public testing::Test {
protected:
    SerialPortsTest() {
        machine.link("com1", device.path());
        port.onReceived = [this](const QByteArray& bytes) { answer += bytes; };
        port.onSent = [this] { ++sent; };
        port.onFailed = [this](const QString& what) { failures += what; };
    }
    // The line as the device sees it after opening with these settings.
    struct termios lineFor(const QString& settings, Handshaking handshaking = Handshaking::None) {
        const auto line = ParseSerialSettings(settings);
        EXPECT_TRUE(line && !port.open(1, *line, handshaking)) << settings.toStdString();
        return device.line();
    }

    TestMachine machine;
    PseudoTerminal device;
    SerialPort port{"the radio clock"};
    QByteArray answer;
    int sent = 0;
    QStringList failures;
};

const QByteArray everyByte = [] {
    QByteArray bytes;
    for (int i = 0; i < 256; ++i)
        bytes += char(i);
    return bytes;
}();

} // namespace

TEST(SerialSettings, TakesWhatTheControlTakesAndSaysWhatIsWrongWithTheRest) {
    struct {
        const char* text;
        SerialLine line;
    } const good[] = {
        {"9600,n,8,1", {}},
        {" 19200 , E , 7 , 2 ", {19200, Parity::Even, 7, StopBits::Two}},
        {"1200,odd,5,1.5", {1200, Parity::Odd, 5, StopBits::OneAndHalf}},
        {"256000,M,6,1", {256000, Parity::Mark, 6, StopBits::One}},
        {"31250,s,8,1", {31250, Parity::Space, 8, StopBits::One}},
        {"96,n,8,1", {}},
        {"11,n,8,1", {110, Parity::None, 8, StopBits::One}},
        {"19,,,2", {19200, Parity::None, 8, StopBits::Two}},
        {"4000000,e", {4000000, Parity::Even, 8, StopBits::One}},
    };
    for (const auto& row : good)
        EXPECT_EQ(ParseSerialSettings(row.text), row.line) << row.text;
    struct {
        const char* text;
        const char* named; // in the reason
    } const bad[] = {
        {"", "speed"},           {"0,n,8,1", "\"0\""},     {"+9600,n,8,1", "+9600"}, {"fast,n,8,1", "fast"},
        {"-1,n,8,1", "-1"},      {"4000001,n", "4000001"}, {",n,8,1", "speed"},      {"9600,x,8,1", "\"x\""},
        {"9600,n,4,1", "\"4\""}, {"9600,n,9,1", "\"9\""},  {"9600,n,8,3", "\"3\""},  {"9600,n,8,1,x", "four"},
        {"9600,n,88,1", "88"},
    };
    for (const auto& row : bad) {
        QString why;
        EXPECT_FALSE(ParseSerialSettings(row.text, &why)) << row.text;
        EXPECT_TRUE(why.contains(QLatin1String(row.named))) << why.toStdString();
    }
}

TEST_F(SerialPortsTest, EveryByteGoesBothWaysAndAClosedPortHasSentAll) {
    EXPECT_FALSE(port.write("x"));
    ASSERT_FALSE(port.open(1, {}, Handshaking::None));
    EXPECT_TRUE(port.isOpen());
    device.send(everyByte);
    EXPECT_TRUE(waitFor([&] { return answer == everyByte; }));
    EXPECT_TRUE(port.write(everyByte));
    EXPECT_TRUE(port.close());
    EXPECT_TRUE(waitFor([&] { return device.received == everyByte; }));

    // More than the device accepts at once, and a second command before the first was sent.
    ASSERT_FALSE(port.open(1, {}, Handshaking::None));
    const QByteArray much = everyByte.repeated(200);
    device.received.clear();
    port.write(much);
    port.closeWhenSent();
    port.write("end");
    EXPECT_TRUE(port.sending() && port.isOpen());
    EXPECT_TRUE(waitFor([&] { return !port.isOpen(); }));
    EXPECT_TRUE(waitFor([&] { return device.received == much + "end"; })) << device.received.size();
    EXPECT_EQ(sent, 1);
    EXPECT_TRUE(failures.isEmpty());
}

TEST_F(SerialPortsTest, ADeviceThatTakesNothingHoldsNobodyUp) {
    ASSERT_FALSE(port.open(1, {}, Handshaking::None));
    device.setDeaf(true);
    port.write(QByteArray(200000, 'x'));
    ASSERT_TRUE(waitFor([&] { return !failures.isEmpty(); }));
    EXPECT_TRUE(failures[0].startsWith("COM1 does not take what is sent: ")) << failures[0].toStdString();
    EXPECT_TRUE(port.isOpen() && !port.sending());
    EXPECT_EQ(sent, 0);
    // It works again without being reopened, and discarded bytes do not arrive late.
    device.setDeaf(false);
    runEvents(50);
    device.received.clear();
    port.write("again");
    EXPECT_TRUE(waitFor([&] { return device.received == "again" && sent == 1; }));
    device.setDeaf(true);
    port.write(QByteArray(200000, 'x'));
    EXPECT_FALSE(port.close(100));
    EXPECT_FALSE(port.isOpen());
}

TEST_F(SerialPortsTest, ADeviceThatGoesAwayIsNoticedOnce) {
    ASSERT_FALSE(port.open(1, {}, Handshaking::None));
    device.unplug();
    ASSERT_TRUE(waitFor([&] { return !failures.isEmpty(); }));
    runEvents(100);
    EXPECT_EQ(failures.size(), 1);
    EXPECT_TRUE(failures[0].contains("is gone")) << failures[0].toStdString();
    EXPECT_FALSE(port.isOpen());
    // The system may give the terminal's name to another program at once; a real device's name disappears.
    ASSERT_TRUE(QFile::remove(machine.path() + "/dosdevices/com1"));
    machine.link("com1", machine.path() + "/no-such-device");
    EXPECT_EQ(port.open(1, {}, Handshaking::None).number, SerialPortMissing);
}

TEST_F(SerialPortsTest, SettingsReachTheDevice) {
    struct termios line = lineFor("9600,n,8,1");
    EXPECT_EQ(::cfgetospeed(&line), speed_t(B9600));
    EXPECT_EQ(line.c_cflag & (CRTSCTS | CSTOPB), 0u);
    EXPECT_EQ(line.c_iflag & (IXON | IXOFF), 0u);
    line = lineFor("19200,n,8,2", Handshaking::XonXoff);
    EXPECT_EQ(::cfgetospeed(&line), speed_t(B19200));
    EXPECT_EQ(line.c_cflag & (CRTSCTS | CSTOPB), unsigned(CSTOPB));
    EXPECT_EQ(line.c_iflag & (IXON | IXOFF), unsigned(IXON | IXOFF));
    line = lineFor("9600,e,7,1", Handshaking::RtsCts);
    EXPECT_EQ(line.c_cflag & (CRTSCTS | CSTOPB), unsigned(CRTSCTS));
    EXPECT_EQ(line.c_iflag & (IXON | IXOFF), 0u);
    line = lineFor("9600,n,8,1", Handshaking::RtsCtsXonXoff);
    EXPECT_EQ(line.c_cflag & CRTSCTS, unsigned(CRTSCTS));
    EXPECT_EQ(line.c_iflag & (IXON | IXOFF), unsigned(IXON | IXOFF));
}

TEST_F(SerialPortsTest, WhoHoldsAPortIsNamed) {
    machine.link("com2", device.path());
    ASSERT_FALSE(port.open(1, {}, Handshaking::None));
    SerialPort other("the command \"Jingle\"");
    const SerialFault fault = other.open(2, {}, Handshaking::None);
    EXPECT_EQ(fault.number, SerialPortInUse);
    EXPECT_EQ(fault.text, QString("COM2 is in use by the radio clock."));
    EXPECT_EQ(FactsOfSerialPort(1).holder, QString("the radio clock"));
    port.close();
    EXPECT_FALSE(other.open(2, {}, Handshaking::None));
    other.close();

    QProcess holder;
    holder.start("bash", {"-c", "exec sleep 60 <>" + device.path()});
    ASSERT_TRUE(holder.waitForStarted());
    ASSERT_TRUE(waitFor([&] { return !FactsOfSerialPort(1).holder.isEmpty(); }));
    EXPECT_TRUE(waitFor([&] {
        return port.open(1, {}, Handshaking::None).text ==
               QStringLiteral("COM1 is in use by sleep (process %1).").arg(holder.processId());
    }));
    holder.kill();
    holder.waitForFinished();
}

TEST_F(SerialPortsTest, APortThatCannotBeOpenedSaysWhy) {
    machine.link("com3", "/dev/not-there");
    machine.write("C:\\plain", "a file");
    machine.link("com4", machine.host("C:\\plain"));
    for (const int number : {0, 2, 3, 4, 17}) {
        const SerialFault fault = port.open(number, {}, Handshaking::None);
        EXPECT_EQ(fault.number, SerialPortMissing) << number;
        EXPECT_TRUE(fault.text.startsWith(QStringLiteral("COM%1 ").arg(number))) << fault.text.toStdString();
    }
    EXPECT_TRUE(port.open(3, {}, Handshaking::None).text.contains("/dev/not-there"));
    ASSERT_EQ(::chmod(device.path().toUtf8().constData(), 0), 0);
    ASSERT_EQ(::chmod(machine.path().toUtf8().constData(), 0755), 0);
    EXPECT_TRUE(PassesWithoutRights([&] {
        const SerialFault fault = port.open(1, {}, Handshaking::None);
        EXPECT_EQ(fault.number, SerialPortFailed);
        EXPECT_TRUE(fault.text.contains("may not use; it belongs to the group")) << fault.text.toStdString();
    }));
}

// Existing devices get their numbers once; from then on these stay.
TEST(SerialPortNumbers, AreGivenAtTheFirstStart) {
    static QStringList there;
    SetSerialDevices([] { return there; });
    const PseudoTerminal a;
    const PseudoTerminal b;
    there = {a.path(), b.path()};
    const auto leadTo = [] {
        QStringList devices;
        for (const SerialPortFacts& port : SerialPorts())
            if (!port.device.isEmpty())
                devices += port.name() + '=' + port.device;
        return devices;
    };
    const QStringList both = {"COM1=" + a.path(), "COM2=" + b.path()};
    const TestMachine machine;
    const QString entry = machine.path() + "/dosdevices/com1";
    {
        const LookOnly looking;
        EXPECT_EQ(leadTo(), both);
        EXPECT_FALSE(QFileInfo(entry).isSymLink());
    }
    EXPECT_EQ(leadTo(), both);
    EXPECT_EQ(QFileInfo(entry).symLinkTarget(), a.path());
    EXPECT_TRUE(FactsOfSerialPort(2).present);
    there = {b.path()};
    QFile::remove(machine.path() + "/dosdevices/com2");
    EXPECT_EQ(leadTo(), both.mid(0, 1));
    SetSerialDevices(nullptr);
}
