#include "core/report/DebugLog.h"
#include "core/report/ProblemReport.h"
#include "core/system/DataEngine.h"
#include "core/system/Registry.h"
#include "platform/CodePage.h"
#include "support/FixedClock.h"
#include "support/MachineFolder.h"
#include "support/QtPrinters.h"
#include "support/ScriptedPrompts.h"

#include <gtest/gtest.h>

using namespace tolvex;
using platform::Pointer;

namespace {

class Reports : public ::testing::Test {
protected:
    tests::TestMachine machine;
    tests::ScriptedPrompts prompts;
};

const QString key = QStringLiteral("Software\\Norvane\\Tolvex v2");

} // namespace

TEST_F(Reports, AProblemReportNamesTheActionAndTheError) {
    prompts.setPointer(Pointer::Wait);
    EXPECT_EQ(ProblemReport(QStringLiteral(" opening the database ")),
              "There was a problem opening the database");
    EXPECT_EQ(
        ProblemReport(QStringLiteral("copying"), 61),
        "There was a problem copying and the error's description was reported as : \n\n\"Disk full\" (61)");
    EXPECT_EQ(prompts.asked.size(), 2);
    EXPECT_EQ(prompts.asked[1].icon, platform::Icon::Exclamation);
    EXPECT_EQ(prompts.pointer(), Pointer::Wait);
    // The description is used only if the run-time has no text.
    EXPECT_TRUE(ProblemReport(QStringLiteral("x"), 3044, true, QStringLiteral(" not a valid path "))
                    .contains("\"not a valid path\" (3044)"));
    EXPECT_TRUE(ProblemReport(QStringLiteral("x"), 76, true, QStringLiteral("mine"))
                    .contains("\"Path not found\" (76)"));
    EXPECT_TRUE(ProblemReport(QStringLiteral("x"), 3999, true)
                    .contains("\"Application-defined or object-defined error\" (3999)"));
    EXPECT_TRUE(ProblemReport(QStringLiteral("x"), -2147217900, true, QStringLiteral("mine"))
                    .contains("\"mine\" (-2147217900)"));
    EXPECT_EQ(prompts.asked.size(), 2);
}

TEST_F(Reports, TheDebugLogKeepsOneFileADayAndIndentsByFourBlanks) {
    tests::FixedClock clock(QDateTime(QDate(2026, 11, 21), QTime(23, 59, 58)));
    DebugLog(QStringLiteral("off"));
    EXPECT_FALSE(machine.exists(QStringLiteral("C:\\DebugFiles")));
    qint32 level = -1;
    const DebugLogging log(level);
    DebugLog(QStringLiteral("left"), 9, DebugIndent::Reset);
    DebugLog(QStringLiteral("in"), -1, DebugIndent::Deeper);
    DebugLog(QStringLiteral("deeper"), -1, DebugIndent::Deeper, QStringLiteral("extra"));
    DebugLog(QStringLiteral("two"));
    clock.time = clock.time.addSecs(3);
    DebugLog(QStringLiteral("out"), -1, DebugIndent::Shallower);
    DebugLog(QStringLiteral("out"), -1, DebugIndent::Shallower);
    DebugLog(QStringLiteral("out"), -1, DebugIndent::Shallower);
    level = 4;
    DebugLog(QStringLiteral("counts as 5"));
    DebugLog(QStringLiteral("four"), 4);
    const QString stem = QStringLiteral("C:\\DebugFiles\\") + ProgramName();
    EXPECT_EQ(machine.read(stem + QStringLiteral(".20261121.log")),
              "23:59:58 left\r\n23:59:58 in\r\n23:59:58 extra     deeper\r\n23:59:58         two\r\n");
    EXPECT_EQ(machine.read(stem + QStringLiteral(".20261122.log")),
              "00:00:01     out\r\n00:00:01 out\r\n00:00:01 out\r\n00:00:01 four\r\n");
}

TEST_F(Reports, ALogThatCannotBeWrittenStopsNothing) {
    const qint32 level = -1;
    const DebugLogging log(level);
    machine.write(QStringLiteral("C:\\DebugFiles"), "a file in the way");
    DebugLog(QStringLiteral("lost"));
    EXPECT_EQ(prompts.texts(), QStringList{"Could not create Debug Files folder in 'C:\\DebugFiles'"});
}

TEST_F(Reports, ADefaultIsNeverStoredInTheRegistry) {
    const quint32 hive = LocalMachineHive;
    WriteRegistryLong(hive, key, QStringLiteral("Flag"), 0, 0);
    EXPECT_FALSE(RegistryKeyExists(hive, key));
    WriteRegistryLong(hive, key, QStringLiteral("Flag"), -1, 0);
    EXPECT_TRUE(RegistryKeyExists(hive, key));
    EXPECT_EQ(ReadRegistryLong(hive, key.toLower(), QStringLiteral("FLAG"), 7), -1);
    WriteRegistryLong(hive, key, QStringLiteral("Flag"), 0, 0);
    EXPECT_EQ(ReadRegistryLong(hive, key, QStringLiteral("Flag"), 7), 7);

    WriteRegistryString(hive, key, QStringLiteral("Text"), QString::fromUtf8("é€ and more"),
                        QStringLiteral("x"));
    EXPECT_EQ(ReadRegistryString(hive, key, QStringLiteral("Text"), {}), QString::fromUtf8("é€ and more"));
    WriteRegistryString(hive, key, QStringLiteral("Text"), QStringLiteral("x"), QStringLiteral("x"));
    EXPECT_EQ(ReadRegistryString(hive, key, QStringLiteral("Text"), QStringLiteral("gone")), "gone");
    DeleteRegistryValue(hive, key, QStringLiteral("not there"));
}

TEST_F(Reports, RegistryValuesOfAnotherTypeOrLengthReadAsTheDefault) {
    const auto put = [](const char* name, platform::RegistryType type, const QByteArray& data) {
        platform::RegistryWrite(LocalMachineHive, key, QLatin1String(name), {type, data});
    };
    put("Cut", platform::RegistryType::Text, QByteArray("ab\0cd", 5));
    put("Binary", platform::RegistryType::Binary, QByteArray("\x05\0\0\0", 4));
    put("Expand", platform::RegistryType::ExpandText, "text");
    put("Short", platform::RegistryType::Text, "12");
    EXPECT_EQ(ReadRegistryString(LocalMachineHive, key, QStringLiteral("Cut"), {}), "ab");
    EXPECT_EQ(ReadRegistryString(LocalMachineHive, key, QStringLiteral("Expand"), QStringLiteral("d")), "d");
    EXPECT_EQ(ReadRegistryLong(LocalMachineHive, key, QStringLiteral("Binary"), 1), 5);
    EXPECT_EQ(ReadRegistryLong(LocalMachineHive, key, QStringLiteral("Short"), 1), 1);
    EXPECT_EQ(ReadRegistryLong(LocalMachineHive, key, QStringLiteral("Cut"), 1), 1);
}

TEST_F(Reports, TheDataEngineMustBeThereAndNewEnough) {
    const QString engine = QStringLiteral("Software\\Microsoft\\DataAccess");
    QString version = QStringLiteral("?");
    EXPECT_TRUE(CheckDataEngine(true)); // the engine in this program
    DeleteRegistryValue(LocalMachineHive, engine, QStringLiteral("FullInstallVer"));
    EXPECT_FALSE(CheckDataEngine(true, &version));
    EXPECT_EQ(version, QString());
    ASSERT_EQ(prompts.asked.size(), 1);
    EXPECT_EQ(prompts.asked[0].icon, platform::Icon::Stop);
    EXPECT_TRUE(prompts.asked[0].text.startsWith(
        "You must have the Norvane and Microsoft Database Engines installed to use this product.\n\n"));
    EXPECT_TRUE(prompts.addresses.isEmpty());

    WriteRegistryString(LocalMachineHive, engine, QStringLiteral("Version"), QStringLiteral("2.1"), {});
    EXPECT_FALSE(CheckDataEngine(false, &version));
    EXPECT_EQ(prompts.asked.size(), 1);
    EXPECT_EQ(prompts.addresses.size(), 1);
    WriteRegistryString(LocalMachineHive, engine, QStringLiteral("FullInstallVer"), QStringLiteral("2.50"),
                        {});
    EXPECT_TRUE(CheckDataEngine(true, &version));
    EXPECT_EQ(version, "2.50");
    EXPECT_EQ(prompts.asked.size(), 1);
}
