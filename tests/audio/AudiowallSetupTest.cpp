// The audiowall window's load and OK, without a window.
#include "SetupTest.h"

#include "audio/AudiowallSetup.h"
#include "core/settings/SettingsLoader.h"

using namespace tolvex;
using namespace tolvex::tests;

namespace {

class AudiowallSetups : public SetupTest {
protected:
    AudiowallSetups() {
        settings = all();
        setup = LoadAudiowallSetup(settings);
    }
    // With the section of the audiowall too.
    Settings all() {
        Settings values = loaded();
        LoadRows(AudioWallSizeRows, {iniPath}, values);
        SizeJumpCartButtons(values);
        LoadRows(JumpButtonRows, {iniPath}, values);
        LoadRows(AudioWallRows, {iniPath}, values);
        return values;
    }
    AudiowallSetup setup;
};

} // namespace

TEST_F(AudiowallSetups, ComeBackEqualFromTheFiles) {
    setup.instantCarts = 1;
    for (bool AudiowallSetup::*flag :
         {&AudiowallSetup::showInstantCarts, &AudiowallSetup::showPad, &AudiowallSetup::autoUpdate,
          &AudiowallSetup::dragDropMoveCarts, &AudiowallSetup::displayInstantCartText,
          &AudiowallSetup::searchCartNotes, &AudiowallSetup::useLevelTrigger,
          &AudiowallSetup::alwaysUseLevelTrigger, &AudiowallSetup::keyboardFade, &AudiowallSetup::highlight,
          &AudiowallSetup::highlightByTimes})
        setup.*flag = true;
    setup.displayExtros = setup.searchFromBeginning = setup.mouseFade = false;
    setup.updateInterval = 33;
    setup.triggerLevel = 32767;
    setup.highlightTimes = 4;
    setup.fadeSeconds = 9;
    setup.looks = {1,    2,    true,           3,  false, 4, 5, 6, 7, -1, qint32(0x80000012u), true,
                   true, true, "No Such Font", 14, true,  6};
    setup.cartHeight = 1200;
    setup.cartWidth = 2345;
    setup.jumps = {{9999, " News "}, {1, "x"}, {}, {5, QString(30, u'a')}};
    setup.numberCarts = 12000;
    setup.pictureType = 1;
    ASSERT_TRUE(StoreAudiowallSetup(setup, settings).stored());
    EXPECT_TRUE(prompts.asked.isEmpty());

    const AudiowallSetup again = LoadAudiowallSetup(all());
    EXPECT_TRUE(again.showInstantCarts && again.showPad && again.autoUpdate && again.dragDropMoveCarts &&
                again.displayInstantCartText && again.searchCartNotes && again.useLevelTrigger &&
                again.alwaysUseLevelTrigger && again.keyboardFade && again.highlight &&
                again.highlightByTimes);
    EXPECT_FALSE(again.displayExtros || again.searchFromBeginning || again.mouseFade);
    EXPECT_EQ(std::tie(again.instantCarts, again.updateInterval, again.triggerLevel, again.highlightTimes,
                       again.fadeSeconds, again.cartHeight, again.cartWidth, again.numberCarts,
                       again.pictureType),
              std::make_tuple(1, 33, 32767, 4, 9, 1200, 2345, 12000, 1));
    const CartLooks& l = again.looks;
    EXPECT_EQ(std::tie(l.selectedBack, l.selectedText, l.playedRecently, l.timesBar, l.timesBarText, l.number,
                       l.emptyNumber, l.emptyBack, l.emptyFore, l.fontSize, l.bevel),
              std::make_tuple(1, 2, 3, 4, 5, 6, 7, -1, qint32(0x80000012u), 14, 6));
    EXPECT_TRUE(l.selectedPushedIn && !l.timesBarInColour && l.audioAsSquare && l.showCompressed &&
                l.timeInHours && l.fontBold && l.fontName == "No Such Font");
    ASSERT_EQ(again.jumps.size(), 4);
    EXPECT_EQ(again.jumps[0].Description, "News");
    EXPECT_EQ(again.jumps[2].Cart, 0);
    EXPECT_EQ(again.jumps[3].Description, QString(25, u'a'));
    EXPECT_EQ(value("Other", "Key"), "kept");
}

TEST_F(AudiowallSetups, RefuseInOrderAndKeepThatHighlightingIsOn) {
    const QByteArray before = machine.read(iniPath);
    setup.fadeSeconds = 0;
    setup.highlight = true;
    setup.highlightSeconds = 86400;
    SetupOutcome outcome = StoreAudiowallSetup(setup, settings);
    EXPECT_EQ(outcome.message, "You must specify a number of seconds to use when fading");
    EXPECT_EQ(outcome.field, "txtFadeSeconds");
    setup.mouseFade = setup.keyboardFade = false; // that box cannot be used
    EXPECT_EQ(StoreAudiowallSetup(setup, settings).field, "chkMouseFade");
    EXPECT_EQ(settings.HighlightPlayedCarts, 0);
    setup.fadeSeconds = 1;
    outcome = StoreAudiowallSetup(setup, settings);
    EXPECT_EQ(outcome.message,
              "You cannot specify a highlight time greater than 86399 (23 hours, 59 Mins, 59 secs)");
    EXPECT_EQ(outcome.field, "txtHighlightFixedTime");
    EXPECT_EQ(settings.HighlightPlayedCarts, 1);
    EXPECT_TRUE(prompts.pointers.isEmpty());
    setup.highlightSeconds = 86399;
    setup.useLevelTrigger = true;
    setup.triggerLevel = 32768;
    EXPECT_EQ(StoreAudiowallSetup(setup, settings).field, "txtRecordTriggerLevel");
    setup.triggerLevel = 1;
    setup.jumps = {{1, QStringLiteral("\u4e2d")}};
    EXPECT_EQ(StoreAudiowallSetup(setup, settings).field, "grdJumps");
    EXPECT_EQ(machine.read(iniPath), before);
    EXPECT_FALSE(machine.exists(wallIni));
    setup.jumps.clear();
    EXPECT_TRUE(StoreAudiowallSetup(setup, settings).stored());
    EXPECT_EQ(settings.HighlightPLayedCartsInterval, 86399);
    EXPECT_EQ(settings.NumberCartJumpButtons, 0);
    setup.highlight = false; // the interval stays
    setup.highlightSeconds = 5;
    EXPECT_TRUE(StoreAudiowallSetup(setup, settings).stored());
    EXPECT_EQ(settings.HighlightPlayedCarts, 0);
    EXPECT_EQ(settings.HighlightPLayedCartsInterval, 86399);
    setup.highlight = setup.highlightByTimes = true; // no limit on how often
    setup.highlightTimes = 86400;
    EXPECT_TRUE(StoreAudiowallSetup(setup, settings).stored());
    EXPECT_EQ(settings.HighlightPLayedCartsInterval, 86400);
}

TEST_F(AudiowallSetups, ClearJumpsBeyondTheCartsThatThereWere) {
    settings.NoCarts = 500;
    setup.numberCarts = 9000;
    setup.jumps = {{500, "last"}, {501, "beyond"}};
    ASSERT_TRUE(StoreAudiowallSetup(setup, settings).stored());
    EXPECT_EQ(settings.JumpCartButtons[0].Cart, 500);
    EXPECT_EQ(settings.JumpCartButtons[1].Cart, 0);
    EXPECT_EQ(settings.JumpCartButtons[1].Description, QString());
    EXPECT_EQ(settings.NoCarts, 9000);
    EXPECT_TRUE(prompts.asked.isEmpty());
    settings.JumpCartButtons[1] = {-4, "stored by hand"};
    EXPECT_EQ(LoadAudiowallSetup(settings).jumps[1].Description, QString());
}

TEST_F(AudiowallSetups, HoldTheNumberOfCarts) {
    setup.numberCarts = 0;
    ASSERT_TRUE(StoreAudiowallSetup(setup, settings).stored());
    EXPECT_EQ(value("Audiowall", "NoCarts", wallIni), "1");
    setup.numberCarts = 99999;
    ASSERT_TRUE(StoreAudiowallSetup(setup, settings).stored());
    EXPECT_TRUE(prompts.asked.isEmpty());
    setup.numberCarts = 100000;
    ASSERT_TRUE(StoreAudiowallSetup(setup, settings).stored());
    EXPECT_EQ(prompts.texts(), QStringList{"You cannot have more than 99999 carts on your Audiowall.\n\nIt "
                                           "has been changed to 99999 for you."});
    EXPECT_EQ(value("Audiowall", "NoCarts", wallIni), "99999");
    EXPECT_EQ(settings.NoCarts, 99999);
    // Without a location they stay as they are, and the rest is saved.
    settings.CartPartTable[1].Location.clear();
    setup.numberCarts = 7;
    setup.fadeSeconds = 77;
    ASSERT_TRUE(StoreAudiowallSetup(setup, settings).stored());
    EXPECT_EQ(settings.NoCarts, 99999);
    EXPECT_EQ(value("Audio", "PlayerFadeSeconds"), "77");
    EXPECT_EQ(value("Audiowall", "NoCarts", wallIni), "99999");
}

TEST_F(AudiowallSetups, OfferUsualValuesForWhatIsOff) {
    settings.LevelTrigger = 0;
    settings.AutoUpdateInterval = 0;
    settings.CartMinimumHeight = 935;
    settings.CartMinimumWidth = 10;
    settings.ShowICAtLogin = 9;
    setup = LoadAudiowallSetup(settings);
    EXPECT_EQ(std::tie(setup.triggerLevel, setup.cartHeight, setup.cartWidth, setup.instantCarts),
              std::make_tuple(10, 950, 1900, 1));
    EXPECT_FALSE(setup.useLevelTrigger || setup.autoUpdate);
    ASSERT_TRUE(StoreAudiowallSetup(setup, settings).stored());
    EXPECT_EQ(settings.LevelTrigger, 0);
    EXPECT_EQ(settings.AutoUpdateInterval, 0);
    EXPECT_EQ(value("AudioWall", "CartMinimumHeight"), "950");
}

TEST_F(AudiowallSetups, AreNotHalfSavedWhereOneFileFails) {
    const QByteArray before = machine.read(iniPath);
    setup.fadeSeconds = 5;
    setup.numberCarts = 700;
    const auto nothingStored = [&](const QString& file, const char* why) {
        const SetupOutcome outcome = StoreAudiowallSetup(setup, settings);
        EXPECT_NE(outcome.error, 0);
        EXPECT_EQ(
            outcome.message,
            QStringLiteral("%1 was not changed: %2; nothing was stored.").arg(file, QLatin1String(why)));
        EXPECT_EQ(machine.read(iniPath), before);
        EXPECT_EQ(std::tie(settings.PlayerFadeSeconds, settings.NoCarts), std::make_tuple(2, 9999));
    };
    machine.makeFolder(wallIni);
    nothingStored(wallIni, "it may not be written (error 5)");
    QDir().rmdir(machine.host(wallIni));
    machine.write(wallIni, "[Other]\r\nKey=1\r\n[Audiowall]\r\nNoCarts=600\r\n");
    const QByteArray wall = machine.read(wallIni);
    settings.LocalIniFile = "D:\\NOWHERE\\X.INI";
    failToReplace<'A'>(); // Audwall.ini is not even tried
    nothingStored(settings.LocalIniFile, "its folder is not there (error 3)");
    EXPECT_EQ(machine.read(wallIni), wall);
    settings.LocalIniFile = iniPath;
    failToReplace<'T'>(); // it shows only after Audwall.ini was written
    nothingStored(iniPath, "it cannot be written (error 1117)");
    EXPECT_EQ(machine.read(wallIni), wall);
    // Nothing of Audwall.ini was changed: that it cannot be written holds nothing up.
    setup.numberCarts = setup.loadedNumberCarts;
    machine.write(wallIni, "");
    failToReplace<'A'>();
    EXPECT_TRUE(StoreAudiowallSetup(setup, settings).stored());
    EXPECT_EQ(prompts.texts(), QStringList{wallIni + " was not changed: it cannot be written (error 1117); "
                                                     "the settings of this workstation were stored."});
    EXPECT_EQ(value("Audio", "PlayerFadeSeconds"), "5");
}

TEST_F(AudiowallSetups, MakeNoNewFileInPlaceOfOneThatIsGone) {
    machine.write(wallIni, "[Other]\r\nKey=1\r\n[Audiowall]\r\nNoCarts=600\r\n");
    setup = LoadAudiowallSetup(settings);
    ASSERT_TRUE(QFile::remove(machine.host(wallIni)));
    const QByteArray before = machine.read(iniPath);
    setup.fadeSeconds = 8;
    setup.numberCarts = 700;
    EXPECT_EQ(StoreAudiowallSetup(setup, settings).message,
              wallIni + " is gone since its settings were read (error 2); nothing was stored.");
    EXPECT_EQ(machine.read(iniPath), before);
    setup.numberCarts = setup.loadedNumberCarts; // nothing of that file was changed
    EXPECT_EQ(StoreAudiowallSetup(setup, settings).error, 2);
    EXPECT_EQ(prompts.texts(), QStringList{wallIni + " is gone since its settings were read (error 2); the "
                                                     "settings of this workstation were stored."});
    EXPECT_EQ(value("Audio", "PlayerFadeSeconds"), "8");
    EXPECT_FALSE(machine.exists(wallIni));
    EXPECT_EQ(StoreAudiowallSetup(LoadAudiowallSetup(settings), settings).error, 0);
    EXPECT_TRUE(machine.exists(wallIni));
}

TEST_F(AudiowallSetups, AreStoredWhenOnlyTheFoldersCannotBeFlushed) {
    setup.fadeSeconds = 8;
    setup.numberCarts = 700;
    platform::hostCalls().flush = [](int descriptor) {
        struct stat info {};
        return ::fstat(descriptor, &info) == 0 && S_ISDIR(info.st_mode) ? (errno = EIO, -1) : 0;
    };
    const SetupOutcome outcome = StoreAudiowallSetup(setup, settings);
    EXPECT_EQ(outcome.message, "");
    EXPECT_EQ(outcome.error, 0);
    EXPECT_EQ(value("Audio", "PlayerFadeSeconds"), "8");
    EXPECT_EQ(value("Audiowall", "NoCarts", wallIni), "700");
}

TEST_F(AudiowallSetups, LeaveToAudwallIniWhatTheUserDidNotChange) {
    machine.write(wallIni, "[Audiowall]\r\nNoCarts=12000\r\nPictureFileExtension=bmp\r\n");
    setup.jumps = {{12000, "their last"}, {12001, "beyond"}};
    ASSERT_TRUE(StoreAudiowallSetup(setup, settings).stored());
    EXPECT_EQ(value("Audiowall", "NoCarts", wallIni), "12000");
    EXPECT_EQ(value("Audiowall", "PictureFileExtension", wallIni), "bmp");
    EXPECT_EQ(settings.NoCarts, 12000);
    EXPECT_EQ(settings.JumpCartButtons[0].Cart, 12000);
    EXPECT_EQ(settings.JumpCartButtons[1].Cart, 0);
    // What no window shows does not stay.
    machine.write(wallIni, "[Audiowall]\r\nNoCarts=100000\r\nPictureFileExtension=GIF\r\n");
    ASSERT_TRUE(StoreAudiowallSetup(setup, settings).stored());
    EXPECT_EQ(value("Audiowall", "NoCarts", wallIni), "9999");
    EXPECT_EQ(value("Audiowall", "PictureFileExtension", wallIni), "JPG");
}

TEST_F(AudiowallSetups, LeaveWhatAnotherProgramHasStoredSinceTheyWereLoaded) {
    settings.JumpCartButtons = {{1, "one"}, {2, "two"}, {3, "three"}};
    ASSERT_TRUE(StoreAudiowallSetup(LoadAudiowallSetup(settings), settings).stored());
    settings = all();
    setup = LoadAudiowallSetup(settings);
    Settings their = all();
    their.GeneralVolume = 77;
    their.TotalNumberCartPlayers = 2;
    AudiowallSetup theirs = LoadAudiowallSetup(their);
    theirs.jumps[1] = {22, "theirs"};
    theirs.jumps += {4, "four"};
    theirs.looks.fontName = "Their Font";
    theirs.highlight = true;
    theirs.highlightSeconds = 30;
    ASSERT_TRUE(StoreAudiowallSetup(theirs, their).stored());
    setup.jumps[0] = {11, "ours"};
    setup.looks.bevel = 7;
    ASSERT_TRUE(StoreAudiowallSetup(setup, settings).stored());
    const Settings now = all();
    EXPECT_EQ(std::tie(now.GeneralVolume, now.TotalNumberCartPlayers, now.HighlightPLayedCartsInterval,
                       now.CartBevelWidth),
              std::make_tuple(77, 2, 30, 7));
    EXPECT_EQ(now.CartFontName, "Their Font");
    QStringList jumps;
    for (const JumpCartButton& jump : now.JumpCartButtons)
        jumps += QString::number(jump.Cart) + jump.Description;
    EXPECT_EQ(jumps, QStringList({"11ours", "22theirs", "3three", "4four"}));
    EXPECT_EQ(settings.GeneralVolume, 77); // the end of the program stores the same
    // Fewer buttons.
    theirs = LoadAudiowallSetup(their = all());
    theirs.jumps.resize(2);
    setup = LoadAudiowallSetup(settings);
    ASSERT_TRUE(StoreAudiowallSetup(theirs, their).stored());
    ASSERT_TRUE(StoreAudiowallSetup(setup, settings).stored());
    EXPECT_EQ(settings.NumberCartJumpButtons, 2);
}

TEST(JumpButtons, ThatOkClearsAreNamed) {
    QList<JumpCartButton> jumps = {{501, "a"}, {}, {500, "b"}};
    EXPECT_EQ(ClearedJumpsText(jumps, 501), "");
    EXPECT_EQ(ClearedJumpsText(jumps, 500), "OK clears jump button 1: the audiowall has 500 carts.");
    EXPECT_EQ(ClearedJumpsText(jumps, -1), "OK clears jump buttons 1 and 3: the audiowall has -1 carts.");
    jumps[1].Cart = 9999;
    EXPECT_EQ(ClearedJumpsText(jumps, 0), "OK clears jump buttons 1, 2 and 3: the audiowall has 0 carts.");
}

TEST(CartGrids, RoundHalvesToTheEvenNumber) {
    Settings settings;
    const auto grid = [&settings](int width, int height) {
        settings.ScreenWidthTwips = 90 + width;
        settings.ScreenHeightTwips = 4560 + height;
        const CartGrid found = EstimateCartGrid(settings, 2000, 1000);
        return std::pair(found.columns, found.rows);
    };
    EXPECT_EQ(grid(20000, 10000), std::pair(10, 10));
    EXPECT_EQ(grid(21000, 10500), std::pair(10, 10)); // 10.5
    EXPECT_EQ(grid(23000, 11500), std::pair(12, 12)); // 11.5
    EXPECT_EQ(grid(21001, 10501), std::pair(11, 11));
}

TEST_F(AudiowallSetups, TakeUpToTenJumpButtons) {
    EXPECT_EQ(TakeJumpButtonCount(0), 1);
    EXPECT_EQ(TakeJumpButtonCount(10), 10);
    EXPECT_TRUE(prompts.asked.isEmpty());
    EXPECT_EQ(TakeJumpButtonCount(11), 10);
    EXPECT_EQ(prompts.texts(), QStringList{"You can only have up to 10 Jump Buttons"});
}
