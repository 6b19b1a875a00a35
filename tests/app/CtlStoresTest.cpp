// The stores from a shell: ini files, registry, settings, status, carts: output and unchanged data.
#include "RunCtl.h"

#include "audio/CartRecord.h"

#include <QJsonArray>
#include <QJsonObject>

using tolvex::tests::Ctl;

TEST_F(Ctl, EditsAnyIniFileByEitherKindOfPath) {
    const QString host = folder_.filePath("own files/x.ini");
    write(host, "; head\n[Audio]\nVolume = 3\nName=\"Main Studio\"\n\n[Other]\n");
    EXPECT_EQ(run({"profile", "get", "own files/x.ini", "AUDIO", "name"}).out, "Main Studio\n");
    EXPECT_EQ(run({"profile", "getint", "Z:" + QString(host).replace('/', '\\'), "audio", "volume"}).out,
              "3\n");
    EXPECT_EQ(run({"profile", "get", host, "Audio", "Missing", "a b"}).out, "a b\n");
    const Result missing = run({"profile", "get", host, "Audio", "Missing"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_TRUE(missing.err.contains("Missing") && missing.out.isEmpty());
    EXPECT_EQ(run({"profile", "getint", host, "Audio", "Volume", "x"}).status, 2);

    EXPECT_EQ(run({"profile", "set", host, "audio", "VOLUME", "5"}).status, 0);
    EXPECT_EQ(run({"profile", "set", host, "New", "k", ""}).status, 0);
    EXPECT_EQ(run({"profile", "delete", host, "Audio", "Name"}).status, 0);
    EXPECT_EQ(run({"profile", "delete", host, "Audio", "Name"}).status, 1);
    EXPECT_EQ(run({"profile", "delete", host, "other"}).status, 0);
    EXPECT_EQ(read(host), "; head\n[Audio]\nVolume=5\r\n\n[New]\r\nk=\r\n");
    EXPECT_EQ(run({"profile", "sections", host}).out, "Section\nAudio\nNew\n");
    EXPECT_EQ(run({"--json", "profile", "keys", host, "Audio"}).json().array(),
              QJsonArray({QJsonObject{{"key", "Volume"}}}));
    EXPECT_EQ(run({"--json", "profile", "keys", host, "Nothing"}).json().array(), QJsonArray());

    // Values that would not read back are refused, and those that read back differently are reported.
    for (const QStringList& names : {QStringList{"s]", "k", "v"},
                                     {"s", "a=b", "v"},
                                     {"s", ";k", "v"},
                                     {"s", "k", "two\nlines"},
                                     {"s", "k", "\u0416"}})
        EXPECT_EQ(run(QStringList{"profile", "set", host} + names).status, 2)
            << names.join('|').toStdString();
    EXPECT_TRUE(
        run({"profile", "set", host, "New", "k", " \u20AC "}).err.contains("reads back as \"\u20AC\""));
    EXPECT_EQ(run({"profile", "get", host, "New", "k"}).out, "\u20AC\n");
}

TEST_F(Ctl, SaysWhyAFileCannotBeWritten) {
    QDir().mkpath(folder_.filePath("folder.ini"));
    for (const QString& file :
         {folder_.filePath("folder.ini"), folder_.filePath("no/x.ini"), QString("Q:\\x.ini")}) {
        const Result result = run({"profile", "set", file, "s", "k", "v"});
        EXPECT_EQ(result.status, 3) << file.toStdString();
        EXPECT_FALSE(result.err.isEmpty());
    }
}

// The suite's own writers ignore a full disk; a script must be told.
TEST_F(Ctl, AFullDiskIsAFailureAndLosesNothing) {
    const QString host = folder_.filePath("x.ini");
    write(host, "[s]\r\nk=1\r\n");
    EXPECT_EQ(run({"registry", "set", "Software\\X", "n", "1"}).status, 0);
    for (const QString& command :
         {QString("profile set ./x.ini s k 2"), QString("registry set 'Software\\X' n 2"),
          QString("settings set Display ShowClock 0"), QString("settings export ./all.json")}) {
        const Result result = shell("trap '' XFSZ; ulimit -f 0; $ctl " + command);
        EXPECT_EQ(result.status, 3) << command.toStdString();
        EXPECT_FALSE(result.err.isEmpty());
    }
    EXPECT_EQ(read(host), "[s]\r\nk=1\r\n");
    EXPECT_EQ(run({"registry", "get", "Software\\X", "n"}).out, "1\n");
    EXPECT_FALSE(QFile::exists(folder_.filePath("all.json")));
    EXPECT_EQ(shell("$ctl settings list > /dev/full").status, 3);
}

TEST_F(Ctl, ChangesRegistryValuesAndKeepsTheRest) {
    EXPECT_EQ(
        run({"registry", "set", "HKLM\\Software\\Norvane\\Tolvex", "MultiConfigFile", "1", "--dword"}).status,
        0);
    EXPECT_EQ(run({"registry", "set", "software\\norvane\\tolvex", "Path", "C:\\caf\u00E9 \"x\""}).status, 0);
    EXPECT_EQ(run({"registry", "get", "Software\\Norvane\\Tolvex", "PATH"}).out, "C:\\caf\u00E9 \"x\"\n");
    EXPECT_EQ(run({"--json", "registry", "get", "Software\\Norvane\\Tolvex", "multiconfigfile"})
                  .json()["value"]
                  .toInt(),
              1);
    const QJsonArray all = run({"registry", "list", "Software\\Norvane", "--json"}).json().array();
    ASSERT_EQ(all.size(), 2);
    EXPECT_EQ(all[0]["type"], "REG_DWORD");
    EXPECT_EQ(all[0]["key"], "Software\\Norvane\\Tolvex");
    EXPECT_EQ(run({"registry", "delete", "Software\\Norvane\\Tolvex", "Path"}).status, 0);
    EXPECT_EQ(run({"registry", "delete", "Software\\Norvane\\Tolvex", "Path"}).status, 1);
    EXPECT_EQ(run({"registry", "list", "Software\\None"}).status, 1);
    EXPECT_EQ(run({"registry", "set", "Software\\X", "n", "4294967296", "--dword"}).status, 2);
    EXPECT_TRUE(run({"registry", "list"}).out.contains("FullInstallVer"));

    ASSERT_TRUE(QFile::remove(home() + "/system.reg"));
    QDir().mkpath(home() + "/system.reg"); // nothing can be written there
    EXPECT_EQ(run({"registry", "set", "Software\\X", "n", "1"}).status, 3);
}

TEST_F(Ctl, ListsSetsComparesAndCarriesOverSettings) {
    EXPECT_EQ(run({"settings", "set", "display", "showclock", "off"}).status, 0);
    EXPECT_EQ(read(onC("WINDOWS/TOLVEX.INI")), "[Display]\r\nShowClock=0\r\n");
    EXPECT_EQ(run({"settings", "get", "Display", "ShowClock"}).out, "0\n");
    EXPECT_EQ(run({"settings", "set", "Display", "ShowClock", "7"}).status, 2);
    EXPECT_EQ(run({"settings", "set", "Display", "ShowClck", "1"}).status, 1);
    const QJsonArray display = run({"--json", "settings", "list", "DISPLAY"}).json().array();
    bool found = false;
    for (const QJsonValue value : display)
        if (value["key"] == "ShowClock") {
            found = true;
            EXPECT_EQ(value["value"], false);
            EXPECT_EQ(value["default"], true);
            EXPECT_EQ(value["kind"], "flag");
        }
    EXPECT_TRUE(found);

    const QString other = folder_.filePath("other.ini");
    QDir().mkpath(onC("TOLVEX"));
    EXPECT_EQ(run({"--ini", other, "settings", "set", "FileLocations", "Data", "C:\\TOLVEX\\"}).status, 0);
    EXPECT_EQ(read(other), "[FileLocations]\r\nData=C:\\TOLVEX\r\n");
    const Result differs = run({"--json", "settings", "diff", "TOLVEX.INI", other});
    EXPECT_EQ(differs.status, 1);
    EXPECT_EQ(run({"settings", "diff", other, other}).status, 0);
    EXPECT_EQ(run({"settings", "diff", other, "missing.ini"}).status, 3);
    const QJsonArray differences = differs.json().array();
    EXPECT_TRUE(differences.contains(
        QJsonObject{{"section", "FileLocations"}, {"key", "Data"}, {"first", ""}, {"second", "C:\\TOLVEX"}}))
        << differs.out.toStdString();

    const QString document = folder_.filePath("all.json");
    EXPECT_EQ(run({"settings", "export", document}).status, 0);
    EXPECT_EQ(run({"settings", "export"}).out.trimmed(), read(document).trimmed());
    const QByteArray before = read(other);
    const Result preview = run({"--ini", other, "--json", "settings", "import", "--preview", document});
    EXPECT_EQ(preview.status, 0);
    EXPECT_EQ(read(other), before);
    EXPECT_EQ(preview.json()["applied"], false);
    EXPECT_FALSE(preview.json()["changes"].toArray().isEmpty());
    const Result import = run({"--ini", other, "--json", "settings", "import", document});
    EXPECT_EQ(import.status, 0) << import.err.toStdString() << import.out.toStdString();
    EXPECT_EQ(import.json()["applied"], true);
    EXPECT_EQ(read(other), "[FileLocations]\r\nData=C:\\TOLVEX\r\n[Display]\r\nShowClock=0\r\n");
    EXPECT_EQ(read(QString(import.json()["backups"][0].toString()).replace('\\', '/').mid(2)), before);
    write(document, "{ \"format\": ");
    EXPECT_EQ(run({"settings", "import", document}).status, 3);
}

TEST_F(Ctl, TellsWhatIsNotConfiguredAndWhereTheAudiowallLies) {
    const Result bare = run({"--json", "status"});
    EXPECT_EQ(bare.status, 1);
    EXPECT_EQ(bare.json()["localIni"], "TOLVEX.INI");
    EXPECT_TRUE(bare.json()["missing"].toArray().contains("The Data Location has not been set"));
    EXPECT_EQ(run({"--json", "carts", "list"}).status, 3);
    EXPECT_EQ(run({"--json", "carts", "check"}).status, 3);

    QByteArray ini = "[FileLocations]\r\nData=C:\\TOLVEX\r\n";
    for (int part = 1; part <= 10; ++part)
        ini += "Carts" + QByteArray::number(part) + "=C:\\CARTS\r\n";
    write(onC("WINDOWS/TOLVEX.INI"), ini + "[LinkMesh]\r\nLinkMeshId=3\r\n");
    QDir().mkpath(onC("TOLVEX"));
    QDir().mkpath(onC("CARTS"));
    const Result whole = run({"--json", "status"});
    EXPECT_EQ(whole.status, 0) << whole.out.toStdString();
    EXPECT_EQ(whole.json()["linkMeshId"].toInt(), 3);
    EXPECT_EQ(whole.json()["locations"][0]["state"], "available");
    EXPECT_EQ(run({"carts", "locations"}).status, 0);
    EXPECT_EQ(run({"carts", "show", "12345678"}).status, 2);
    EXPECT_EQ(run({"carts", "list", "5-2"}).status, 2);
}

TEST_F(Ctl, ReadsCartsAndMakesNoList) {
    write(onC("WINDOWS/TOLVEX.INI"), "[FileLocations]\r\nCarts1=C:\\CARTS\r\nCarts2=C:\\CARTS\r\n");
    QDir().mkpath(onC("CARTS"));
    EXPECT_EQ(run({"carts", "show", "17"}).status, 3);
    EXPECT_EQ(run({"carts", "list"}).status, 3);
    EXPECT_EQ(QDir(onC("CARTS")).entryList(QDir::Files), QStringList()) << "no file is made";

    tolvex::CartRecord cart = tolvex::MakeEmptyCartRecord(0, 0);
    cart.Line1 = "Jingle";
    cart.Line2 = QString::fromUtf8("Café €");
    cart.Length = 12.3F;
    cart.TotalLength = 12.5F;
    cart.BackColor = 255;
    const auto empty = tolvex::EncodeCartRecord(tolvex::MakeEmptyCartRecord(0, 0));
    QByteArray list;
    for (int number = 1; number <= 1000; ++number) {
        const auto bytes = number == 17 ? tolvex::EncodeCartRecord(cart) : empty;
        list.append(bytes.data(), static_cast<qsizetype>(bytes.size()));
    }
    write(onC("CARTS/Carts1.lst"), list);
    const Result shown = run({"--json", "carts", "show", "17"});
    EXPECT_EQ(shown.status, 0);
    EXPECT_EQ(shown.json()["line2"], QString::fromUtf8("Café €"));
    EXPECT_EQ(shown.json()["length"].toDouble(), 12.3);
    EXPECT_EQ(shown.json()["backColor"].toInt(), 255);
    EXPECT_EQ(shown.json()["status"].toInt(), 0);
    const QJsonArray all = run({"--json", "--quiet", "carts", "list"}).json().array();
    ASSERT_EQ(all.size(), 1);
    EXPECT_EQ(all[0], shown.json().object());
    EXPECT_TRUE(run({"carts", "list", "17"}).out.contains("Jingle"));
    EXPECT_EQ(run({"carts", "list", "18-20"}).status, 1);
    const Result other = run({"--json", "carts", "show", "18"});
    EXPECT_EQ(other.status, 1);
    EXPECT_EQ(other.json()["empty"], true);
    EXPECT_EQ(run({"carts", "show", "1017"}).status, 3);
    EXPECT_EQ(run({"carts", "backup"}).status, 0);
    EXPECT_EQ(QDir(onC("CARTS/Backups")).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size(), 1);
}

TEST_F(Ctl, ListsWaveDevicesOrSaysThatThereAreNone) {
    const Result devices = run({"--json", "audio", "devices"});
    EXPECT_EQ(devices.status, devices.json().array().isEmpty() ? 1 : 0);
    EXPECT_TRUE(devices.json().isArray());
}
