#include "core/settings/StoredSettings.h"
#include "core/settings/SettingCheck.h"

#include "support/MachineFolder.h"
#include "support/QtPrinters.h"

#include <gtest/gtest.h>

using namespace tolvex;

namespace {

class StoredSettings : public ::testing::Test {
protected:
    StoredSettings() {
        machine.write(QStringLiteral("C:\\WINDOWS\\TOLVEX.INI"), local);
        machine.write(files.audiowall, "[Audiowall]\r\nNoCarts=12000\r\n");
    }

    QString refusal(const char* section, const char* key, const QString& value) {
        QString why;
        EXPECT_FALSE(SetStoredSetting(files, QLatin1String(section), QLatin1String(key), value, &why)) << key;
        return why;
    }
    bool set(const char* section, const char* key, const QString& value) {
        QString why;
        const bool done = SetStoredSetting(files, QLatin1String(section), QLatin1String(key), value, &why);
        EXPECT_EQ(why, QString());
        return done;
    }
    tests::TestMachine machine;
    const SettingsFiles files{QStringLiteral("TOLVEX.INI"), {}, QStringLiteral("C:\\WALL\\Audwall.ini")};
    const QByteArray local = "; kept\r\n[Display]\r\nShowClock=-1\r\nformForeColor=255\r\n"
                             "[CartPlayers]\r\nAutomaticPlayerAssignment=0\r\nSoundCardNumber2=5\r\n"
                             "[Other]\r\nKey=1\r\n";
};

} // namespace

TEST_F(StoredSettings, ListsEveryDeclaredSettingWithItsDefault) {
    QMap<QString, StoredSetting> byKey;
    for (const StoredSetting& setting : ReadStoredSettings(files))
        byKey.insert(QLatin1String(setting.place.row->section) + u'/' + setting.key, setting);
    EXPECT_EQ(byKey[QStringLiteral("Display/FormForeColor")].value, "255");
    EXPECT_EQ(byKey[QStringLiteral("Display/FormForeColor")].defaultValue, "-2147483630");
    EXPECT_EQ(byKey[QStringLiteral("Display/FormForeColor")].stored, "255");
    EXPECT_EQ(byKey[QStringLiteral("Audio/KHz")].value, "44100");
    EXPECT_EQ(byKey[QStringLiteral("Audio/KHz")].stored, std::nullopt);
    EXPECT_EQ(byKey[QStringLiteral("CartPlayers/SoundCardNumber2")].value, "5");
    EXPECT_EQ(byKey[QStringLiteral("Audiowall/NoCarts")].value, "12000");
    EXPECT_TRUE(byKey.contains(QStringLiteral("AudioWall/JumpDescription3")));
    EXPECT_FALSE(byKey.contains(QStringLiteral("AudioWall/JumpDescription4")));
    // Every default is a value that could be set.
    for (const StoredSetting& setting : std::as_const(byKey))
        if (setting.place.row->kind != SettingKind::Date) {
            QString why;
            EXPECT_TRUE(CheckSettingValue(*setting.place.row, setting.defaultValue, &why))
                << why.toStdString();
        }
    // No system ini file was named; derived keys are not read.
    EXPECT_FALSE(byKey.contains(QStringLiteral("OPALTransfers/Directory")));
    EXPECT_FALSE(byKey.contains(QStringLiteral("FileLocations/Schedules")));
}

TEST_F(StoredSettings, SettingOneChangesItsLineAndNoOther) {
    EXPECT_TRUE(set("display", "FORMFORECOLOR", QStringLiteral("0xFF00")));
    EXPECT_TRUE(set("Display", "ShowClock", QStringLiteral(" off ")));
    EXPECT_TRUE(set("CartPlayers", "SoundCardNumber6", QStringLiteral("2")));
    EXPECT_TRUE(set("FileLocations", "Data", QStringLiteral("M:\\")));
    QByteArray expected = local;
    expected.replace("formForeColor=255", "formForeColor=65280").replace("ShowClock=-1", "ShowClock=0");
    expected.replace("SoundCardNumber2=5\r\n", "SoundCardNumber2=5\r\nSoundCardNumber6=2\r\n");
    EXPECT_EQ(machine.read(QStringLiteral("C:\\WINDOWS\\TOLVEX.INI")),
              expected + "[FileLocations]\r\nData=M:\r\n");
    EXPECT_TRUE(set("Audiowall", "NoCarts", QStringLiteral("99999")));
    EXPECT_EQ(machine.read(files.audiowall), "[Audiowall]\r\nNoCarts=99999\r\n");
}

TEST_F(StoredSettings, WhatKindOrRangeForbidIsRefusedAndNamed) {
    EXPECT_EQ(refusal("Audio", "Khz", QStringLiteral("fast")), "[Audio] Khz: \"fast\" is not a whole number");
    EXPECT_EQ(refusal("Audio", "GeneralVolume", QStringLiteral("101")),
              "[Audio] GeneralVolume: 101 lies outside 0 to 100");
    EXPECT_TRUE(refusal("Display", "ShowClock", QStringLiteral("2")).contains("neither on"));
    EXPECT_TRUE(refusal("Display", "Colour", QStringLiteral("2")).contains("not a setting that is known"));
    EXPECT_TRUE(
        refusal("FileLocations", "Logs", QStringLiteral("X:")).contains("follows from other settings"));
    EXPECT_TRUE(
        refusal("FileLocations", "Carts12", QStringLiteral("X:")).contains("not a setting that is known"));
    EXPECT_TRUE(
        refusal("AudioWall", "JumpCartNumber4", QStringLiteral("1")).contains("number above the last one"));
    EXPECT_EQ(refusal("OPALTransfers", "Default", QStringLiteral("x")),
              "[OPALTransfers] Default has no file yet: set the data location");
    EXPECT_TRUE(refusal("AudioWall", "JumpDescription1", QString(26, u'x')).contains("longer than 25"));
    EXPECT_TRUE(refusal("FileLocations", "Data", QString(255, u'x')).contains("longer than 254"));
    EXPECT_TRUE(refusal("FileLocations", "Data", QStringLiteral("a\nb")).contains("control character"));
    EXPECT_TRUE(refusal("FileLocations", "Data", QString::fromUtf8("Ω")).contains("cannot store"));
    EXPECT_TRUE(refusal("FileLocations", "AudioEditor", QStringLiteral("\"x\"")).contains("quotes"));
    for (const char* name :
         {"C:\\A?B", "M:\\X\\a|b", "C:\\CON", "D:\\X\\lpt1.old\\Y", "C:\\a:b", "\"x\"", "1:\\X"})
        EXPECT_TRUE(refusal("FileLocations", "Carts3", QLatin1String(name)).contains("name of a folder"))
            << name;
    EXPECT_TRUE(refusal("FileLocations", "Data", QStringLiteral("\\\\SERVER")).contains("share"));
    EXPECT_EQ(machine.read(QStringLiteral("C:\\WINDOWS\\TOLVEX.INI")), local);
    machine.makeFolder(QStringLiteral("C:\\FOLDER.INI"));
    QString why;
    EXPECT_FALSE(SetStoredSetting({QStringLiteral("C:\\FOLDER.INI"), {}, {}}, QStringLiteral("Audio"),
                                  QStringLiteral("KHz"), QStringLiteral("1"), &why));
    EXPECT_TRUE(why.startsWith("[Audio] KHz: C:\\FOLDER.INI was not changed: ")) << why.toStdString();
}

TEST_F(StoredSettings, FlagsAndLocationsAreStoredInOneForm) {
    EXPECT_TRUE(set("Display", "ShowClock", QStringLiteral("-1")));
    EXPECT_TRUE(set("Display", "SingleClickPlayCarts", QStringLiteral("-1")));
    EXPECT_TRUE(set("FileLocations", "Data", QStringLiteral(" m:\\tolvex\\System\\\\ ")));
    EXPECT_TRUE(set("FileLocations", "Carts1", QString::fromUtf8("\\\\srv\\stra\u00DFe\\\u00FCber\\")));
    EXPECT_TRUE(set("FileLocations", "Carts2", {}));
    const QByteArray stored = machine.read(QStringLiteral("C:\\WINDOWS\\TOLVEX.INI"));
    EXPECT_TRUE(stored.contains("ShowClock=1\r\n") && stored.contains("SingleClickPlayCarts=1\r\n"));
    EXPECT_TRUE(stored.endsWith("[FileLocations]\r\nData=M:\\TOLVEX\\SYSTEM\\\r\n"
                                "Carts1=\\\\SRV\\STRA\xDF"
                                "E\\\xDC"
                                "BER\r\nCarts2=\r\n"))
        << stored.toStdString();
}

// Other programs read the stored folders of schedules and logs.
TEST_F(StoredSettings, KeysThatFollowFromALocationChangeWithIt) {
    machine.write(QStringLiteral("C:\\WINDOWS\\TOLVEX.INI"),
                  "[FileLocations]\r\nData=C:\\OLD\r\nLogs=C:\\OLD\\LOGS\r\nSampleEditor=C:\\E.EXE\r\n");
    EXPECT_TRUE(set("FileLocations", "Data", QStringLiteral("D:\\New\\")));
    EXPECT_EQ(machine.read(QStringLiteral("C:\\WINDOWS\\TOLVEX.INI")),
              "[FileLocations]\r\nData=D:\\NEW\r\nLogs=D:\\NEW\\LOGS\r\nSampleEditor=C:\\E.EXE\r\n");
}

TEST(SettingsFilesInForce, AStationWithoutADataLocationHasNoFileInTheRootOfADrive) {
    Settings settings;
    settings.LocalIniFile = QStringLiteral("TOLVEX.INI");
    settings.SystemIniFile = QStringLiteral("\\TLVX_SYS.INI");
    EXPECT_EQ(FilesInForce(settings).system, "");
    EXPECT_EQ(FilesInForce(settings).audiowall, "");
    settings.SystemIniFile = QStringLiteral("C:\\NAMED.INI");
    EXPECT_EQ(FilesInForce(settings).system, "C:\\NAMED.INI");
}

TEST_F(StoredSettings, ADifferenceCountsWhetherStoredOrByDefault) {
    machine.write(QStringLiteral("C:\\B.INI"),
                  "[Display]\r\nShowClock=1\r\n[AudioWall]\r\nNumberCartJumpButtons=4\r\n");
    const QList<SettingDifference> differences =
        DiffSettings(QStringLiteral("TOLVEX.INI"), QStringLiteral("C:\\B.INI"));
    QStringList lines;
    for (const SettingDifference& d : differences)
        lines << d.section + u' ' + d.key + u' ' + (d.first.isNull() ? QStringLiteral("none") : d.first) +
                     u' ' + d.second;
    EXPECT_EQ(lines,
              (QStringList{"Display FormForeColor 255 -2147483630", "Display ShowClock -1 1",
                           "AudioWall NumberCartJumpButtons 3 4", "CartPlayers AutomaticPlayerAssignment 0 1",
                           "CartPlayers SoundCardNumber2 5 2", "AudioWall JumpCartNumber4 none 0",
                           "AudioWall JumpDescription4 none "}));
    EXPECT_TRUE(DiffSettings(QStringLiteral("TOLVEX.INI"), QStringLiteral("tolvex.ini")).isEmpty());
}
