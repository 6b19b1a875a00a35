// The audio window over the real sound system: test tones, levels, devices that come, go and move.
#include "SetupForm.h"
#include "TestPlaces.h"
#include "support/SoundDevices.h"

#include "audio/DeviceIdentity.h"
#include "audio/devices/LevelReader.h"
#include "audio/devices/ToneTest.h"
#include "audio/forms/LevelMeter.h"
#include "audio/forms/frmAudioSetup.h"
#include "platform/devices/WaveDeviceWatch.h"

#include <QAbstractItemView>
#include <QPushButton>

#include <gtest/gtest.h>

using namespace tolvex;
using namespace tolvex::tests;

namespace {

// Peak and frequency of one side, by its upward zero crossings.
struct Tone {
    double peak = 0;
    double hertz = 0;
};
Tone toneOf(const std::vector<qint16>& samples, std::size_t side, double from, double to) {
    const std::size_t frames = samples.size() / 2;
    Tone tone;
    int crossings = 0;
    const auto first = std::size_t(double(frames) * from);
    const auto last = std::size_t(double(frames) * to);
    for (std::size_t i = first + 1; i < last; ++i) {
        tone.peak = std::max(tone.peak, std::abs(samples[i * 2 + side] / 32767.0));
        crossings += samples[(i - 1) * 2 + side] < 0 && samples[i * 2 + side] >= 0;
    }
    tone.hertz = crossings * 44100.0 / double(last - first);
    return tone;
}

class SoundWindow : public testing::Test, protected SetupForm<frmAudioSetup> {
protected:
    SoundWindow() {
        settings.AutomaticPlayerAssignment = 0;
        platform::SetSoundDeviceFolder(machine.path() + "/snd");
    }
    ~SoundWindow() override { platform::SetSoundDeviceFolder({}); }

    void declare(const QStringList& outputs, const QStringList& inputs = {}) {
        sound.declare(outputs, inputs);
        platform::RefreshWaveDevices();
    }
    QString status() const { return label("lblStatus"); }
    bool waitFor(const QString& text) const {
        return QTest::qWaitFor([&] { return status() == text; }, 10000);
    }

    SoundDevices sound;
};

} // namespace

TEST_F(SoundWindow, PlaysATestToneOnThePlayersDevice) {
    declare({"desk", "phones"});
    settings.CartPlayerTable[2].Device = 2;
    settings.GeneralVolume = 50;
    open();
    press("cmdTest_2");
    EXPECT_EQ(status(), "Player 2 is playing on The phones, 44100 Hz, stereo: left, right, both.");
    EXPECT_EQ(on<QPushButton>("cmdTest_2")->text(), "Stop");
    ASSERT_TRUE(waitFor("Player 2: the tone was played."));
    EXPECT_EQ(on<QPushButton>("cmdTest_2")->text(), "Test");
    const std::vector<qint16> samples = sound.samplesOf("phones");
    EXPECT_EQ(samples.size(), 2U * 66150);
    EXPECT_TRUE(sound.samplesOf("desk").empty());
    const double level = 0.05; // -20 dBFS at half the volume
    for (const auto& [side, from, loud] :
         {std::tuple(0U, 0.0, true), std::tuple(1U, 0.0, false), std::tuple(0U, 0.34, false),
          std::tuple(1U, 0.34, true), std::tuple(0U, 0.67, true), std::tuple(1U, 0.67, true)}) {
        const Tone tone = toneOf(samples, side, from + 0.01, from + 0.31);
        EXPECT_NEAR(tone.peak, loud ? level : 0, 0.001) << side << ' ' << from;
        EXPECT_NEAR(tone.hertz, loud ? 1000 : 0, 5) << side << ' ' << from;
    }
    EXPECT_LT(std::abs(samples[20]), 0.3 * level * 32767); // it rises softly
}

TEST_F(SoundWindow, StopsAToneAtOnceAndSaysWhyNonePlays) {
    declare({"desk", "phones"});
    settings.CartPlayerTable[1].Device = 1;
    open();
    press("cmdTest_1");
    press("cmdTest_2"); // the one before stops; the mapper's device is not declared
    EXPECT_EQ(on<QPushButton>("cmdTest_1")->text(), "Test");
    EXPECT_TRUE(status().startsWith("The default sound device is not there")) << status().toStdString();
    press("cmdTest_1");
    press("cmdTest_1");
    EXPECT_EQ(status(), "Stopped.");
    EXPECT_LT(sound.samplesOf("desk").size(), 2U * 44100);
    press("cmdTest_1");
    tab(2);
    EXPECT_EQ(on<QPushButton>("cmdTest_1")->text(), "Test");
    EXPECT_EQ(status(), "Stopped.");
}

TEST_F(SoundWindow, GoesOnPlayingWhenSomethingElseIsPluggedIn) {
    declare({"desk"});
    settings.CartPlayerTable[1].Device = 1;
    open();
    press("cmdTest_1");
    QFile other(machine.path() + "/a-disk"); // beside the folder of the sound devices, which is not there
    ASSERT_TRUE(other.open(QIODevice::WriteOnly));
    ASSERT_TRUE(waitFor("Player 1: the tone was played."));
}

TEST_F(SoundWindow, SaysThatADeviceIsBusy) {
    sound.declare({}, {},
                  "pcm_type.studio { lib \"" TOLVEX_STUDIO_PCM "\" }\n"
                  "pcm.taken { type studio rates [ 44100 ] channels [ 2 ] busy 1 direction playback "
                  "hint { show on description \"The taken\" } }\n");
    platform::RefreshWaveDevices();
    settings.CartPlayerTable[1].Device = 1;
    open();
    press("cmdTest_1");
    EXPECT_EQ(status(), "The taken is busy: another program uses it.");
    EXPECT_EQ(on<QPushButton>("cmdTest_1")->text(), "Test");
}

TEST_F(SoundWindow, ShowsTheLevelOfTheRecordingDeviceWhileAskedFor) {
    sound.record("line", 0.5, 0.25, 44100 * 20);
    declare({"desk"}, {"line"});
    open();
    auto* meter = on<LevelMeter>("meterLevel");
    EXPECT_FALSE(meter->isVisible());
    press("cmdLevel");
    EXPECT_TRUE(QTest::qWaitFor([&] { return meter->text() == "-6.0 dBFS, good"; }));
    EXPECT_TRUE(meter->isVisible());
    tab(3);
    tab(1);
    EXPECT_FALSE(meter->isVisible());
    EXPECT_EQ(on<QPushButton>("cmdLevel")->text(), "Show level");
}

TEST(Levels, AreToldInWords) {
    EXPECT_EQ(LevelWord(0), "no signal");
    EXPECT_EQ(LevelWord(0.00099), "no signal"); // -60.1
    EXPECT_EQ(LevelWord(0.00101), "good");
    EXPECT_EQ(LevelWord(0.98), "good"); // -0.18
    EXPECT_EQ(LevelWord(0.99), "clipping");
    LevelMeter meter;
    meter.setLevel({{0.5, 0.1}});
    meter.setLevel({{0.1, 0.01}}); // the peak is held
    EXPECT_EQ(meter.text(), "-6.0 dBFS, good");
}

TEST_F(SoundWindow, FollowsDevicesThatComeAndGoWithoutLosingAChoice) {
    declare({"desk", "phones"}, {"line"});
    settings.CartPlayerTable[1].Device = 2;
    settings.CartPlayerTable[2].Device = 1;
    open();
    sound.declare({"desk", "extra"}, {"line"});
    QDir().mkpath(platform::SoundDeviceFolder()); // comes only now
    ASSERT_TRUE(waitFor("The sound devices of this computer have changed."));
    auto* list = on<QComboBox>("listCartPlayer_1");
    EXPECT_EQ(list->currentText(), "The phones (not there now)");
    EXPECT_EQ(list->itemText(3), "The extra");
    EXPECT_EQ(on<QComboBox>("listCartPlayer_2")->currentText(), "The desk");
    on<QLabel>("lblStatus")->clear();
    list->showPopup();
    sound.declare({"phones", "desk", "extra"}, {"line"});
    QFile node(platform::SoundDeviceFolder() + "/pcmC1D0p");
    ASSERT_TRUE(node.open(QIODevice::WriteOnly));
    ASSERT_TRUE(waitFor("The sound devices of this computer have changed."));
    EXPECT_FALSE(list->view()->isVisible()); // an open list closes, with the choice that it had
    EXPECT_EQ(list->currentText(), "The phones");
    press("cmdOK");
    EXPECT_EQ(value("CartPlayers", "SoundCardNumber1"), "2");
}

TEST_F(SoundWindow, PutsNumbersRightThatMeanOtherDevicesNow) {
    settings.CartPlayerTable[1].Device = 3;
    settings.CartPlayerTable[2].Device = 1;
    settings.CartPlayerTable[3].Device = 2;
    settings.RecordingSoundCard = 2;
    open();
    EXPECT_FALSE(on<QWidget>("lblMoved")->isVisible() || on<QWidget>("cmdRepair")->isVisible());
    press("cmdOK"); // remembers
    setOutputs({"Desk 2", "New", "Phones", "Desk 1"}, {"Line"});
    open();
    EXPECT_EQ(label("lblMoved"),
              "The recording device was 'Microphone', which is not there now; no device has number 1 now.\n"
              "Player 2 was 'Desk 1', which is now number 3; number 0 is now 'Desk 2'.\n"
              "Player 3 was 'Desk 2', which is now number 0; number 1 is now 'New'.");
    press("cmdRepair");
    EXPECT_EQ(on<QComboBox>("listCartPlayer_2")->currentText(), "Desk 1");
    EXPECT_EQ(on<QComboBox>("listCartPlayer_3")->currentText(), "Desk 2");
    EXPECT_FALSE(on<QWidget>("cmdRepair")->isVisible());
    press("cmdOK");
    EXPECT_EQ(value("CartPlayers", "SoundCardNumber2"), "4");
    EXPECT_EQ(value("CartPlayers", "SoundCardNumber1"), "3");
    EXPECT_EQ(FindMovedDevices(settings).size(), 1); // the recording device, which is not there
}
