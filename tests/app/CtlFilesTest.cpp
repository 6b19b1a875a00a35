// The meaning of a FILE, and settings carried from one workstation to another.
#include "RunCtl.h"

#include <QJsonArray>
#include <QJsonObject>

using tolvex::tests::Ctl;

TEST_F(Ctl, ABareNameLiesWhereTheShellIsButForIniFiles) {
    EXPECT_EQ(run({"settings", "set", "Display", "ShowClock", "0"}).status, 0);
    EXPECT_EQ(run({"settings", "export", "all.json"}).status, 0);
    EXPECT_TRUE(QFile::exists(folder_.filePath("all.json")));
    EXPECT_FALSE(QFile::exists(onC("WINDOWS/all.json")));
    EXPECT_EQ(run({"settings", "import", "all.json"}).status, 0);
    EXPECT_EQ(run({"db", "create", "log", "--type", "14"}).status, 0);
    EXPECT_TRUE(QFile::exists(folder_.filePath("log.mdb")));
    EXPECT_EQ(run({"db", "tables", "log.mdb"}).status, 0);
    EXPECT_EQ(run({"--json", "db", "find", ".", "--type", "14"}).json()["count"], 1);
    EXPECT_EQ(run({"profile", "set", "own.ini", "s", "k", "v"}).status, 0);
    EXPECT_TRUE(QFile::exists(onC("WINDOWS/own.ini")));
    EXPECT_EQ(run({"--ini", "own.ini", "settings", "set", "Display", "ShowClock", "0"}).status, 0);
    EXPECT_EQ(run({"settings", "diff", "own.ini", "TOLVEX.INI"}).status, 0);
}

// A file that no drive leads to must not end in the default file, or in none.
TEST_F(Ctl, AFileThatNoDriveLeadsToIsAnErrorInWords) {
    run({"settings", "set", "Display", "ShowClock", "0"});
    write(folder_.filePath("x.ini"), "[Display]\r\nShowClock=1\r\n");
    write(folder_.filePath("x.mdb"), "x");
    const QByteArray before = read(onC("WINDOWS/TOLVEX.INI"));
    ASSERT_TRUE(QFile::remove(home() + "/dosdevices/z:"));
    const QString file = folder_.filePath("x.ini");
    for (const QStringList& words :
         {QStringList{"--ini", "./x.ini", "settings", "set", "Display", "ShowClock", "1"},
          {"--sys-ini", file, "status"},
          {"profile", "get", file, "Display", "ShowClock"},
          {"profile", "set", file, "Display", "ShowClock", "0"},
          {"settings", "diff", "TOLVEX.INI", file},
          {"settings", "export", "all.json"},
          {"settings", "import", file},
          {"db", "info", "x.mdb"},
          {"db", "export", "x.mdb", "T"},
          {"db", "compact", "./x.mdb"},
          {"db", "find", ".", "--type", "14"},
          {"db", "settings", "x.mdb", "list"}}) {
        const Result result = run(words);
        EXPECT_EQ(result.status, 3) << words.join(' ').toStdString();
        EXPECT_TRUE(result.err.startsWith("No drive leads to " + folder_.path().toUtf8() + '/'))
            << words.join(' ').toStdString() << ": " << result.err.toStdString();
    }
    EXPECT_EQ(read(onC("WINDOWS/TOLVEX.INI")), before);
    EXPECT_EQ(read(file), "[Display]\r\nShowClock=1\r\n");
    EXPECT_FALSE(QFile::exists(folder_.filePath("all.json")));
    for (const QStringList& words : {QStringList{"--ini=", "settings", "set", "Display", "ShowClock", "1"},
                                     {"--sys-ini", "", "status"},
                                     {"settings", "export", ""},
                                     {"db", "info", ""}})
        EXPECT_EQ(run(words).err, "The name of a file is expected, not an empty text.\n")
            << words.join(' ').toStdString();
    // A name on a server does not name a file.
    EXPECT_FALSE(
        run({"db", "info", "LOG", "--connect", "DRIVER={No Such Driver}"}).err.contains("No drive leads"));
    EXPECT_EQ(run({"--ini", "TOLVEX.INI", "settings", "get", "Display", "ShowClock"}).out, "0\n");
}

TEST_F(Ctl, CarriesTheSettingsOfOneWorkstationToAnother) {
    const QString first = home();
    const QString second = folder_.filePath("second");
    const auto onSecond = [&](const QString& name) { return second + "/drive_c/" + name; };
    write(first + "/drive_c/WINDOWS/TOLVEX.INI",
          "[FileLocations]\r\nData=C:\\DATA\r\nCarts1=C:\\WALL\r\n[LinkMesh]\r\nLinkMeshId=3\r\n");
    write(first + "/drive_c/DATA/TLVX_SYS.INI", "[OPALTransfers]\r\nDefault=Night\r\n");
    write(first + "/drive_c/WALL/Audwall.ini", "[Audiowall]\r\nNoCarts=12000\r\nVersion=2.6\r\n");
    EXPECT_EQ(run({"settings", "export", "a.json"}).status, 0);

    write(onSecond("WINDOWS/TOLVEX.INI"), "[FileLocations]\r\nData=C:\\OLD\r\nCarts1=C:\\OLD\r\n");
    write(onSecond("OLD/TLVX_SYS.INI"), "[OPALTransfers]\r\nDefault=Day\r\n");
    write(onSecond("OLD/Audwall.ini"), "[Audiowall]\r\nNoCarts=500\r\nVersion=2.6\r\n");
    const Result preview = run({"--home", second, "--json", "settings", "import", "--preview", "a.json"});
    EXPECT_EQ(preview.status, 0) << preview.out.toStdString();
    EXPECT_EQ(preview.json()["applied"], false);
    EXPECT_EQ(preview.json()["changes"].toArray().size(), 6);
    EXPECT_FALSE(QDir(onSecond("WALL")).exists());
    const Result import = run({"--home", second, "--json", "settings", "import", "a.json"});
    EXPECT_EQ(import.status, 0) << import.out.toStdString();
    EXPECT_EQ(import.json()["changes"], preview.json()["changes"]);
    EXPECT_EQ(import.json()["applied"], true);
    EXPECT_EQ(read(onSecond("WINDOWS/TOLVEX.INI")),
              "[FileLocations]\r\nData=C:\\DATA\r\nCarts1=C:\\WALL\r\n[LinkMesh]\r\nLinkMeshId=3\r\n");
    EXPECT_EQ(read(onSecond("DATA/TLVX_SYS.INI")), "[OPALTransfers]\r\nDefault=Night\r\n");
    EXPECT_EQ(read(onSecond("WALL/Audwall.ini")), "[Audiowall]\r\nNoCarts=12000\r\nVersion=2.6\r\n");
    EXPECT_EQ(read(onSecond("OLD/TLVX_SYS.INI")), "[OPALTransfers]\r\nDefault=Day\r\n");
    EXPECT_EQ(read(onSecond("OLD/Audwall.ini")), "[Audiowall]\r\nNoCarts=500\r\nVersion=2.6\r\n");
    EXPECT_EQ(run({"--home", second, "settings", "get", "OPALTransfers", "Default"}).out, "Night\n");
}

TEST_F(Ctl, SaysThatAnImportWasCutShortAndTheNextOneUndoesIt) {
    run({"settings", "set", "Display", "ShowClock", "0"});
    EXPECT_EQ(run({"settings", "export", "a.json"}).status, 0);
    const QString ini = onC("WINDOWS/TOLVEX.INI");
    write(onC("WINDOWS/OLD.bak"), "[Old]\r\n");
    const QString hash = "4b2a3a66b9c4ba7bd5a9ad0b2ff3e0be"; // of no file: confirms that ours is requested
    const Result sum = shell("sha256sum < '" + ini + "'");
    write(ini + ".import",
          R"({"format":"tolvex-interrupted-change","files":[{"path":"C:\\WINDOWS\\TOLVEX.INI",)"
          R"("backup":"C:\\WINDOWS\\OLD.bak","after":")" +
              sum.out.left(64) + R"("},{"path":"C:\\OTHER.INI","backup":"","after":")" + hash.toUtf8() +
              R"("}]})");
    const Result status = run({"status"});
    EXPECT_TRUE(status.err.contains("An import of settings was cut short")) << status.err.toStdString();
    EXPECT_EQ(run({"--json", "status"}).json().object().contains("localIni"), true);
    const Result next = run({"settings", "import", "a.json"});
    EXPECT_EQ(next.status, 0);
    EXPECT_TRUE(next.err.contains("put back as they were before it: C:\\WINDOWS\\TOLVEX.INI."))
        << next.err.toStdString();
    EXPECT_EQ(read(ini), "[Old]\r\n[Display]\r\nShowClock=0\r\n");
    EXPECT_FALSE(run({"status"}).err.contains("cut short"));
}
