// Settings carried from one workstation to another as a document: what it holds, where it goes, and that all
// of it arrives or nothing.
#include "core/exchange/SettingsImport.h"

#include "core/settings/SettingsLoader.h"
#include "platform/CodePage.h"

#include "platform/host/FileLock.h"
#include "platform/host/Replacement.h"
#include "platform/posix/HostCalls.h"
#include "support/FileFaults.h"
#include "support/FixedClock.h"
#include "support/MachineFolder.h"
#include "support/QtPrinters.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cerrno>

using namespace tolvex;
using tests::Fault;
using tests::FaultyRun;
using tests::RunWithFault;
using tests::TestMachine;

namespace {

const QString ini = QStringLiteral("TOLVEX.INI");
const QString local = QStringLiteral("C:\\WINDOWS\\TOLVEX.INI");
const QString record = local + QStringLiteral(".import");

QJsonObject object(const QByteArray& json) {
    QJsonParseError error;
    QJsonObject parsed = QJsonDocument::fromJson(json, &error).object();
    EXPECT_EQ(error.error, QJsonParseError::NoError) << json.toStdString();
    return parsed;
}

// A document with these settings, written by hand.
QByteArray document(const QByteArray& byFile) {
    return R"({"format":"tolvex-settings","version":1,"settings":)" + byFile + '}';
}

// Two workstations, each with a machine folder of its own.
class SettingsImport : public ::testing::Test {
protected:
    void TearDown() override { platform::RestoreHostCalls(); }

    // The document of the station with these files.
    static QByteArray exportFrom(TestMachine& machine, const QByteArray& localFile) {
        machine.use();
        machine.write(local, localFile);
        const Settings values = LoadFrom({ini, {}, {}});
        return ExportSettings(
            {ini, SystemIniIn(values.DataLocation), AudiowallIniIn(values.CartPartTable[1].Location)});
    }
    QByteArray exportOfA() {
        a.use();
        a.write("C:\\TOLVEX\\TLVX_SYS.INI", "[OPALTransfers]\r\nDefault=Night\r\n[Terminal]\r\nX=1\r\n");
        a.write("C:\\WALL\\Audwall.ini", "[Audiowall]\r\nNoCarts=12000\r\nVersion=2.6\r\n");
        return exportFrom(
            a, "[FileLocations]\r\nData=C:\\TOLVEX\r\nSchedules=C:\\TOLVEX\\SCHEDULE\r\nCarts1=C:\\WALL\r\n"
               "[Display]\r\nShowClock=-1\r\nformForeColor=255\r\n[LinkMesh]\r\nUseRadioClock=2\r\n"
               "[CartPlayers]\r\nAutomaticPlayerAssignment=0\r\nSoundCardNumber2=5\r\n"
               "[Other]\r\nKey=1\r\n");
    }
    // What the current station reads from its local file; `tidied`: in stored form. (A location loses one
    // backslash each time.)
    static QStringList readBy(bool tidied) {
        Settings values = LoadFrom({ini, {}, {}});
        QStringList all;
        for (const StoredSetting& setting : ReadStoredSettings({ini, {}, {}})) {
            const SettingRow& row = *setting.place.row;
            QString text = setting.value;
            if (row.kind == SettingKind::Flag)
                text = text.toInt() != 0 ? "on" : "off";
            else if (!row.written && (tidied || row.kind != SettingKind::Path))
                text = *StoredText(row, setting.place.index, values);
            all << setting.key + u'=' + text;
        }
        return all;
    }
    // Files of a station with other locations.
    void configureB() {
        b.use();
        b.write(local, "[Other]\r\nKeep=1\r\n[FileLocations]\r\nData=C:\\OLD\r\nLogs=C:\\OLD\\LOGS\r\nCarts1="
                       "C:\\OLDWALL\r\n");
        b.write("C:\\OLD\\TLVX_SYS.INI", "[OPALTransfers]\r\nDefault=Day\r\n");
        b.write("C:\\OLDWALL\\Audwall.ini", "[Audiowall]\r\nNoCarts=500\r\n");
    }
    static QStringList keys(const ImportPlan& plan) {
        QStringList all;
        for (const ImportPlan::File& file : plan.files)
            for (const ImportPlan::Change& change : file.changes)
                all << file.path + u' ' + change.key;
        return all;
    }
    // Every file of station B that an import may touch, with its bytes.
    QMap<QString, QByteArray> filesOfB() const {
        QMap<QString, QByteArray> files;
        for (const char* path :
             {"C:\\WINDOWS\\TOLVEX.INI", "C:\\OLD\\TLVX_SYS.INI", "C:\\OLDWALL\\Audwall.ini",
              "C:\\TOLVEX\\TLVX_SYS.INI", "C:\\WALL\\Audwall.ini"})
            files[path] = b.exists(path) ? b.read(path) : QByteArray("none");
        return files;
    }

    TestMachine a;
    TestMachine b;
    tests::FixedClock clock{QDateTime(QDate(2026, 11, 21), QTime(14, 30))};
};

} // namespace

TEST_F(SettingsImport, ADocumentHoldsWhatIsStoredBelowItsFileAndNothingElse) {
    const QJsonObject exported = object(exportOfA());
    EXPECT_EQ(exported["settings"].toObject(), object(R"({
        "local": {
            "FileLocations": {"Data": "C:\\TOLVEX", "Schedules": "C:\\TOLVEX\\SCHEDULE", "Carts1": "C:\\WALL"},
            "Display": {"ShowClock": true, "FormForeColor": 255},
            "DateTimeSettings": {"RadioClockComPort": 2},
            "CartPlayers": {"AutomaticPlayerAssignment": false, "SoundCardNumber2": 5}},
        "system": {"OPALTransfers": {"Default": "Night"}},
        "audiowall": {"Audiowall": {"NoCarts": 12000, "Version": "2.6"}}})"));
    EXPECT_EQ(exported["files"].toObject(),
              object(R"({"local": "C:\\WINDOWS\\TOLVEX.INI", "system": "C:\\TOLVEX\\TLVX_SYS.INI",
                         "audiowall": "C:\\WALL\\Audwall.ini"})"));
    // Automatically assigned devices belong to one machine.
    const QByteArray automatic = exportFrom(a, "[CartPlayers]\r\nSoundCardNumber2=5\r\n");
    EXPECT_EQ(object(automatic)["settings"].toObject(), QJsonObject());
}

TEST_F(SettingsImport, AMoveGoesIntoTheFilesAtTheNewPlacesAndTheOldOnesStay) {
    const QByteArray moved = exportOfA();
    configureB();
    b.write("C:\\TOLVEX\\TLVX_SYS.INI", "; station\r\n[OPALTransfers]\r\nDirectory=C:\\L\r\n");
    const QMap<QString, QByteArray> before = filesOfB();
    ImportPlan plan = PlanImport(moved, ini, {});
    EXPECT_TRUE(plan.usable()) << plan.refused.join(u'\n').toStdString();
    EXPECT_EQ(plan.folders, QStringList("C:\\WALL"));
    EXPECT_EQ(filesOfB(), before) << "a plan changes nothing";
    ASSERT_TRUE(ApplyImport(plan)) << plan.problem.toStdString();

    QMap<QString, QByteArray> after = before;
    after[local] =
        "[Other]\r\nKeep=1\r\n[FileLocations]\r\nData=C:\\TOLVEX\r\nLogs=C:\\TOLVEX\\LOGS\r\nCarts1=C:"
        "\\WALL\r\n"
        "Schedules=C:\\TOLVEX\\SCHEDULE\r\n"
        "[DateTimeSettings]\r\nRadioClockComPort=2\r\n[Display]\r\nFormForeColor=255\r\nShowClock=1\r\n"
        "[CartPlayers]\r\nAutomaticPlayerAssignment=0\r\nSoundCardNumber2=5\r\n";
    after["C:\\TOLVEX\\TLVX_SYS.INI"] =
        "; station\r\n[OPALTransfers]\r\nDirectory=C:\\L\r\nDefault=Night\r\n";
    after["C:\\WALL\\Audwall.ini"] = "[Audiowall]\r\nNoCarts=12000\r\nVersion=2.6\r\n";
    EXPECT_EQ(filesOfB(), after);
    EXPECT_EQ(plan.backups, QStringList({"C:\\WINDOWS\\TOLVEX.INI.20261121-143000.bak",
                                         "C:\\TOLVEX\\TLVX_SYS.INI.20261121-143000.bak"}));
    EXPECT_EQ(b.read(plan.backups[0]), before[local]);
    EXPECT_FALSE(b.exists(record));
    EXPECT_EQ(keys(PlanImport(moved, ini, {})), QStringList());
}

TEST_F(SettingsImport, AFreshStationBecomesLikeTheOther) {
    const QByteArray whole = exportOfA();
    b.use();
    ImportPlan plan = PlanImport(whole, ini, {});
    EXPECT_EQ(plan.folders, QStringList({"C:\\TOLVEX", "C:\\WALL"}));
    EXPECT_EQ(keys(plan), QStringList({"TOLVEX.INI Data", "TOLVEX.INI RadioClockComPort", "TOLVEX.INI Carts1",
                                       "TOLVEX.INI FormForeColor", "TOLVEX.INI ShowClock",
                                       "TOLVEX.INI AutomaticPlayerAssignment", "TOLVEX.INI SoundCardNumber2",
                                       "TOLVEX.INI Schedules", "C:\\TOLVEX\\TLVX_SYS.INI Default",
                                       "C:\\WALL\\Audwall.ini NoCarts", "C:\\WALL\\Audwall.ini Version"}));
    ASSERT_TRUE(ApplyImport(plan)) << plan.problem.toStdString();
    EXPECT_EQ(b.read(local),
              "[FileLocations]\r\nData=C:\\TOLVEX\r\nCarts1=C:\\WALL\r\nSchedules=C:\\TOLVEX\\SCHEDULE\r\n"
              "[DateTimeSettings]\r\nRadioClockComPort=2\r\n[Display]\r\nFormForeColor=255\r\nShowClock=1\r\n"
              "[CartPlayers]\r\nAutomaticPlayerAssignment=0\r\nSoundCardNumber2=5\r\n");
    EXPECT_EQ(b.read("C:\\WALL\\Audwall.ini"), "[Audiowall]\r\nNoCarts=12000\r\nVersion=2.6\r\n");
    EXPECT_TRUE(plan.backups.isEmpty());
}

TEST_F(SettingsImport, AStationFileThatWasNamedStaysTheStationsFile) {
    const QByteArray whole = exportOfA();
    configureB();
    b.write("C:\\NAMED.INI", "[X]\r\n");
    ImportPlan plan = PlanImport(whole, ini, "C:\\NAMED.INI");
    ASSERT_TRUE(ApplyImport(plan)) << plan.problem.toStdString();
    EXPECT_EQ(b.read("C:\\NAMED.INI"), "[X]\r\n[OPALTransfers]\r\nDefault=Night\r\n");
    EXPECT_FALSE(b.exists("C:\\TOLVEX\\TLVX_SYS.INI"));
    // The workstation's own file may have a name that no ini file could hold.
    const QString odd = QString::fromUtf8("C:\\\u03A9.INI");
    ImportPlan here = PlanImport(document(R"({"local":{"Audio":{"KHz":8000}}})"), odd, {});
    ASSERT_TRUE(ApplyImport(here)) << here.refused.join(u'|').toStdString();
    EXPECT_EQ(b.read(odd), "[Audio]\r\nKHz=8000\r\n");
    // Two names for one file are one file.
    const ImportPlan same =
        PlanImport(document(R"({"local":{"Audio":{"KHz":8000}},"system":{"OPALTransfers":{"Default":"x"}}})"),
                   ini, "c:\\windows\\tolvex.ini");
    ImportPlan both = same;
    ASSERT_TRUE(ApplyImport(both)) << both.problem.toStdString();
    EXPECT_TRUE(b.read(local).contains("KHz=8000\r\n") && b.read(local).contains("Default=x\r\n"));
    EXPECT_EQ(both.backups.size(), 1);
}

// Whatever a file holds, its export is imported, and the other station then reads what the first one reads.
TEST_F(SettingsImport, TakesOverEachOfItsOwnExports) {
    const QByteArrayList odd = {"150",
                                "-5",
                                "fast",
                                "99999999999",
                                "\"\"quoted\"\"",
                                "\" blanks \"",
                                "",
                                "a\tb",
                                "x\x80y",
                                "C:\\A?B\\",
                                "m:\\low\\\\",
                                "0x10",
                                "12.9 cm",
                                QByteArray(400, 'L'),
                                "21 nov 2026 22:15:30",
                                "'q"};
    for (const QByteArray& text : odd) {
        SCOPED_TRACE(text.toStdString());
        QByteArray file;
        for (const SettingGroup& group : AllSettings())
            for (const SettingRow& row : group.rows) {
                const bool steers = qstrcmp(row.key, "NumberCartJumpButtons") == 0 ||
                                    qstrcmp(row.key, "AutomaticPlayerAssignment") == 0;
                if (group.file == SettingsFile::Local && row.at && !steers)
                    file += QByteArray("[") + row.section + "]\r\n" +
                            SettingKey(row, row.count ? 2 : 0).toLatin1() + '=' + text + "\r\n";
            }
        // Repeated sections are not read, so each key goes into its own.
        platform::ForgetProfiles();
        a.use();
        a.write(local, "[CartPlayers]\r\nAutomaticPlayerAssignment=0\r\n");
        const QList<QByteArray> lines = file.split('\n');
        for (qsizetype at = 0; at + 1 < lines.size(); at += 2)
            platform::WriteProfileText(QString::fromLatin1(lines[at]).section(u'[', 1).section(u']', 0, 0),
                                       QString::fromLatin1(lines[at + 1]).section(u'=', 0, 0),
                                       platform::FromCodePage(text), ini);
        const QByteArray exported = ExportSettings({ini, {}, {}});
        const QStringList held = readBy(true);

        const TestMachine fresh;
        ImportPlan plan = PlanImport(exported, ini, {});
        ASSERT_TRUE(plan.usable()) << plan.refused.join(u'\n').toStdString() << plan.problem.toStdString();
        ASSERT_TRUE(ApplyImport(plan)) << plan.problem.toStdString();
        EXPECT_EQ(readBy(false), held);
        EXPECT_EQ(keys(PlanImport(exported, ini, {})), QStringList());
    }
}

TEST_F(SettingsImport, ValuesOutsideTheirRangeAreRemarkedWhenTheyComeFromAFileAndRefusedFromAHand) {
    const QByteArray exported =
        exportFrom(a, "[AudioWall]\r\nNumberCartJumpButtons=12\r\nJumpCartNumber11=7\r\n");
    b.use();
    ImportPlan plan = PlanImport(exported, ini, {});
    EXPECT_EQ(
        plan.remarks,
        QStringList("[AudioWall] NumberCartJumpButtons: 12 lies outside 1 to 10; it is taken as it stands"));
    ASSERT_TRUE(ApplyImport(plan));
    EXPECT_EQ(b.read(local), "[AudioWall]\r\nNumberCartJumpButtons=12\r\nJumpCartNumber11=7\r\n");
    b.write(local, "");
    plan = PlanImport(document(R"({"local":{"AudioWall":{"NumberCartJumpButtons":12,"JumpCartNumber4":1}}})"),
                      ini, {});
    EXPECT_EQ(plan.refused, QStringList({"[AudioWall] NumberCartJumpButtons: 12 lies outside 1 to 10",
                                         "[AudioWall] JumpCartNumber4: its number is above the last one"}));
}

TEST_F(SettingsImport, AnEntryBelowTheUsualCountIsTakenWhereFewerAreInForce) {
    const QByteArray exported = exportFrom(a, "[AudioWall]\r\nJumpCartNumber3=7\r\n");
    b.use();
    b.write(local, "[AudioWall]\r\nNumberCartJumpButtons=1\r\n");
    ImportPlan plan = PlanImport(exported, ini, {});
    EXPECT_EQ(plan.refused, QStringList());
    EXPECT_EQ(
        plan.remarks,
        QStringList(
            "[AudioWall] JumpCartNumber3: its number is above the last one here; it is taken as it stands"));
    ASSERT_TRUE(ApplyImport(plan));
    EXPECT_EQ(b.read(local), "[AudioWall]\r\nNumberCartJumpButtons=1\r\nJumpCartNumber3=7\r\n");
}

TEST_F(SettingsImport, NothingIsWrittenWhileAnythingIsRefused) {
    configureB();
    const QMap<QString, QByteArray> before = filesOfB();
    struct Case {
        const char* byFile;
        const char* reason;
    };
    const Case cases[] = {
        {R"({"local":{"Audio":{"KHz":1.5}}})", "[Audio] KHz: a value of that kind cannot be stored"},
        {R"({"local":{"Audio":{"KHz":true}}})", "cannot be stored"},
        {R"({"local":{"Audio":{"KHz":{"stored":"a\nb"}}}})", "cannot be stored"},
        {R"({"local":{"Audio":{"KHz":{"other":1}}}})", "cannot be stored"},
        {R"({"local":{"Audio":{"GeneralVolume":101}}})", "101 lies outside 0 to 100"},
        {R"({"local":{"Display":{"ShowClock":true,"showclock":false}}})", "given twice"},
        {R"({"local":{"FileLocations":{"Carts3":"C:\\A?B"}}})", "\"A?B\" cannot be the name of a folder"},
        {R"({"local":{"FileLocations":{"Data":"Q:\\X"}},"system":{"OPALTransfers":{"Default":"x"}}})",
         "Q:\\X\\TLVX_SYS.INI cannot be written: its drive is not there"},
        {R"({"local":{"FileLocations":{"Carts1":""}},"audiowall":{"Audiowall":{"NoCarts":5}}})",
         "[Audiowall] NoCarts: its file is not known; set the first cart location"},
    };
    for (const Case& one : cases) {
        QByteArray byFile = one.byFile;
        byFile.replace(R"({"local":{)", R"({"local":{"CDDB":{},"Carts":{"MouseClose":false},)");
        ImportPlan plan = PlanImport(document(byFile), ini, {});
        EXPECT_TRUE(plan.refused.join(u'\n').contains(one.reason))
            << one.reason << " in " << plan.refused.join(u'\n').toStdString();
        EXPECT_FALSE(ApplyImport(plan));
    }
    EXPECT_EQ(filesOfB(), before);
}

TEST_F(SettingsImport, WhatIsNotKnownIsNamedAndWhatIsNoDocumentSaysWhy) {
    configureB();
    const ImportPlan plan = PlanImport(
        document(
            R"({"local":{"Display":{"Mystery":1,"Ünknown":2},"Audiowall":{"NoCarts":5}},"other":{"X":{"y":1}}})"),
        ini, {});
    EXPECT_EQ(plan.unknown, QStringList({"\"other\"", "[Audiowall] NoCarts", "[Display] Mystery",
                                         QString::fromUtf8("[Display] Ünknown")}));
    EXPECT_TRUE(plan.usable() && plan.files.isEmpty());
    for (const QByteArray& bad :
         {QByteArray(), QByteArray("{"), QByteArray("[]"), QByteArray("{\"format\":\"x\"}"),
          QByteArray(200000, '['), QByteArray("{\"format\":\"tolvex-settings\",\"version\":2}"),
          document("[]"), document(R"({"local":5})"), document(R"({"system":{"OPALTransfers":[1]}})")})
        EXPECT_FALSE(PlanImport(bad, ini, {}).problem.isEmpty()) << bad.left(80).toStdString();
}

TEST_F(SettingsImport, AThirdFileThatFailsPutsTheFirstTwoBack) {
    const QByteArray moved = exportOfA();
    configureB();
    const QMap<QString, QByteArray> before = filesOfB();
    ImportPlan plan = PlanImport(moved, ini, {});
    platform::hostCalls().rename = [](const char* from, const char* to) {
        if (!QByteArray(to).contains("Audwall.ini"))
            return ::rename(from, to);
        errno = EIO;
        return -1;
    };
    EXPECT_FALSE(ApplyImport(plan));
    EXPECT_TRUE(plan.problem.startsWith("C:\\WALL\\Audwall.ini was not changed: "))
        << plan.problem.toStdString();
    EXPECT_NE(plan.error, 0);
    EXPECT_EQ(filesOfB(), before);
    EXPECT_EQ(plan.backups, QStringList());
    EXPECT_EQ(QDir(b.host("C:\\WINDOWS")).entryList({"TOLVEX*", ".*"}, QDir::Files | QDir::Hidden),
              QStringList("TOLVEX.INI"));
    EXPECT_FALSE(ImportWasInterrupted(ini));
}

// The next start after a kill, a broken disk or a full one finds all the old files or all the new ones.
TEST_F(SettingsImport, CutShortAnywhereItIsUndoneByTheNextStart) {
    const QByteArray moved = exportOfA();
    configureB();
    b.write("C:\\TOLVEX\\TLVX_SYS.INI", "[OPALTransfers]\r\nDefault=Old\r\n");
    const QMap<QString, QByteArray> before = filesOfB();
    const auto job = [&] {
        ImportPlan plan = PlanImport(moved, ini, {});
        return ApplyImport(plan) ? 0 : 1;
    };
    const auto reset = [&] {
        for (auto file = before.begin(); file != before.end(); ++file)
            if (file.value() == "none")
                QFile::remove(b.host(file.key()));
            else
                b.write(file.key(), file.value());
        platform::ForgetProfiles();
    };
    const FaultyRun whole = RunWithFault(job, Fault::None, 0);
    ASSERT_EQ(whole.result, 0);
    const QMap<QString, QByteArray> after = filesOfB();
    ASSERT_GT(whole.operations, 20);
    int undone = 0;
    for (const Fault fault : {Fault::Kill, Fault::Error, Fault::NoRoom})
        for (int at = 1; at <= whole.operations; ++at) {
            SCOPED_TRACE(testing::Message() << int(fault) << " at " << at);
            reset();
            const FaultyRun run = RunWithFault(job, fault, at);
            EXPECT_FALSE(run.result == 0 && ImportWasInterrupted(ini));
            const bool complete = filesOfB() == after; // the record may still exist
            undone += !UndoInterruptedImport(ini).isEmpty();
            EXPECT_EQ(filesOfB(), run.result == 0 || complete ? after : before);
            EXPECT_FALSE(b.exists(record));
            EXPECT_EQ(UndoInterruptedImport(ini), QString());
        }
    EXPECT_GE(undone, 2) << "at least between the renames there is something to undo";
}

TEST_F(SettingsImport, AnImportAtWorkIsNotTakenForAnInterruptedOne) {
    configureB();
    b.write(record, R"({"format":"tolvex-interrupted-change","files":[]})");
    {
        const platform::FileLock atWork(b.host(record));
        ASSERT_TRUE(atWork.held());
        EXPECT_FALSE(ImportWasInterrupted(ini));
        EXPECT_EQ(UndoInterruptedImport(ini), QString());
        EXPECT_TRUE(b.exists(record));
    }
    EXPECT_TRUE(ImportWasInterrupted(ini));
    // A file that is not our record stays for whoever can read it.
    b.write(record, "?");
    EXPECT_TRUE(UndoInterruptedImport(ini).contains("TOLVEX.INI.import names the files"))
        << UndoInterruptedImport(ini).toStdString();
    EXPECT_TRUE(b.exists(record));
}

TEST_F(SettingsImport, UndoingLeavesWhatAnotherProgramWroteSince) {
    const QByteArray moved = exportOfA();
    configureB();
    // Dies after two files changed: the third one's name never changes.
    ImportPlan plan = PlanImport(moved, ini, {});
    const QMap<QString, QByteArray> before = filesOfB();
    const auto job = [&plan] {
        platform::hostCalls().rename = [](const char* from, const char* to) {
            return QByteArray(to).contains("Audwall.ini") ? ::raise(SIGKILL) : ::rename(from, to);
        };
        return int(ApplyImport(plan));
    };
    ASSERT_TRUE(RunWithFault(job, Fault::None, 0).result == -1);
    ASSERT_TRUE(ImportWasInterrupted(ini));
    ImportPlan next = PlanImport(moved, ini, {});
    EXPECT_FALSE(ApplyImport(next)) << "nothing is built on a half";
    b.write("C:\\TOLVEX\\TLVX_SYS.INI", b.read("C:\\TOLVEX\\TLVX_SYS.INI") + "[New]\r\n");
    const QString told = UndoInterruptedImport(ini);
    EXPECT_TRUE(told.contains("as they were before it: C:\\WINDOWS\\TOLVEX.INI.")) << told.toStdString();
    EXPECT_TRUE(told.contains("stay as they are: C:\\TOLVEX\\TLVX_SYS.INI.")) << told.toStdString();
    EXPECT_EQ(b.read(local), before[local]);
    EXPECT_TRUE(b.read("C:\\TOLVEX\\TLVX_SYS.INI").endsWith("[New]\r\n"));
    EXPECT_FALSE(ImportWasInterrupted(ini));
}
