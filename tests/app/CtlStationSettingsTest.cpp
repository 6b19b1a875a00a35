// The settings for CD ripping and for transfers from a shell: the windows' checks, texts and files.
#include "RunCtl.h"

#include <QJsonArray>
#include <QJsonObject>

using tolvex::tests::Ctl;

namespace {

class CtlStationSettings : public Ctl {
protected:
    CtlStationSettings() {
        run({"profile", "set", "tolvex.ini", "FileLocations", "Data", "C:\\DATA"});
        QDir().mkpath(onC("DATA"));
        QDir().mkpath(onC("WALL"));
        QDir().mkpath(onC("LISTS"));
    }
    QByteArray ini() const { return read(onC("DATA/TLVX_SYS.INI")); }
};

} // namespace

TEST_F(CtlStationSettings, SetsRippingAsTheWindowDoes) {
    EXPECT_EQ(run({"ripping", "show"}).err,
              "You must set the first Cart Location (in File Locations) first\n");
    EXPECT_EQ(run({"ripping", "set", "AutoTopAudio", "1"}).status, 1);
    run({"profile", "set", "tolvex.ini", "FileLocations", "Carts1", "C:\\WALL"});
    const auto refused = [this](const QStringList& keyAndValue, const QByteArray& why) {
        const Result result = run(QStringList{"ripping", "set"} + keyAndValue);
        EXPECT_EQ(result.status, 2) << why.constData();
        EXPECT_TRUE(result.err.contains(why)) << result.err.constData();
    };
    refused({"NormaliseAudioPercent", "101"}, "You must specify a percentage from 0 to 100");
    refused({"NormaliseAudioPercent", "-1"}, "You must specify a percentage from 0 to 100");
    refused({"NormaliseAudioPercent", "loud"}, "NormaliseAudioPercent: \"loud\" is not a whole number");
    refused({"AllowCDDB", "on"}, "You must enter a valid e-mail address");
    refused({"Port", "1"}, "KEY is one of AskBeforeProcess, AutoTopAudio,");
    EXPECT_FALSE(QFile::exists(onC("WALL/Audwall.ini")));
    EXPECT_EQ(run({"ripping", "set", "emailaddress", "a@b.c"}).status, 0);
    EXPECT_EQ(run({"ripping", "set", "AllowCDDB", "on"}).status, 0);
    EXPECT_EQ(run({"ripping", "set", "NormaliseAudioPercent", "0"}).status, 0);
    const QJsonObject shown = run({"--json", "ripping", "show"}).json().object();
    EXPECT_EQ(shown, (QJsonObject{{"askBeforeProcess", false},
                                  {"autoTopAudio", true},
                                  {"normaliseAudioPercent", 0},
                                  {"allowCddb", true},
                                  {"serverAddress", "gnudb.gnudb.org"},
                                  {"emailAddress", "a@b.c"},
                                  {"allowSubmit", false}}));
    refused({"EmailAddress", ""}, "You must enter a valid e-mail address");
}

TEST_F(CtlStationSettings, SetsTransfersAsTheWindowDoes) {
    EXPECT_EQ(run({"transfers", "list"}).status, 1);
    EXPECT_EQ(run({"transfers", "folder", "C:\\GONE"}).status, 3);
    EXPECT_EQ(run({"transfers", "folder", ""}).err, "You must select a directory\n");
    EXPECT_EQ(run({"transfers", "folder", "C:\\LISTS"}).status, 0);
    EXPECT_EQ(run({"transfers", "list"}).status, 1); // none yet
    EXPECT_EQ(run({"transfers", "add", "Night"}).status, 0);
    EXPECT_EQ(run({"transfers", "add", "night"}).err,
              "You already have an Opal Transport list called night\n");
    EXPECT_EQ(run({"transfers", "add", "a?b"}).status, 2);
    EXPECT_EQ(run({"transfers", "add", "News"}).status, 0);
    EXPECT_EQ(run({"transfers", "default", "Day"}).status, 1);
    EXPECT_EQ(run({"transfers", "default", "Night"}).status, 0);
    const QJsonArray lists = run({"--json", "transfers", "list"}).json().array();
    ASSERT_EQ(lists.size(), 2);
    EXPECT_EQ(lists[1].toObject()["name"], "Night");
    EXPECT_EQ(lists[1].toObject()["size"], 0);
    EXPECT_EQ(lists[1].toObject()["isDefault"], true);
    EXPECT_EQ(run({"transfers", "delete", "Night"}).status, 1); // No is the default
    EXPECT_TRUE(QFile::exists(onC("LISTS/Night.OTL")));
    EXPECT_EQ(run({"--yes", "transfers", "delete", "Night"}).status, 0);
    EXPECT_FALSE(QFile::exists(onC("LISTS/Night.OTL")));
    EXPECT_EQ(ini(), "[OPALTransfers]\r\nDirectory=C:\\LISTS\r\nDefault=\r\nPromptDeleteAfterSend=0\r\n"
                     "PromptForDestinationCart=0\r\n");
    const QJsonObject shown = run({"--json", "transfers", "show"}).json().object();
    EXPECT_EQ(shown["allowed"], true);
    EXPECT_EQ(shown["directory"], "C:\\LISTS");
    EXPECT_EQ(run({"transfers", "off"}).status, 0);
    EXPECT_EQ(ini(), "");
}
