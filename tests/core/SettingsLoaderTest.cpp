#include "core/settings/SettingsLoader.h"

#include "core/system/Registry.h"
#include "core/time/Dates.h"
#include "platform/profile/ProfileFile.h"
#include "support/MachineFolder.h"
#include "support/QtPrinters.h"

#include <gtest/gtest.h>

using namespace tolvex;

namespace {

const QString ini = QStringLiteral("C:\\T.INI");

class SettingsLoader : public ::testing::Test {
protected:
    // The value of a key after a load from a file of this content.
    QString loaded(const char* section, const char* key, const QByteArray& content) {
        machine.write(ini, content);
        settings = {};
        settings.NumberCartJumpButtons = 3;
        SizeJumpCartButtons(settings);
        const SettingPlace place = FindSetting(QLatin1String(section), QLatin1String(key));
        EXPECT_TRUE(place) << section << key;
        LoadEntry(*place.row, place.index, {ini}, settings);
        return MemberText(*place.row, place.index, settings);
    }

    tests::TestMachine machine;
    Settings settings;
};

struct Case {
    const char* section;
    const char* key;
    const char* content;
    const char* value;
};

} // namespace

TEST_F(SettingsLoader, ReadsValuesOfEveryKindAndTheOlderKeyWhereTheKeyIsMissing) {
    const Case cases[] = {
        // Defaults.
        {"Display", "FormBackcolor", "", "-2147483633"},
        {"DateTimeSettings", "RadioClockComPort", "", "0"},
        {"Audio", "PlayerFadeFirePercent", "", "65"},
        {"CartPlayers", "SoundCardNumber4", "", "4"},
        {"CartPlayers", "ForeColor3", "", "16752800"},
        {"OPALTransfers", "Directory", "", ""},
        // Older keys, and the newer one before them.
        {"DateTimeSettings", "RadioClockComPort", "[LinkMesh]\r\nUseRadioClock=2\r\n", "2"},
        {"DateTimeSettings", "RadioClockComPort",
         "[LinkMesh]\r\nUseRadioClock=2\r\n[DateTimeSettings]\r\nRadioClockComPort=0\r\n", "0"},
        {"Audio", "PlayerFadeFirePercent", "[Audio]\r\nFadeFire=0.29\r\n", "29"},
        {"Audio", "PlayerFadeFirePercent", "[Audio]\r\nFadeFire=loud\r\n", "0"},
        {"AudioWall", "JumpCartNumber2", "[Carts]\r\nShortCut_No2=1001\r\n", "1001"},
        {"AudioWall", "JumpDescription3", "[Carts]\r\nShortCut_Desc3=\" Music  \"\r\n", "Music"},
        {"KOVA", "ReleaseTime", "[KOVA]\r\nZQSReleaseTime=30\r\n", "30"},
        {"FileLocations", "AudioEditor", "[FileLocations]\r\nSampleEditor=C:\\E.EXE\r\n", "C:\\E.EXE"},
        // What loading does to a value.
        {"AudioWall", "ShowICAtLogin", "[AudioWall]\r\nShowICAtLogin=-1\r\n", "1"},
        {"AudioWall", "ShowICAtLogin", "[AudioWall]\r\nShowICAtLogin=-2147483648\r\n", "32767"},
        {"KOVA", "GenerateAdvertRecFiles", "[KOVA]\r\nGenerateAdvertRecFiles=5\r\n", "1"},
        {"KOVA", "LogWhenStationController", "[KOVA]\r\nLogWhenStationController=-7\r\n", "0"},
        {"AudioWall", "JumpDescription1",
         "[AudioWall]\r\nJumpDescription1=0123456789012345678901234 too long\r\n",
         "0123456789012345678901234"},
        {"FileLocations", "Data", "[FileLocations]\r\nData=C:\\\r\n", "C:\\"},
        {"Display", "SingleClickPlayCarts", "[Display]\r\nSingleClickPlayCarts= 1 day\r\n", "1"},
        // Bad values.
        {"Audiowall", "NoCarts", "[Audiowall]\r\nNoCarts=abc\r\n", "0"},
        {"Audiowall", "NoCarts", "[Audiowall]\r\nNoCarts=2147483647\r\n", "2147483647"},
        {"AudioWall", "CartBevelWidth", "[AudioWall]\r\nCartBevelWidth=70000\r\n", "32767"},
        {"AudioWall", "CartMinimumHeight", "[AudioWall]\r\nCartMinimumHeight=\r\n", "0"},
        {"Display", "FormForeColor", "[display]\r\nformForeColor=4294967295\r\n", "-1"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(loaded(c.section, c.key, c.content), QLatin1String(c.value))
            << c.key << " from " << c.content;
}

TEST_F(SettingsLoader, DefaultsFollowTheSettingsAsTheyAreHeld) {
    machine.write(ini, "[Audio]\r\nGeneralVolume=80\r\n[CartPlayers]\r\nTotalNumberCartPlayers=3\r\n");
    settings.RecordingSoundCard = 5;
    for (const SettingRows& rows : {PlayerAssignmentRows, PlayerRows, RecordingRows, VolumeRows, AudioRows})
        LoadRows(rows, {ini}, settings);
    EXPECT_EQ(settings.Instant, 3);
    EXPECT_EQ(settings.RecordingSoundCard, 5);
    EXPECT_EQ(settings.DuckAudioVolume, 70);
}

TEST_F(SettingsLoader, TheRegistryFormHasItsOwnKeysAndNames) {
    const QString root = TolvexV2Key;
    const auto put = [&](const char* key, const char* name, qint32 value) {
        WriteRegistryLong(LocalMachineHive, root + QLatin1String(key), QLatin1String(name), value, -99);
    };
    put("\\CartPlayers", "SoundCardNumber2", 7);
    put("\\Cart Players", "KeyboardEject", 1);
    put("\\Cart Players", "MouseEject", 0);
    put("\\CartPlayers", "EditPlayer", 4); // the key without the blank is a different one
    put("\\Audiowall\\Settings", "MaintainLegacyCartList", 0);
    WriteRegistryString(LocalMachineHive, root + QStringLiteral("\\File Locations"),
                        QStringLiteral("CartLocation11"), QStringLiteral("D:\\WALL"), {});
    const SettingSource registry{{}, root};
    for (const SettingRows& rows : {SoundCardRows, PlayerRows, AudioRows, LocationRows})
        LoadRows(rows, registry, settings);
    EXPECT_EQ(settings.CartPlayerTable[2].Device, 7);
    EXPECT_EQ(settings.CartPlayerTable[3].Device, 3);
    EXPECT_EQ(settings.KeyboardClose, 1);
    EXPECT_EQ(settings.MouseClose, 0);
    EXPECT_EQ(settings.EditPlayer, 0);
    EXPECT_EQ(settings.PlayerFadeFirePercent, 65);
    EXPECT_EQ(settings.MaintainLegacyCartList, 0);
    EXPECT_EQ(settings.CartPartTable[11].Location, "D:\\WALL");
    // Without a registry form the setting stays unchanged.
    settings.ShowClock = 9;
    LoadRows(DisplayRows, registry, settings);
    EXPECT_EQ(settings.ShowClock, 9);
}

TEST_F(SettingsLoader, DatesLoseTheHalfOfTheDayAndWhatIsNoDateChangesNothing) {
    const QString& file = ini;
    const auto load = [&](const char* text) {
        platform::WriteProfileText(QStringLiteral("UpdateNotice"), QStringLiteral("LastOneWas"),
                                   QLatin1String(text), file);
        LoadRows(UpdateNoticeRows, {file}, settings);
        return settings.LastOneWas;
    };
    const double tenInTheMorning = SerialDate(QDateTime(QDate(2024, 3, 5), QTime(10, 0)));
    EXPECT_EQ(load("05 Mar 2024 10:00:00 PM"), tenInTheMorning);
    EXPECT_EQ(load("2"), tenInTheMorning);
    EXPECT_EQ(load("31 Feb 2024"), tenInTheMorning);
    EXPECT_EQ(load("2024-03-06"), std::floor(tenInTheMorning) + 1);
    EXPECT_EQ(FromSerialDate(1).date(), QDate(1899, 12, 31));
    const QDateTime evening(QDate(2026, 11, 21), QTime(22, 5, 7));
    EXPECT_EQ(DateText(evening), "21 Nov 2026 22:05:07");
    EXPECT_EQ(ParseDate(DateText(evening)), SerialDate(evening));
}

// Whatever the file holds, loading ends and leaves values that saving can write.
TEST_F(SettingsLoader, BadFilesLeaveDefaults) {
    QByteArray manyKeys("[Audio]\r\n");
    for (int i = 0; i < 100000; ++i)
        manyKeys += "Key" + QByteArray::number(i) + "=" + QByteArray::number(i) + "\r\n";
    QByteArray binary(4096, '\0');
    for (int i = 0; i < binary.size(); ++i)
        binary[i] = static_cast<char>(i * 7919 >> 3);
    for (const QByteArray& content : {QByteArray(), QByteArray("\0\0\0", 3), QByteArray("[Audio"), binary,
                                      manyKeys, QByteArray(50 << 20, 'x')}) {
        EXPECT_EQ(loaded("Audio", "KHz", content), "44100") << content.size();
        EXPECT_EQ(loaded("FileLocations", "Data", content), "") << content.size();
    }
    EXPECT_EQ(loaded("Audio", "KHz", QByteArray("[Audio]\0\r\nKHz=22050\0junk", 25)), "22050");
    // A text is cut at the limit of the suite's readers.
    EXPECT_EQ(loaded("FileLocations", "Data", "[FileLocations]\nData=C:\\" + QByteArray(4000, 'D')).size(),
              254);
    EXPECT_EQ(
        loaded("OPALTransfers", "Directory", "[OPALTransfers]\nDirectory=" + QByteArray(4000, 'D')).size(),
        1023);
}
