// The automation player from a shell: the workstation's keys, the settings of its database, and database
// files.
#include "RunCtl.h"

#include <QJsonArray>
#include <QJsonObject>

namespace tolvex::tests {

namespace {

class CtlAutomation : public Ctl {
protected:
    CtlAutomation() {
        run({"profile", "set", "tolvex.ini", "FileLocations", "Data", "C:\\DATA"});
        EXPECT_EQ(
            run({"db", "create", "C:\\DATA\\SCHEDULE\\KOVA26", "--type", "14", "--title", "Log"}).status, 0);
    }
    Result automation(const QStringList& words) const { return run(QStringList{"automation"} + words); }
    QByteArray item(const char* name) const { return automation({"settings", "get", name}).out.trimmed(); }
};

} // namespace

TEST_F(CtlAutomation, ShowsAndChangesTheWorkstationsKeys) {
    EXPECT_EQ(automation({"settings", "list"}).status, 1); // none is chosen
    EXPECT_EQ(automation({"choose", "NONE"}).status, 1);
    EXPECT_EQ(automation({"choose", "C:\\OTHER\\KOVA26.MDB"}).status, 2);
    run({"db", "create", "C:\\DATA\\SCHEDULE\\ADS", "--type", "2"});
    EXPECT_EQ(automation({"choose", "ADS"}).status, 3);
    EXPECT_EQ(automation({"choose", "KOVA26.mdb"}).status, 0);
    EXPECT_EQ(automation({"set", "displayinstantcarts", "Always in K-OVA Live and K-OVA"}).status, 0);
    EXPECT_EQ(automation({"set", "ReleaseMode", "never release control"}).status, 0);
    EXPECT_EQ(automation({"set", "AllowControl", "yes"}).status, 0);
    for (const auto& [key, value] : {std::pair("ReleaseTime", "40000"), {"ReleaseMode", "3"}, {"None", "1"}})
        EXPECT_EQ(automation({"set", key, value}).status, 2) << key;
    EXPECT_EQ(run({"--json", "automation", "show"}).json()["releaseTime"].toInt(), 10);
    const QByteArray shown = automation({"show"}).out;
    EXPECT_TRUE(shown.contains("Always in K-OVA Live and K-OVA") && shown.contains("never release control."));
    EXPECT_TRUE(read(onC("WINDOWS/tolvex.ini")).contains("DisplayInstantCarts=2\r\nAllowControl=1\r\n"));
    const QJsonArray list = run({"--json", "automation", "list"}).json().array();
    ASSERT_EQ(list.size(), 1);
    EXPECT_EQ(list[0]["description"].toString(), "Log");
    EXPECT_TRUE(list[0]["isDefault"].toBool());
    EXPECT_EQ(automation({"clear"}).status, 0);
    EXPECT_TRUE(read(onC("WINDOWS/tolvex.ini")).contains("DefaultDatabase=\r\n"));
}

TEST_F(CtlAutomation, SetsItemsAsTheWindowWould) {
    automation({"choose", "KOVA26"});
    const auto set = [this](const char* name, const char* value) {
        return automation({"settings", "set", name, value});
    };
    EXPECT_EQ(set("KOVA.SweeperMode", "dry").status, 0);
    EXPECT_EQ(item("kova.sweepermode"), "Dry");
    EXPECT_EQ(set("CARTS.LastPlayer", "5").status, 0);
    EXPECT_EQ(item("CARTS.LastPlayer"), "Cart Player 5");
    EXPECT_EQ(item("CARTS.FirstPlayer"), "Cart Player 1");
    EXPECT_EQ(item("LINKS.LastPlayer"), "the last Cart Player");
    EXPECT_EQ(set("KOVA.MaxFadeTime", "8").status, 0);
    EXPECT_EQ(item("KOVA.EachFadeTime"), "0");
    EXPECT_EQ(set("KOVA.EachFadeTime", "5").status, 0);
    EXPECT_EQ(item("KOVA.MaxFadeTime"), "0");
    EXPECT_EQ(set("KOVA.AutoRestartDelay", "off").status, 0);
    EXPECT_EQ(item("KOVA.AutoRestartDelay"), "off");
    EXPECT_EQ(set("LINKS.Colour", "0x0000ff").status, 0);
    EXPECT_EQ(item("LINKS.Colour"), "0x0000ff");
    EXPECT_EQ(item("KOVA.LogBackColor"), "0x8000000f");
    EXPECT_EQ(set("KOVA.Cart_Normal_Fade", "2.5").status, 0);
    EXPECT_EQ(item("KOVA.Cart_Normal_Fade"), "2.5");
    EXPECT_EQ(set("ADVERTS.LogPath", "C:\\TOLVEX\\LOGS\\").status, 0); // mended as in the window
    EXPECT_EQ(item("ADVERTS.LogPath"), "C:\\TOLVEX\\LOGS");
    EXPECT_EQ(set("SEGUE.VoiceLinkChannels", "1").status, 0);
    EXPECT_EQ(item("SEGUE.VoiceLinkChannels"), "1");

    const QByteArray before = read(onC("DATA/SCHEDULE/KOVA26.mdb"));
    const struct {
        const char* name;
        const char* value;
        int status;
        const char* why;
    } refused[] = {
        {"KOVA.SweeperMode", "3", 2, "is one of"},
        {"CARTS.LastPlayer", "6", 2, "is a player from 1 to 5"},
        {"KOVA.PreCueTime", "-1", 2, "from 0 to 32767"},
        {"KOVA.PreCueTime", "ten", 2, "from 0 to 32767"},
        {"LINKS.Colour", "red", 2, "is a colour"},
        {"MUSIC.SentBy", "me", 2, "is written by other programs"},
        {"KOVA.None", "1", 2, "There is no item"},
        {"SEGUE.PreviewLength", "301", 3, "You can only set from 1 to 300 seconds"},
        {"SEGUE.VoiceEndCart", "8000", 3, "You must choose a valid cart number range"},
        {"KOVA.AutoRestartDelay", "32001", 3, "You must set the automatic restart delay"},
        {"KOVA.SCComputerPort", "5", 3, "it would be stored as \"0\""},
        {"KOVA.LogFont.FontSize", "0", 2, "from 1 to 32767"},
        {"KOVA.LogFont.FontName", " ", 2, "has to be the name of a font"},
        {"SEGUE.VoiceLinkFormat", "77", 2, "Format 77 44.100 kHz"},
        {"SEGUE.VoiceLinkChannels", "77", 2, "77 Channels"},
        {"SEGUE.VoiceLinkKhz", "0", 2, "cannot be recorded here"},
    };
    for (const auto& each : refused) {
        const Result result = set(each.name, each.value);
        EXPECT_EQ(result.status, each.status) << each.name;
        EXPECT_TRUE(result.err.contains(each.why)) << result.err.toStdString();
    }
    EXPECT_EQ(read(onC("DATA/SCHEDULE/KOVA26.mdb")), before);
    EXPECT_EQ(run({"automation", "settings", onC("DATA/SCHEDULE/KOVA26.mdb"), "get", "MUSIC.LogPath"}).out,
              "C:\\DATA\\LOGS\n");
    EXPECT_EQ(run({"--json", "automation", "settings", "list"}).json().array().size(), 110);
    EXPECT_EQ(automation({"settings", "put", "A", "B"}).status, 2);
}

TEST_F(CtlAutomation, EntersTheHistoryAndSaysWhatIsMissing) {
    automation({"choose", "KOVA26"});
    EXPECT_EQ(automation({"settings", "set", "KOVA.PreCueTime", "30"}).status, 0); // there is no history yet
    run({"db", "create", "C:\\DATA\\USERS\\USERS25", "--type", "0"});
    EXPECT_EQ(automation({"settings", "set", "KOVA.PreCueTime", "31"}).status, 0);
    const QJsonArray history = run({"--json", "users", "history"}).json().array();
    ASSERT_EQ(history.size(), 1);
    EXPECT_EQ(history[0]["action"].toInt(), 129);
    EXPECT_EQ(history[0]["status"].toInt(), 1);

    const QString log = onC("DATA/SCHEDULE/KOVA26.mdb");
    ASSERT_TRUE(QFile::copy(log, onC("DATA/SCHEDULE/HALF.MDB")));
    QFile(onC("DATA/SCHEDULE/HALF.MDB")).resize(QFileInfo(log).size() - 1000);
    const Result list = automation({"list"});
    EXPECT_TRUE(list.err.contains("The end of C:\\DATA\\SCHEDULE\\HALF.MDB is missing"))
        << list.err.toStdString();
    EXPECT_FALSE(list.err.contains("KOVA26"));
    EXPECT_FALSE(run({"status"}).out.contains("automation database"));
    EXPECT_EQ(run({"db", "rename", log, "OTHER"}).status, 0);
    EXPECT_TRUE(run({"status"}).out.contains("The automation database C:\\DATA\\SCHEDULE\\KOVA26.mdb could"));
}

TEST_F(CtlAutomation, CopiesRenamesAndDeletesDatabases) {
    const QString log = "C:\\DATA\\SCHEDULE\\KOVA26.mdb";
    EXPECT_EQ(run({"db", "copy", log, "backup"}).status, 2);
    EXPECT_EQ(run({"db", "copy", log, "SECOND"}).status, 0);
    EXPECT_EQ(run({"db", "copy", log, "SECOND"}).status, 3);
    EXPECT_EQ(
        run({"--json", "db", "info", "C:\\DATA\\SCHEDULE\\SECOND.MDB"}).json()["description"].toString(),
        "Copy of Log");
    EXPECT_EQ(run({"db", "rename", log, "second"}).status, 3);
    EXPECT_EQ(run({"db", "rename", log, "THIRD.DAT"}).status, 0);
    EXPECT_EQ(run({"db", "rename", "C:\\DATA\\SCHEDULE\\third.dat", "THIRD"}).status, 0);
    EXPECT_EQ(run({"db", "delete", log}).status, 1);
    const QString third = "C:\\DATA\\SCHEDULE\\THIRD.MDB";
    const Result kept = run({"db", "delete", third});
    EXPECT_EQ(kept.status, 1); // the question's default is No
    EXPECT_TRUE(kept.err.contains("delete this K-Ova V2.6 Database (Log)?")) << kept.err.toStdString();
    const Result deleted = shell("mkdir " + home() + "/share; XDG_DATA_HOME=" + home() +
                                 "/share \"$ctl\" --yes db delete '" + third + "'");
    EXPECT_EQ(deleted.status, 0);
    EXPECT_TRUE(deleted.err.contains("is now in the trash")) << deleted.err.toStdString();
    EXPECT_EQ(QDir(onC("DATA/SCHEDULE")).entryList(QDir::Files), QStringList{"SECOND.MDB"});
}

} // namespace tolvex::tests
