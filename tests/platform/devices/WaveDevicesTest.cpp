// Wave devices of a declared sound system, and the numbers they keep.
#include "platform/devices/WaveDevices.h"
#include "TestPlaces.h"
#include "platform/devices/WaveNumbers.h"
#include "support/MachineFolder.h"

#include <gtest/gtest.h>

using namespace tolvex::platform;
using tolvex::tests::TestMachine;

namespace {

constexpr quint32 mono = WaveFormat1M16 | WaveFormat2M16 | WaveFormat4M16;
constexpr quint32 stereo = WaveFormat1S16 | WaveFormat2S16 | WaveFormat4S16;

// A machine with the sound system that the test declares, and nothing of this machine's own.
class WaveDevices : public testing::Test {
protected:
    ~WaveDevices() override {
        qunsetenv("ALSA_CONFIG_PATH");
        RefreshWaveDevices();
    }
    // `devices`: name and body of each.
    void declare(const QList<std::pair<QByteArray, QByteArray>>& devices) {
        QByteArray text = "pcm_type.studio { lib \"" TOLVEX_STUDIO_PCM "\" }\n"
                          "pcm.null { type null hint { show on description \"Discards all\" } }\n";
        for (const auto& [name, body] : devices)
            text += "pcm." + name + " { " + body + " hint { show on description \"The " + name + "\" } }\n";
        const QString path = machine.path() + QString("/asound%1.conf").arg(++version);
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        qputenv("ALSA_CONFIG_PATH", QFile::encodeName(path));
        RefreshWaveDevices();
    }
    static QStringList namesOf(const QList<WaveDevice>& devices) {
        QStringList names;
        for (const WaveDevice& device : devices)
            names += device.present ? device.name : "(" + device.name + ")";
        return names;
    }

    TestMachine machine;
    int version = 0;
};

const char* const both = "type studio rates [ 11025 22050 44100 ] channels [ 1 2 ]";

} // namespace

TEST_F(WaveDevices, TellWhatEachCanDo) {
    declare({{"console", both},
             {"phone", "type studio rates [ 11025 48000 ] channels [ 1 ] direction playback"},
             {"modern", "type studio rates [ 44100 48000 ] channels [ 2 ]"},
             {"microphone", "type studio rates [ 44100 ] channels [ 1 ] direction capture"},
             {"taken", "type studio rates [ 44100 ] channels [ 2 ] busy 1 direction playback"},
             {"broken", "type nonesuch"}});
    EXPECT_EQ(namesOf(WaveOutputs()), QStringList({"The console", "The phone", "The modern", "The taken"}));
    EXPECT_EQ(namesOf(WaveInputs()), QStringList({"The console", "The modern", "The microphone"}));
    EXPECT_EQ(WaveOutputs()[0].formats, mono | stereo);
    EXPECT_EQ(WaveOutputs()[1].formats, WaveFormat1M16);
    EXPECT_EQ(WaveOutputs()[2].formats, WaveFormat4S16);
    EXPECT_EQ(WaveOutputs()[3].formats, mono | stereo); // never asked, so not excluded
    EXPECT_EQ(WaveInputs()[2].formats, WaveFormat4M16);
    EXPECT_EQ(WaveOutputs()[0].id, "console");
}

TEST_F(WaveDevices, AreNoneWithoutAWordOnAMachineWithoutSound) {
    declare({});
    EXPECT_TRUE(WaveOutputs().isEmpty());
    EXPECT_TRUE(WaveInputs().isEmpty());
    qputenv("ALSA_CONFIG_PATH", "/nowhere/at/all.conf");
    RefreshWaveDevices();
    EXPECT_TRUE(WaveOutputs().isEmpty());
}

TEST_F(WaveDevices, KeepTheirNumbersFromStartToStart) {
    const QByteArray out = QByteArray(both) + " direction playback";
    declare({{"a", out}, {"b", out}, {"c", out}});
    EXPECT_EQ(namesOf(WaveOutputs()), QStringList({"The a", "The b", "The c"}));
    declare({{"new", out}, {"c", out}, {"b", out + " busy 1"}});
    EXPECT_EQ(namesOf(WaveOutputs()), QStringList({"(The a)", "The b", "The c", "The new"}));
    EXPECT_EQ(WaveOutputs()[0].formats, 0U);
    EXPECT_EQ(WaveOutputs()[1].formats, mono | stereo);
    declare({{"a", "type studio rates [ 44100 ] channels [ 2 ] direction playback"}});
    EXPECT_EQ(namesOf(WaveOutputs()), QStringList({"The a", "(The b)", "(The c)", "(The new)"}));
    EXPECT_EQ(WaveOutputs()[0].formats, WaveFormat4S16);
    // Without a writable list there are devices all the same.
    const QString list = machine.path() + "/wavedevices.txt";
    ASSERT_TRUE(QFile::remove(list) && QDir().mkpath(list + "/in/the/way"));
    declare({{"b", out}});
    EXPECT_EQ(namesOf(WaveOutputs()), QStringList("The b"));
}

TEST(WaveNumbers, TellTwoCardsOfOneMakeApartByTheirPlaces) {
    const auto card = [](const char* id, const char* place) {
        KnownWaveDevice known;
        known.device.id = known.device.name = id;
        known.place = place;
        return known;
    };
    const auto ids = [](const QList<KnownWaveDevice>& devices) {
        QStringList all;
        for (const KnownWaveDevice& known : devices)
            all += (known.device.present ? "" : "-") + known.device.id + "@" + known.place;
        return all;
    };
    const QList<KnownWaveDevice> first =
        NumberWaveDevices({}, {card("Device", "usb1"), card("Device_1", "usb2"), card("PCH", "pci")});
    // The system numbers the cards in reverse: ids swap, places do not.
    EXPECT_EQ(
        ids(NumberWaveDevices(first, {card("PCH", "pci"), card("Device", "usb2"), card("Device_1", "usb1")})),
        QStringList({"Device_1@usb1", "Device@usb2", "PCH@pci"}));
    // One is gone: the other keeps its number, although it now has the first one's id.
    EXPECT_EQ(ids(NumberWaveDevices(first, {card("Device", "usb2")})),
              QStringList({"-Device@usb1", "Device@usb2", "-PCH@pci"}));
    // Plugged in elsewhere.
    EXPECT_EQ(
        ids(NumberWaveDevices(first, {card("PCH", "pci"), card("Device", "usb1"), card("Device_1", "usb7")})),
        QStringList({"Device@usb1", "Device_1@usb7", "PCH@pci"}));

    QList<KnownWaveDevice> many = first;
    for (int i = 0; i < 100; ++i)
        many = NumberWaveDevices(many, {card("PCH", "pci"), card(QByteArray::number(i).constData(), "")});
    EXPECT_EQ(many.size(), 64);
    EXPECT_EQ(ids(many).mid(1, 2), QStringList({"-Device_1@usb2", "PCH@pci"}));
}

TEST(WaveNumbers, SurviveTheirFileAndAnythingElseInIt) {
    KnownWaveDevices known;
    known.outputs.resize(2);
    known.outputs[0].device = {"A\tname\nof two lines", "plughw:CARD=X,DEV=0", 0, WaveFormat4S16, false};
    known.outputs[0].place = "/sys/devices/x";
    known.outputs[1].device = {QString::fromUtf8("Hörfunk"), "b", 0, 0, false};
    known.inputs = known.outputs.mid(1);
    const QByteArray text = WriteKnownWaveDevices(known);
    EXPECT_EQ(text.count('\n'), 3);
    EXPECT_EQ(WriteKnownWaveDevices(ReadKnownWaveDevices(text)), text);
    EXPECT_EQ(WriteKnownWaveDevices(
                  ReadKnownWaveDevices("\n\xFF\tout\nout\t\t\t4\tx\nup\t\tid\t4\tx\nout\tx\n" + text)),
              text);
}
