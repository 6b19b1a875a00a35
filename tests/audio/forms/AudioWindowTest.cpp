// The audio window, worked by mouse and keyboard.
#include "SetupForm.h"

#include "audio/AudioSetup.h"
#include "audio/forms/frmAudioSetup.h"
#include "audio/forms/frmChooseAudioFormat.h"
#include "ui/binding/ColourButton.h"

#include <QClipboard>
#include <QListWidget>

#include <gtest/gtest.h>

using namespace tolvex;
using namespace tolvex::tests;

namespace {

class AudioWindow : public testing::Test, protected SetupForm<frmAudioSetup> {};

} // namespace

TEST_F(AudioWindow, StoresWhatIsSetOnEachTab) {
    open();
    EXPECT_EQ(QApplication::focusWidget(), on<QLineEdit>("txtNumberCartPlayers"));
    press("optCartPlayerManualMode");
    type("txtNumberCartPlayers", "2");
    choose("listCartPlayer_1", 3);
    choose("listCartPlayer_2", 0);
    choose("listRecordPlayer", 1);
    choose("listICPlayer", 1);
    press("chkPlayersAsToolbars");
    tab(2);
    prompts.colours = {0x123456, qint32(0x563412)};
    press("cmdPlayerBackGround_2");
    press("cmdPlayerForeground_6");
    EXPECT_EQ(prompts.colourInitials, QList<qint32>({0, 0xFFFFFF}));
    tab(3);
    press("optSweeper");
    type("txtSweeperVol", "7x5");
    type("txtGeneralVolume", "80");
    type("txtFadePercent", "30");
    choose("listLastPlayerOrder", 0);
    tab(4);
    prompts.waveFormats = {platform::WaveFormat{0x31, 1, 8000}};
    press("cmdSelectAudioFormat");
    EXPECT_EQ(label("lblAudioFormat"), " GSM 6.10 8.000 kHz, Mono");
    prompts.files = {QStringLiteral("C:\\edit\\Wave.exe")};
    press("cmdSelectAudioEditor");
    QTest::keyClick(on<QSlider>("sldEditPriority"), Qt::Key_Right);
    tab(5);
    press("chkLockPlayerWhenRecording");
    choose("comboRecordingLockPlayer", 1);
    choose("comboDebug", 2);
    press("chkUseCopyrightInCartChunk");
    EXPECT_EQ(value("CartPlayers", "TotalNumberCartPlayers"), "<none>");
    QTest::keyClick(form.get(), Qt::Key_Return);
    EXPECT_FALSE(form->isVisible());
    EXPECT_TRUE(prompts.asked.isEmpty());

    const struct {
        const char* section;
        const char* key;
        const char* stored;
    } all[] = {{"CartPlayers", "TotalNumberCartPlayers", "2"},
               {"CartPlayers", "SoundCardNumber1", "3"},
               {"CartPlayers", "SoundCardNumber2", "0"},
               {"CartPlayers", "Instant", "2"},
               {"CartPlayers", "RegisterAsToolbars", "1"},
               {"CartPlayers", "BackColor2", "1193046"},
               {"CartPlayers", "ForeColor6", "5649426"},
               {"CartPlayers", "LastPlayerInOrder", "1"},
               {"Audio", "RecordingSoundCard", "2"},
               {"Audio", "UsePlayerDucking", "0"},
               {"Audio", "SweptVolume", "75"},
               {"Audio", "GeneralVolume", "80"},
               {"Audio", "PlayerFadeFirePercent", "30"},
               {"Audio", "Format", "49"},
               {"Audio", "KHz", "8000"},
               {"Audio", "AudioEditorPriority", "11"},
               {"FileLocations", "AudioEditor", "C:\\EDIT\\WAVE.EXE"},
               {"Audio", "LockPlayerWhenRecording", "2"},
               {"Audio", "WLDebugMode", "2"}};
    for (const auto& [section, key, stored] : all)
        EXPECT_EQ(value(section, key), stored) << key;
    EXPECT_EQ(value("CartChunk", "UseCopyrightInCartChunk", "D:\\WALL\\Audwall.ini"), "1");
}

TEST_F(AudioWindow, EnablesWhatTheNumberOfPlayersAndTheOptionsAllow) {
    open();
    EXPECT_FALSE(enabled("listCartPlayer_1"));
    press("optCartPlayerManualMode");
    EXPECT_TRUE(enabled("listCartPlayer_3") && enabled("lblCartPlayer_3"));
    EXPECT_FALSE(enabled("listCartPlayer_4") || enabled("lblCartPlayer_4") || enabled("cmdTest_4"));
    type("txtNumberCartPlayers", "0");
    EXPECT_FALSE(enabled("listICPlayer") || enabled("framePlayoutOrder") || enabled("lblLastPlayerOrder"));
    type("txtNumberCartPlayers", "7");
    EXPECT_EQ(text("txtNumberCartPlayers"), "6");
    EXPECT_TRUE(enabled("listCartPlayer_6") && enabled("listICPlayer") && enabled("framePlayoutOrder"));
    tab(3);
    EXPECT_TRUE(enabled("txtDuckVolume"));
    EXPECT_FALSE(enabled("txtSweeperVol"));
    type("txtDuckVolume", "99999999999");
    press("optSweeper");
    EXPECT_EQ(text("txtDuckVolume"), "100");
    EXPECT_FALSE(enabled("txtDuckVolume"));
    type("txtSweeperVol", "101");
    type("txtGeneralVolume", "-7.5");
    EXPECT_EQ(text("txtSweeperVol"), "100");
    EXPECT_EQ(text("txtGeneralVolume"), "7.5");
    tab(5);
    EXPECT_FALSE(enabled("comboRecordingLockPlayer"));
    press("chkLockPlayerWhenRecording");
    EXPECT_TRUE(enabled("comboRecordingLockPlayer"));
    EXPECT_FALSE(enabled("cmdTunelane"));
    press("cmdCheckVCACHE");
    EXPECT_TRUE(prompts.texts().last().contains("natively optimized for Audio playback"));
}

TEST_F(AudioWindow, ShowsARefusalAtItsFieldAndStaysOpen) {
    open();
    QApplication::clipboard()->setText("7"); // a paste is for OK to refuse
    auto* players = on<QLineEdit>("txtNumberCartPlayers");
    players->selectAll();
    QTest::keyClick(players, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(players->text(), "7");
    tab(2);
    press("cmdOK");
    EXPECT_EQ(prompts.texts(), QStringList{"You cannot have more than 6 in Tolvex"});
    EXPECT_TRUE(form->isVisible());
    EXPECT_EQ(form->findChild<QTabWidget*>()->currentIndex(), 0);
    EXPECT_EQ(form->focusWidget(), players);
    EXPECT_EQ(prompts.pointer(), platform::Pointer::Default);
    QTest::keyClick(form.get(), Qt::Key_Escape);
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(value("CartPlayers", "TotalNumberCartPlayers"), "<none>");
    EXPECT_EQ(settings.TotalNumberCartPlayers, 3);
}

TEST_F(AudioWindow, OpensOverAnyDevicesAndNumbers) {
    const auto many = [](int count) {
        QStringList names;
        for (int n = 0; n < count; ++n)
            names += QString(300, QChar(0xFFFD)) + QString::number(n);
        return names;
    };
    for (const int count : {0, 40}) {
        setOutputs(many(count), many(count));
        settings.AutomaticPlayerAssignment = 0;
        settings.CartPlayerTable[1].Device = 30000;
        settings.CartPlayerTable[2].Device = -5;
        settings.CartPlayerTable[3].Device = 40;
        settings.CartPlayerTable[1].BackColor = -1;
        settings.RecordingSoundCard = 99;
        settings.AudioEditorPriority = 99;
        settings.WLDebugMode = 77;
        settings.Format = 4660;
        open();
        EXPECT_LE(form->width(), form->screen()->availableSize().width());
        EXPECT_EQ(on<QComboBox>("listCartPlayer_1")->count(), count + 1);
        EXPECT_LE(on<QComboBox>("listCartPlayer_1")->itemText(1).size(), 60);
        EXPECT_EQ(on<QComboBox>("listCartPlayer_1")->currentIndex(), 0);
        EXPECT_EQ(on<QComboBox>("listCartPlayer_3")->currentIndex(), count == 40 ? 40 : 0);
        EXPECT_EQ(on<QComboBox>("listRecordPlayer")->currentIndex(), count - 1);
        EXPECT_EQ(label("lblAudioFormat"), " Format 4660 44.100 kHz, Stereo");
        press("cmdOK");
        EXPECT_FALSE(form->isVisible());
        EXPECT_EQ(value("Audio", "Format"), "4660");
        EXPECT_EQ(value("Audio", "AudioEditorPriority"), "99");
        EXPECT_EQ(value("CartPlayers", "BackColor1"), "-1");
    }
    setOutputs({"One"}, {QString(31, u'a'), QString(32, u'b'), QStringLiteral("short") + QChar(0) + u'x'});
    open();
    const auto* inputs = on<QComboBox>("listRecordPlayer");
    EXPECT_EQ(inputs->itemText(0), QString(31, u'a'));
    EXPECT_EQ(inputs->itemText(1), "Unknown recording device!");
    EXPECT_EQ(inputs->itemText(2), "short");
}

TEST_F(AudioWindow, OfTheSplitTransmissionProductShowsItsVolumes) {
    settings.CartGroupVolume = 61;
    form = std::make_unique<frmAudioSetup>(settings);
    form->setZqsMode(true);
    EXPECT_TRUE(form->zqsMode());
    form->show();
    activate();
    EXPECT_FALSE(on<QWidget>("listICPlayer")->isVisible() ||
                 on<QWidget>("chkPlayersAsToolbars")->isVisible());
    tab(2);
    EXPECT_FALSE(on<QWidget>("cmdPlayerBackGround_4")->isVisible());
    tab(3);
    EXPECT_FALSE(on<QWidget>("fraPlaybackVolumes")->isVisible() ||
                 on<QWidget>("txtFadePercent")->isVisible());
    EXPECT_EQ(text("txtCartGroupVolume"), "61");
    type("txtCartVolume", "10");
    tab(1);
    press("cmdOK"); // carts would be fired at a higher volume than they are played at
    EXPECT_EQ(form->focusWidget(), on<QLineEdit>("txtCartVolume"));
    EXPECT_TRUE(on<QLineEdit>("txtCartVolume")->isVisible());
    prompts.forget();
    QTest::keyClicks(form->focusWidget(), "77.");
    EXPECT_EQ(text("txtCartVolume"), "77");
    press("cmdOK");
    EXPECT_EQ(value("Audio", "GeneralVolume"), "77");
    EXPECT_EQ(value("Audio", "CartGroupVolume"), "61");
    EXPECT_EQ(prompts.asked.size(), 1);
}

TEST_F(AudioWindow, ClampsTheBoxThatOkIsPressedFrom) {
    open();
    tab(3);
    type("txtGeneralVolume", "150");
    QTest::keyClick(form.get(), Qt::Key_O, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !form->isVisible(); }));
    EXPECT_EQ(value("Audio", "GeneralVolume"), "100");
}

TEST(AudioFormatChooser, BeginsAtTheNearestAndKeepsRateAndChannels) {
    frmChooseAudioFormat chooser(1, 1, 22000);
    chooser.show();
    EXPECT_EQ(chooser.chosen(), (platform::AudioFormat{1, 1, 22050, 16}));
    auto* tags = chooser.findChild<QListWidget*>("listTags");
    auto* attributes = chooser.findChild<QListWidget*>("listAttributes");
    // One row for what is stored as one format, whatever sizes of a sample there are.
    EXPECT_TRUE(attributes->findItems("22.050 kHz, 24 Bit, Mono", Qt::MatchExactly).isEmpty());
    EXPECT_EQ(attributes->findItems("22.050 kHz,*, Mono", Qt::MatchWildcard).size(), 1);
    EXPECT_EQ(attributes->currentItem()->text(), "22.050 kHz, 16 Bit, Mono");
    const QModelIndex law = tags->model()->match(tags->model()->index(0, 0), 0, "CCITT A-Law").first();
    QTest::mouseClick(tags->viewport(), Qt::LeftButton, {}, tags->visualRect(law).center());
    EXPECT_EQ(chooser.chosen(), (platform::AudioFormat{6, 1, 22050, 8}));
    QTest::keyClick(attributes, Qt::Key_Down);
    EXPECT_EQ(chooser.chosen(), (platform::AudioFormat{6, 2, 22050, 8}));
    QTest::keyClick(attributes, Qt::Key_Return);
    EXPECT_EQ(chooser.result(), QDialog::Accepted);
}
