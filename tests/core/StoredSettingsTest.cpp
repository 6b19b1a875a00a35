#include "core/StoredSettings.h"
#include "core/SettingsDocument.h"

#include "support/FixedClock.h"
#include "support/MachineFolder.h"
#include "support/QtPrinters.h"

#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QJsonObject>

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
    QJsonObject exported() { return QJsonDocument::fromJson(ExportSettings(files)).object(); }

    tests::TestMachine machine;
    tests::FixedClock clock{QDateTime(QDate(2026, 11, 21), QTime(14, 30))};
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
    EXPECT_TRUE(byKey[QStringLiteral("Display/FormForeColor")].present);
    EXPECT_EQ(byKey[QStringLiteral("Audio/KHz")].value, "44100");
    EXPECT_FALSE(byKey[QStringLiteral("Audio/KHz")].present);
    EXPECT_EQ(byKey[QStringLiteral("CartPlayers/SoundCardNumber2")].value, "5");
    EXPECT_EQ(byKey[QStringLiteral("Audiowall/NoCarts")].value, "12000");
    EXPECT_TRUE(byKey.contains(QStringLiteral("AudioWall/JumpDescription3")));
    EXPECT_FALSE(byKey.contains(QStringLiteral("AudioWall/JumpDescription4")));
    // What stands when nothing is set could be set, so that an export can always be imported.
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
    EXPECT_EQ(refusal("Audio", "Khz", QStringLiteral("fast")), "[Audio] Khz: \"fast\" is no whole number");
    EXPECT_EQ(refusal("Audio", "GeneralVolume", QStringLiteral("101")),
              "[Audio] GeneralVolume: 101 lies outside 0 to 100");
    EXPECT_TRUE(refusal("Display", "ShowClock", QStringLiteral("2")).contains("neither on"));
    EXPECT_TRUE(refusal("Display", "Colour", QStringLiteral("2")).contains("no setting that is known"));
    EXPECT_TRUE(
        refusal("FileLocations", "Logs", QStringLiteral("X:")).contains("follows from other settings"));
    EXPECT_TRUE(
        refusal("FileLocations", "Carts12", QStringLiteral("X:")).contains("no setting that is known"));
    EXPECT_TRUE(
        refusal("AudioWall", "JumpCartNumber4", QStringLiteral("1")).contains("number above the last one"));
    EXPECT_TRUE(refusal("OPALTransfers", "Default", QStringLiteral("x")).contains("no file yet"));
    EXPECT_TRUE(refusal("AudioWall", "JumpDescription1", QString(26, u'x')).contains("longer than 25"));
    EXPECT_TRUE(refusal("FileLocations", "Data", QString(255, u'x')).contains("longer than 254"));
    EXPECT_TRUE(refusal("FileLocations", "Data", QStringLiteral("a\nb")).contains("control character"));
    EXPECT_TRUE(refusal("FileLocations", "Data", QString::fromUtf8("Ω")).contains("cannot store"));
    EXPECT_TRUE(refusal("FileLocations", "Data", QStringLiteral("\"x\"")).contains("quotes"));
    EXPECT_EQ(machine.read(QStringLiteral("C:\\WINDOWS\\TOLVEX.INI")), local);
    machine.makeFolder(QStringLiteral("C:\\FOLDER.INI"));
    QString why;
    EXPECT_FALSE(SetStoredSetting({QStringLiteral("C:\\FOLDER.INI"), {}, {}}, QStringLiteral("Audio"),
                                  QStringLiteral("KHz"), QStringLiteral("1"), &why));
    EXPECT_TRUE(why.startsWith("C:\\FOLDER.INI was not changed: ")) << why.toStdString();
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

TEST_F(StoredSettings, AnExportSetsUpAnotherWorkstationAlike) {
    const QByteArray document = ExportSettings(files);
    EXPECT_TRUE(PlanImport(document, files).unknown.isEmpty());
    const SettingsFiles other{QStringLiteral("C:\\NEW.INI"), {}, QStringLiteral("C:\\WALL\\Other.ini")};
    machine.write(other.local, "[Other]\r\nKeep=1\r\n[Display]\r\nShowClock=0\r\n");
    SettingsImport plan = PlanImport(document, other);
    EXPECT_TRUE(plan.usable()) << plan.refused.join(u'\n').toStdString();
    EXPECT_TRUE(plan.backups.isEmpty());
    EXPECT_EQ(machine.read(other.local), "[Other]\r\nKeep=1\r\n[Display]\r\nShowClock=0\r\n");
    ASSERT_TRUE(ApplyImport(plan, other)) << plan.problem.toStdString();
    EXPECT_EQ(plan.backups, QStringList{"C:\\NEW.INI.20261121-143000.bak"});
    EXPECT_EQ(machine.read(plan.backups.value(0)), "[Other]\r\nKeep=1\r\n[Display]\r\nShowClock=0\r\n");
    EXPECT_TRUE(machine.read(other.local).startsWith("[Other]\r\nKeep=1\r\n"));
    EXPECT_TRUE(DiffSettings(files.local, other.local).size() <= 1); // -1 and 1 mean the same
    EXPECT_TRUE(PlanImport(document, other).changes.isEmpty());
}

TEST_F(StoredSettings, AnImportNamesWhatItDoesNotKnowAndAppliesNothingThatIsRefused) {
    QJsonObject document = exported();
    document.insert(
        QStringLiteral("settings"),
        QJsonObject{{QStringLiteral("local"),
                     QJsonObject{{QStringLiteral("Display"), QJsonObject{{QStringLiteral("ShowClock"), false},
                                                                         {QStringLiteral("Mystery"), 1}}},
                                 {QStringLiteral("Audio"),
                                  QJsonObject{{QStringLiteral("KHz"), 1.5}, {QStringLiteral("Bits"), 8}}}}}});
    SettingsImport plan = PlanImport(QJsonDocument(document).toJson(), files);
    EXPECT_EQ(plan.unknown, (QStringList{"[Audio] Bits", "[Display] Mystery"}));
    EXPECT_EQ(plan.refused, QStringList{"[Audio] KHz: a value of that kind cannot be stored"});
    ASSERT_EQ(plan.changes.size(), 1);
    EXPECT_EQ(plan.changes[0].before, "-1");
    EXPECT_EQ(plan.changes[0].after, "0");
    EXPECT_FALSE(ApplyImport(plan, files));
    EXPECT_EQ(machine.read(QStringLiteral("C:\\WINDOWS\\TOLVEX.INI")), local);

    for (const QByteArray& bad :
         {QByteArray(), QByteArray("{"), QByteArray("[]"), QByteArray("{\"format\":\"x\"}"),
          QByteArray(200000, '['), QByteArray("{\"format\":\"tolvex-settings\",\"version\":2}")})
        EXPECT_FALSE(PlanImport(bad, files).problem.isEmpty()) << bad.left(20).toStdString();
}

TEST_F(StoredSettings, DevicesOfAutomaticAssignmentAreNotExported) {
    const auto players = [this] {
        return exported()[QStringLiteral("settings")][QStringLiteral("local")][QStringLiteral("CartPlayers")]
            .toObject();
    };
    EXPECT_EQ(players()[QStringLiteral("SoundCardNumber2")].toInt(), 5);
    EXPECT_TRUE(set("CartPlayers", "AutomaticPlayerAssignment", QStringLiteral("1")));
    EXPECT_FALSE(players().contains(QStringLiteral("SoundCardNumber2")));
    EXPECT_TRUE(players()[QStringLiteral("AutomaticPlayerAssignment")].toBool());
}
