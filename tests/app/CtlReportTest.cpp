// The report for supporters, and the check for monitoring systems.
#include "RunCtl.h"

#include <QDirIterator>
#include <QJsonObject>

using tolvex::tests::Ctl;

TEST_F(Ctl, ReportsAllOfAWorkstationButItsPasswords) {
    run({"profile", "set", "tolvex.ini", "FileLocations", "Data", "C:\\DATA"});
    run({"profile", "set", "tolvex.ini", "General", "ConfigName", "Studio; pwd={k;9}"});
    run({"registry", "set", "Software\\X", "UserPassword", "letmein"});
    write(onC("DebugFiles/tolvex-config.20260101.log"), "old\r\n");
    QByteArray log;
    for (int line = 1; line <= 1000; ++line)
        log += "12:00:00 line " + QByteArray::number(line) + "\r\n";
    write(onC("DebugFiles/tolvex-config.20260102.log"),
          log + "ODBC;UID=sa;PWD=hidden me;DATABASE=x \xE9\r\n");
    QFile old(onC("DebugFiles/tolvex-config.20260101.log"));
    ASSERT_TRUE(old.open(QIODevice::ReadWrite));
    old.setFileTime(QDateTime(QDate(2020, 1, 1), QTime(0, 0)), QFileDevice::FileModificationTime);
    old.close();

    const Result result = run({"--json", "report"});
    ASSERT_EQ(result.status, 0) << result.err.toStdString();
    const QString file = result.json()["file"].toString();
    EXPECT_TRUE(QFileInfo(file).fileName().startsWith("tolvex-report-")) << file.toStdString();
    const QByteArray report = read(file);
    for (const char* part :
         {"Tolvex Configuration ", "\nQt 6.", "FileLocations\\Data=C:\\DATA", "== status (exit",
          "Software\\X\\UserPassword=***", "line 700\n", "ODBC;UID=sa;PWD=***;DATABASE=x \xC3\xA9"})
        EXPECT_TRUE(report.contains(part)) << part;
    for (const char* part : {"letmein", "hidden", "k;9", "line 500\n", "old\n"})
        EXPECT_FALSE(report.contains(part)) << part;
    // A machine that was never configured is the one that needs help most.
    const Result bare = run({"report", "r.txt", "--home", folder_.filePath("bare")});
    EXPECT_EQ(bare.status, 0);
    EXPECT_EQ(bare.err, "") << "what the commands that it asks say stands in the report";
    EXPECT_TRUE(read(folder_.filePath("r.txt")).contains("== status (exit"));
}

TEST_F(Ctl, AnswersMonitoringSystemsInALineAndAStatus) {
    const auto check = [this](const QString& more = {}) {
        return start("sh", {"-c", TOLVEX_SOURCE_DIR "/packaging/monitoring/check_tolvex -c " TOLVEX_BIN_DIR
                                                    "/tolvexctl " +
                                      more});
    };
    EXPECT_EQ(check().status, 1) << "not configured";
    ASSERT_EQ(run({"--yes", "--quiet", "autoconfig", "local"}).status, 0);
    ASSERT_EQ(run({"--yes", "terminals", "choose", "1"}).status, 0);
    const Result fine = check();
    EXPECT_TRUE(fine.out.startsWith("TOLVEX OK") || fine.out.startsWith("TOLVEX WARNING"))
        << fine.out.toStdString();
    EXPECT_EQ(check("-p 1").status, 2) << "nothing listens there";
    QDirIterator lists(onC("TOLVEX"), {"carts1.lst"}, QDir::Files, QDirIterator::Subdirectories);
    ASSERT_TRUE(lists.hasNext());
    ASSERT_TRUE(QFile::resize(lists.next(), 450));
    const Result torn = check();
    EXPECT_EQ(torn.status, 2);
    EXPECT_TRUE(torn.out.contains("1 cart lists")) << torn.out.toStdString();
    EXPECT_EQ(check("-H /proc/nobody/makes/this").status, 2);
    EXPECT_EQ(check("-x").status, 3);
}
