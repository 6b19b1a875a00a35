// The audio window's load and OK, without a window.
#include "SetupTest.h"

#include "audio/AudioSetup.h"

using namespace tolvex;
using namespace tolvex::platform;
using namespace tolvex::tests;

namespace {

class AudioSetups : public SetupTest {
protected:
    AudioSetups() {
        settings = loaded();
        setup = LoadAudioSetup(settings);
        setup.players = 4;
        setup.automatic = false;
    }
    AudioSetup setup;
};

} // namespace

TEST_F(AudioSetups, ComeBackEqualFromTheFilesBesideThoseOfOtherPrograms) {
    for (int n = 1; n <= CartPlayerCount; ++n)
        setup.player[n] = {7 - n, 0x100 * n, qint32(0x80000012u)};
    setup.recordInto = 1;
    setup.firstInOrder = 1;
    setup.lastInOrder = 2;
    setup.instant = 2;
    setup.editPlayer = 3;
    setup.ducking = false;
    setup.generalVolume = 90;
    setup.duckVolume = 41;
    setup.sweeperVolume = 77;
    setup.fadePercent = 33;
    setup.format = 0x1234;
    setup.channels = 1;
    setup.rate = 22050;
    setup.audioEditor = "C:\\EDIT\\EDIT.EXE ";
    setup.editorPriority = 17;
    setup.lockPlayer = true;
    setup.lockedPlayer = 1;
    setup.debugMode = 2;
    for (bool AudioSetup::*flag :
         {&AudioSetup::playersAsToolbars, &AudioSetup::onlyEjectStopped, &AudioSetup::allowDifferentFormat,
          &AudioSetup::recordLocal, &AudioSetup::editorAtIdleSpeed, &AudioSetup::individualCartFiles,
          &AudioSetup::allowAudioFileLinking, &AudioSetup::useLargeBuffers, &AudioSetup::useLegacyCopyMode,
          &AudioSetup::useCopyright})
        setup.*flag = true;
    setup.maintainLegacy = setup.playInstantly = false;
    ASSERT_TRUE(StoreAudioSetup(setup, settings).stored());
    EXPECT_TRUE(prompts.asked.isEmpty());

    const AudioSetup again = LoadAudioSetup(loaded());
    EXPECT_EQ(again.player[1].device, 6);
    EXPECT_EQ(again.player[4].device, 3);
    EXPECT_EQ(again.player[5].device, 0); // not a player
    EXPECT_EQ(again.player[6].backColor, 0x600);
    EXPECT_EQ(again.player[6].foreColor, qint32(0x80000012u));
    EXPECT_EQ(std::tie(again.players, again.recordInto, again.firstInOrder, again.lastInOrder, again.instant,
                       again.editPlayer, again.lockedPlayer, again.debugMode),
              std::make_tuple(4, 1, 1, 2, 2, 3, 1, 2));
    EXPECT_EQ(std::tie(again.generalVolume, again.duckVolume, again.sweeperVolume, again.fadePercent,
                       again.format, again.channels, again.rate, again.editorPriority),
              std::make_tuple(90, 41, 77, 33, 0x1234, 1, 22050, 17));
    EXPECT_EQ(again.audioEditor, "C:\\EDIT\\EDIT.EXE");
    EXPECT_TRUE(again.playersAsToolbars && again.onlyEjectStopped && again.allowDifferentFormat &&
                again.recordLocal && again.editorAtIdleSpeed && again.individualCartFiles &&
                again.allowAudioFileLinking && again.useLargeBuffers && again.useLegacyCopyMode &&
                again.useCopyright && again.lockPlayer);
    EXPECT_FALSE(again.maintainLegacy || again.playInstantly || again.ducking || again.automatic);
    EXPECT_EQ(value("Other", "Key"), "kept");
    EXPECT_EQ(value("Audio", "Others"), "1");
    EXPECT_EQ(value("Audiowall", "AllowAudioFileLinking", wallIni), "1");
    EXPECT_EQ(value("CartChunk", "UseCopyrightInCartChunk", wallIni), "1");
    EXPECT_EQ(value("Audio", "CartGroupVolume"), "<none>");
}

TEST_F(AudioSetups, RefuseInOrderAndWriteNothing) {
    const QByteArray before = machine.read(iniPath);
    setup.maintainLegacy = setup.individualCartFiles = false;
    setup.players = 7;
    setup.fadePercent = setup.generalVolume;
    const auto refused = [this](const char* text, const char* field) {
        const SetupOutcome outcome = StoreAudioSetup(setup, settings);
        EXPECT_EQ(outcome.message, text);
        EXPECT_EQ(outcome.field, field);
        EXPECT_EQ(outcome.error, 0);
    };
    refused("You must specify either to 'Store each carts information individually' or 'Maintain the "
            "complete list' or both.",
            "chkMaintainLegacy");
    setup.individualCartFiles = true;
    refused("You cannot have more than 6 in Tolvex", "txtNumberCartPlayers");
    setup.players = 6;
    const char* const faded = "Your 'Fire When Faded to' percentage cannot be lower than the 'Play normal "
                              "carts at' percentage";
    refused(faded, "txtFadePercent");
    setup.zqs = true; // another volume counts
    setup.cartVolume = 10;
    setup.fadePercent = 10;
    refused(faded, "txtCartVolume"); // the other box is hidden
    setup.zqs = false;
    setup.audioEditor = QStringLiteral("C:\\\u4e2d.EXE");
    EXPECT_EQ(StoreAudioSetup(setup, settings).field, "txtAudioEditor");
    EXPECT_EQ(machine.read(iniPath), before);
    EXPECT_FALSE(machine.exists(wallIni));
    EXPECT_EQ(settings.TotalNumberCartPlayers, 6); // as it was loaded
    setup.audioEditor.clear();
    EXPECT_TRUE(StoreAudioSetup(setup, settings).stored());
}

TEST_F(AudioSetups, TakeWhatTheListsShowByTheNumberOfPlayers) {
    struct Case {
        int players, instant, edit, first, last, record, lock; // selected
        qint32 Instant, EditPlayer, First, Last, Recording, Lock;
    };
    const Case cases[] = {
        {0, 2, 2, 2, 2, 1, 2, 0, 0, 0, 255, 0, 0},
        {1, 5, 6, 5, 0, 0, 4, 1, 1, 6, 255, 1, 1}, // one player: the order of starting is taken as it is
        {2, 0, 0, 1, 0, 0, 0, 1, 0, 255, 1, 1, 1},
        {3, -1, 0, 2, 1, -1, 5, 1, 0, 255, 2, 3, 3},
        {4, 3, 4, 2, 3, 1, 0, 4, 4, 3, 255, 2, 1},
        {6, 4, 6, -1, -1, 1, 5, 5, 6, 0, 0, 2, 6},
    };
    setup.lockPlayer = true;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.players);
        setup.players = c.players;
        setup.instant = c.instant;
        setup.editPlayer = c.edit;
        setup.firstInOrder = c.first;
        setup.lastInOrder = c.last;
        setup.recordInto = c.record;
        setup.lockedPlayer = c.lock;
        ASSERT_TRUE(StoreAudioSetup(setup, settings).stored());
        EXPECT_EQ(std::tie(settings.Instant, settings.EditPlayer, settings.FirstPlayerInOrder,
                           settings.LastPlayerInOrder, settings.RecordingSoundCard,
                           settings.LockPlayerWhenRecording),
                  std::tie(c.Instant, c.EditPlayer, c.First, c.Last, c.Recording, c.Lock));
    }
    setup.lockPlayer = false; // the old one stays
    ASSERT_TRUE(StoreAudioSetup(setup, settings).stored());
    EXPECT_EQ(settings.LockPlayerWhenRecording, 6);
}

TEST_F(AudioSetups, ShowNumbersBeyondTheListsAtTheirEnds) {
    settings.TotalNumberCartPlayers = 5;
    settings.Instant = settings.EditPlayer = 40;
    settings.FirstPlayerInOrder = settings.LastPlayerInOrder = 255;
    settings.RecordingSoundCard = 9;
    settings.LockPlayerWhenRecording = 12;
    settings.WLDebugMode = 8;
    const qint16 devices[] = {6, 7, -3, 30000, 1, 2};
    for (int n = 1; n <= CartPlayerCount; ++n)
        settings.CartPlayerTable[n].Device = devices[n - 1];
    AudioSetup shown = LoadAudioSetup(settings);
    EXPECT_EQ(std::tie(shown.instant, shown.editPlayer, shown.firstInOrder, shown.lastInOrder,
                       shown.recordInto, shown.lockedPlayer, shown.debugMode),
              std::make_tuple(5, 6, 5, 5, 1, 5, 3));
    QList<int> indices;
    for (const AudioSetup::Player& player : shown.player)
        indices += player.device;
    EXPECT_EQ(indices, QList<int>({6, 0, 0, 0, 1, 0}));
    settings.Instant = settings.EditPlayer = settings.RecordingSoundCard = settings.WLDebugMode = -7;
    shown = LoadAudioSetup(settings);
    EXPECT_EQ(std::tie(shown.instant, shown.editPlayer, shown.recordInto, shown.debugMode),
              std::make_tuple(-1, -1, -1, -1));
}

TEST_F(AudioSetups, GiveDevicesOutAgainInAutomaticMode) {
    setup.player[1].device = 5;
    ASSERT_TRUE(StoreAudioSetup(setup, settings).stored());
    EXPECT_EQ(value("CartPlayers", "SoundCardNumber1"), "5");
    setup.automatic = true;
    ASSERT_TRUE(StoreAudioSetup(setup, settings).stored());
    EXPECT_EQ(settings.CartPlayerTable[1].Device, 0);
    EXPECT_EQ(value("CartPlayers", "SoundCardNumber1"), "<none>");
    EXPECT_EQ(loaded().CartPlayerTable[1].Device, 1);
}

TEST_F(AudioSetups, WarnOfTooFewDevicesAndGoOn) {
    const std::pair<int, const char*> cases[] = {
        {0, "Warning : There are no suitable sound devices installed!"},
        {1, "Warning : There is only 1 suitable sound device installed!"},
        {3, "Warning : There are only 3 suitable sound devices installed"},
    };
    for (const auto& [count, text] : cases) {
        setOutputs(count);
        prompts.forget();
        EXPECT_TRUE(StoreAudioSetup(setup, settings).stored());
        EXPECT_EQ(prompts.texts(), QStringList{QLatin1String(text)});
    }
    setOutputs(4);
    prompts.forget();
    EXPECT_TRUE(StoreAudioSetup(setup, settings).stored());
    EXPECT_TRUE(prompts.asked.isEmpty());
    EXPECT_EQ(prompts.pointers, QList<Pointer>({Pointer::Wait, Pointer::Default}));
}

TEST_F(AudioSetups, OfTheSplitTransmissionProductKeepItsVolumes) {
    settings.DuckAudioVolume = 12;
    setup = LoadAudioSetup(settings, true);
    setup.cartVolume = 80;
    setup.cartGroupVolume = 71;
    setup.advertVolume = 72;
    setup.duckVolume = 5;
    ASSERT_TRUE(StoreAudioSetup(setup, settings).stored());
    EXPECT_EQ(value("Audio", "GeneralVolume"), "80");
    EXPECT_EQ(value("Audio", "CartGroupVolume"), "71");
    EXPECT_EQ(value("Audio", "AdvertVolume"), "72");
    EXPECT_EQ(value("Audio", "DuckAudioVolume"), "12");
    EXPECT_EQ(prompts.texts(),
              QStringList{"You will have to restart Tolvex Configuration for these changes to take effect"});
    EXPECT_EQ(prompts.pointers.last(), Pointer::Default);
}

TEST_F(AudioSetups, SayWhatWasStoredWhenAFileCannotBeWritten) {
    const QByteArray before = machine.read(iniPath);
    machine.makeFolder(wallIni); // nothing can be written there
    setup.generalVolume = 88;
    setup.allowAudioFileLinking = true;
    const auto failed = [this](const QString& message) {
        const SetupOutcome outcome = StoreAudioSetup(setup, settings);
        EXPECT_NE(outcome.error, 0);
        EXPECT_EQ(outcome.message, message);
        EXPECT_EQ(settings.AllowAudioFileLinking, 0);
    };
    // What the user changed is stored as a whole, as far as anybody can know before.
    failed(wallIni + " was not changed: it may not be written (error 5); nothing was stored.");
    EXPECT_EQ(machine.read(iniPath), before);
    EXPECT_EQ(settings.GeneralVolume, 100);
    // Of a file of which nothing was changed it is said, and holds nothing up.
    setup.allowAudioFileLinking = false;
    EXPECT_TRUE(StoreAudioSetup(setup, settings).stored());
    EXPECT_EQ(prompts.texts(), QStringList{wallIni + " was not changed: it may not be written (error 5); the "
                                                     "settings of this workstation were stored."});
    EXPECT_EQ(value("Audio", "GeneralVolume"), "88");

    QDir().rmdir(machine.host(wallIni));
    failToReplace<'A'>();
    setup.allowAudioFileLinking = true;
    setup.generalVolume = 89;
    failed(wallIni + " was not changed: it cannot be written (error 1117); the settings of this workstation "
                     "were stored.");
    EXPECT_EQ(value("Audio", "GeneralVolume"), "89");
    EXPECT_EQ(settings.GeneralVolume, 89);

    settings.LocalIniFile = "D:\\NOWHERE\\X.INI";
    setup.generalVolume = 70;
    failed("D:\\NOWHERE\\X.INI was not changed: its folder is not there (error 3); nothing was stored.");
    EXPECT_EQ(settings.GeneralVolume, 89);
}

TEST_F(AudioSetups, LeaveToAudwallIniWhatTheUserDidNotChange) {
    machine.write(wallIni, "[Audiowall]\r\nAllowAudioFileLinking=1\r\n"); // another workstation's
    setup.useCopyright = true;
    ASSERT_TRUE(StoreAudioSetup(setup, settings).stored());
    EXPECT_EQ(value("Audiowall", "AllowAudioFileLinking", wallIni), "1");
    EXPECT_EQ(value("CartChunk", "UseCopyrightInCartChunk", wallIni), "1");
    EXPECT_TRUE(settings.AllowAudioFileLinking && settings.UseCopyrightInCartChunk);
    machine.write(wallIni, "[Audiowall]\r\nAllowAudioFileLinking=0\r\n");
    setup = LoadAudioSetup(settings);
    setup.players = 4;
    ASSERT_TRUE(setup.allowAudioFileLinking && StoreAudioSetup(setup, settings).stored());
    EXPECT_EQ(value("Audiowall", "AllowAudioFileLinking", wallIni), "0");
    // Without a location there is no such file.
    settings.CartPartTable[1].Location = " ";
    setup.useCopyright = false;
    EXPECT_TRUE(StoreAudioSetup(setup, settings).stored());
    EXPECT_EQ(value("CartChunk", "UseCopyrightInCartChunk", wallIni), "1");
}

TEST_F(AudioSetups, LeaveWhatAnotherProgramHasStoredSinceTheyWereLoaded) {
    setup = LoadAudioSetup(settings);
    Settings their = settings;
    their.DuckAudioVolume = 33;
    AudioSetup theirs = LoadAudioSetup(their);
    theirs.players = 2;
    theirs.automatic = false;
    theirs.player[1].device = 3;
    theirs.player[2].device = 4;
    theirs.format = 6;
    theirs.channels = 1;
    theirs.rate = 8000;
    ASSERT_TRUE(StoreAudioSetup(theirs, their).stored());
    setup.generalVolume = 90;
    setup.player[2].device = 0;
    setup.chosen.set(2); // the entry that was shown before
    ASSERT_TRUE(StoreAudioSetup(setup, settings).stored());
    EXPECT_EQ(value("CartPlayers", "TotalNumberCartPlayers"), "2");
    EXPECT_EQ(value("CartPlayers", "SoundCardNumber1"), "3");
    EXPECT_EQ(value("CartPlayers", "SoundCardNumber2"), "0");
    EXPECT_EQ(value("Audio", "Format"), "6");
    EXPECT_EQ(value("Audio", "GeneralVolume"), "90");
    EXPECT_EQ(settings.KHz, 8000);
    // The parts of a format stay together.
    theirs = LoadAudioSetup(their = loaded());
    theirs.rate = 11025;
    setup = LoadAudioSetup(settings);
    setup.format = 49;
    theirs.maintainLegacy = false;
    theirs.individualCartFiles = true;
    ASSERT_TRUE(StoreAudioSetup(theirs, their).stored());
    ASSERT_TRUE(StoreAudioSetup(setup, settings).stored());
    EXPECT_EQ(std::tie(settings.Format, settings.KHz), std::make_tuple(49, 8000));
    EXPECT_EQ(value("Audio", "MaintainLegacyCartList"), "0");
    // Each alone is right, both together would be refused.
    theirs = LoadAudioSetup(their = loaded());
    theirs.maintainLegacy = true;
    ASSERT_TRUE(StoreAudioSetup(theirs, their).stored());
    settings = loaded();
    setup = LoadAudioSetup(settings);
    setup.maintainLegacy = false;
    theirs.individualCartFiles = false;
    ASSERT_TRUE(StoreAudioSetup(theirs, their).stored());
    EXPECT_TRUE(StoreAudioSetup(setup, settings).message.contains("Another program has stored settings"));
    EXPECT_EQ(value("Audio", "MaintainLegacyCartList"), "1");
}

TEST_F(AudioSetups, AreStoredTheSameAgainAfterALoad) {
    for (const int players : {0, 1, 6})
        for (const int last : {-1, 2, 5}) {
            setup.players = players;
            setup.firstInOrder = setup.lastInOrder = last; // 5 is stored as 255
            ASSERT_TRUE(StoreAudioSetup(setup, settings).stored());
            settings = loaded(); // players beyond the number have no device
            ASSERT_TRUE(StoreAudioSetup(LoadAudioSetup(settings), settings).stored());
            const std::string ini = machine.read(iniPath).toStdString();
            settings = loaded();
            ASSERT_TRUE(StoreAudioSetup(LoadAudioSetup(settings), settings).stored());
            EXPECT_EQ(machine.read(iniPath).toStdString(), ini) << players << ' ' << last;
        }
}
