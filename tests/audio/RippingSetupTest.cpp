// The settings for CD ripping: checked, stored beside the audio, shared with other workstations; and the test
// of a server of CD titles against servers on this computer.
#include "SetupTest.h"

#include "audio/ripping/RippingSetup.h"
#include "audio/ripping/ServerTest.h"
#include "support/WaitFor.h"
#include "support/WithoutRights.h"

#include <QTcpServer>
#include <QTcpSocket>

using namespace tolvex;
using namespace tolvex::tests;

namespace {

class RippingSetupTest : public SetupTest {
protected:
    RippingSetupTest() {
        setup.allowCddb = true;
        setup.server = " titles.example.com ";
        setup.email = " a@b.c ";
    }
    SetupOutcome store() { return StoreRippingSetup(setup, shown, settings); }
    QByteArray file() const { return machine.read(wallIni); }

    RippingSetup shown = LoadRippingSetup(settings);
    RippingSetup setup = shown;
};

} // namespace

TEST_F(RippingSetupTest, ComesUpWithTheDefaultsAndStoresSevenKeysInTheirOrder) {
    EXPECT_FALSE(shown.askFirst || shown.allowCddb || shown.allowSubmissions);
    EXPECT_TRUE(shown.autoTop && shown.normalise);
    EXPECT_EQ(shown.level, 63);
    EXPECT_EQ(shown.server, "gnudb.gnudb.org");
    machine.write(wallIni, "[Audiowall]\r\nNoCarts=12\r\n; ours\r\n[CDDB]\r\nOther=1\r\n");
    platform::ForgetProfiles();
    setup.level = 0;
    setup.askFirst = true;
    EXPECT_TRUE(store().stored());
    EXPECT_EQ(file(), "[Audiowall]\r\nNoCarts=12\r\n; ours\r\n[CDDB]\r\nOther=1\r\nAllowCDDB=1\r\n"
                      "ServerAddress=titles.example.com\r\nEmailAddress=a@b.c\r\nAllowSubmit=0\r\n"
                      "[CDRipping]\r\nAskBeforeProcess=1\r\nAutoTopAudio=1\r\nNormaliseAudioPercent=0\r\n");
    EXPECT_EQ(settings.ServerAddress, "titles.example.com");
    EXPECT_EQ(settings.AskBeforeProcess, -1);
    // 0 reads back as off; nothing that is asked for CD titles is checked while they are not looked up.
    setup = shown = LoadRippingSetup(settings);
    EXPECT_FALSE(setup.normalise);
    EXPECT_EQ(setup.level, 63);
    setup.allowCddb = false;
    setup.server = "none";
    setup.email.clear();
    setup.port = 0;
    EXPECT_TRUE(store().stored());
    EXPECT_EQ(value("CDDB", "ServerAddress", wallIni), "none");
    EXPECT_EQ(value("CDDB", "EmailAddress", wallIni), "");
    EXPECT_EQ(value("CDRipping", "NormaliseAudioPercent", wallIni), "0");
}

TEST_F(RippingSetupTest, RefusesInOrderAndStoresNothingThen) {
    const QString percent = "You must specify a percentage from 0 to 100 for the Normalise Percentage";
    const QString server =
        "You must specify a valid CDDB Server to use to read CD Titles\n\nNote that FreeDB "
        "Servers do not require an account, whilst CDDB servers do";
    const QString port =
        "You must specify a Port to connect to the CDDB Server on.\n\nNormally this is port 8880";
    const QString email = "You must enter a valid e-mail address to use CDDB Servers\n\nThis is normally the "
                          "email address of the System Administrator";
    const auto expect = [this](const QString& message, const char* field) {
        const SetupOutcome outcome = store();
        EXPECT_EQ(outcome.message, message);
        EXPECT_EQ(outcome.field, field);
    };
    setup.level = 101;
    setup.server = "  ";
    setup.port = 0;
    setup.email = "x.y";
    expect(percent, "txtNormaliseLevel");
    setup.level = -1;
    expect(percent, "txtNormaliseLevel");
    setup.normalise = false;
    expect(server, "comboCDDBServer");
    setup.server = "localhost";
    expect(server, "comboCDDBServer");
    setup.server = "a.b";
    expect(port, "txtCDDBPort");
    setup.port = 1;
    expect(email, "txtCDDBEmailAddress");
    setup.email = "a@b";
    expect(email, "txtCDDBEmailAddress");
    setup.email = QString(255, u'a') + "@b.c";
    EXPECT_TRUE(store().message.contains("longer than 254 characters"));
    setup.email = "a@b.c";
    setup.server = QString::fromUtf8("Ω.b");
    EXPECT_EQ(store().field, "comboCDDBServer");
    EXPECT_FALSE(machine.exists(wallIni));
    EXPECT_EQ(settings.ServerAddress, "");
}

TEST_F(RippingSetupTest, AFileThatMayNotBeWrittenStaysWholeAndIsNamed) {
    machine.write(wallIni, "[CDDB]\r\nServerAddress=old.example.com\r\n");
    QFile::setPermissions(machine.host(wallIni), QFile::ReadOwner | QFile::ReadOther);
    QFile::setPermissions(machine.host("D:\\WALL"), QFile::ReadOther | QFile::ExeOther | QFile::ReadOwner);
    QFile::setPermissions(machine.path(),
                          QFile::ReadOther | QFile::ExeOther | QFile::ReadOwner | QFile::ExeOwner);
    EXPECT_TRUE(PassesWithoutRights([this] {
        platform::ForgetProfiles();
        setup = shown = LoadRippingSetup(settings);
        EXPECT_EQ(setup.server, "old.example.com");
        setup.askFirst = true;
        const SetupOutcome outcome = store();
        EXPECT_EQ(outcome.message, "D:\\WALL\\Audwall.ini was not changed: it may not be written (error 5)");
        EXPECT_EQ(outcome.error, platform::ProfileAccessDenied);
        EXPECT_EQ(settings.AskBeforeProcess, 0);
    }));
    EXPECT_EQ(file(), "[CDDB]\r\nServerAddress=old.example.com\r\n");
}

// Two workstations with one audiowall.
TEST_F(RippingSetupTest, OverwritesNothingThatAnotherWorkstationStoredMeanwhile) {
    machine.write(wallIni, "[CDDB]\r\nEmailAddress=new@b.c\r\nServerAddress=theirs.example.com\r\n");
    platform::ForgetProfiles();
    setup.email = shown.email; // left alone
    setup.allowCddb = false;
    const QByteArray before = file();
    const SetupOutcome outcome = store();
    EXPECT_EQ(outcome.message,
              "Another workstation has changed these settings in the meantime:\n\nServer of CD titles.\n"
              "E-mail address sent to the server.\n\nNothing has been stored yet. What you did not "
              "change is shown as it is now; click OK again to store the rest.");
    EXPECT_EQ(file(), before);
    EXPECT_EQ(setup.email, "new@b.c");
    EXPECT_EQ(setup.server, "titles.example.com"); // the user's own
    EXPECT_TRUE(store().stored());
    EXPECT_EQ(value("CDDB", "EmailAddress", wallIni), "new@b.c");
    EXPECT_EQ(value("CDDB", "ServerAddress", wallIni), "titles.example.com");
}

TEST_F(RippingSetupTest, SaysWhatALevelIsInDecibelsAndWhichServersAreGone) {
    EXPECT_EQ(LevelInDecibels(63), "-4.0 dB");
    EXPECT_EQ(LevelInDecibels(100), "0.0 dB");
    EXPECT_EQ(LevelInDecibels(0), "");
    EXPECT_TRUE(CddbServerHint(" FreeDB.FreeDB.org").contains("closed"));
    EXPECT_TRUE(CddbServerHint("cddb.example.com").contains("example"));
    EXPECT_EQ(CddbServerHint("gnudb.gnudb.org"), "");
}

namespace {

// A server on this computer that greets as it is told, and a test that asks it.
struct Greeter {
    explicit Greeter(const QByteArray& greeting, bool closes = false) {
        server.listen(QHostAddress::LocalHost);
        QObject::connect(&server, &QTcpServer::newConnection, &server, [this, greeting, closes] {
            QTcpSocket* client = server.nextPendingConnection();
            client->write(greeting);
            if (closes)
                client->disconnectFromHost();
        });
    }
    ServerAnswer ask(std::chrono::milliseconds patience = ServerTest::Patience) {
        std::optional<ServerAnswer> got;
        ServerTest test([&](const ServerAnswer& answer) { got = answer; }, patience);
        test.start("127.0.0.1", server.serverPort());
        EXPECT_TRUE(test.running());
        EXPECT_TRUE(waitFor([&] { return got.has_value(); }));
        EXPECT_FALSE(test.running());
        return got.value_or(ServerAnswer());
    }
    QString from() const { return QStringLiteral("127.0.0.1, port %1, ").arg(server.serverPort()); }

    QTcpServer server;
};

} // namespace

TEST(ServerTest, SaysInWordsWhatAServerOfCdTitlesAnswers) {
    const struct {
        QByteArray greeting;
        bool ready;
        const char* says;
    } all[] = {
        {"201 titles CDDBP server v1.5 ready at noon\r\nmore", true,
         "is there and ready: \"201 titles CDDBP server v1.5 ready at noon\""},
        {"200 ok\n", true, "is there and ready: \"200 ok\""},
        {"433 No connections allowed\r\n", false, "takes nobody now, too many others use it"},
        {"220 mail\x07 ready\r\n", false, "answers, but not as a server of CD titles: \"220 mail? ready\""},
        {QByteArray(5000, '2'), false, "but not as a server"},
    };
    for (const auto& [greeting, ready, says] : all) {
        Greeter server(greeting);
        const ServerAnswer answer = server.ask();
        EXPECT_EQ(answer.ready, ready) << says;
        EXPECT_TRUE(answer.text.startsWith(server.from() + says) || answer.text.contains(says))
            << answer.text.toStdString();
    }
    EXPECT_TRUE(Greeter("201 half", true).ask().text.endsWith("closed the connection without a greeting."));
}

TEST(ServerTest, GivesASilentServerUpAndKnowsOneThatIsNotThere) {
    Greeter silent("");
    EXPECT_TRUE(
        silent.ask(std::chrono::milliseconds(50)).text.contains("sent no greeting within 0.05 seconds"));
    silent.server.close();
    ServerAnswer got;
    ServerTest test([&](const ServerAnswer& answer) { got = answer; });
    test.start("127.0.0.1", 1);
    EXPECT_TRUE(waitFor([&] { return !test.running(); }));
    EXPECT_TRUE(got.text.contains("nothing listens there") && !got.ready) << got.text.toStdString();
    // A test that is stopped, or that another replaces, says nothing.
    int answers = 0;
    Greeter server("201 ok\r\n");
    ServerTest stopped([&](const ServerAnswer&) { ++answers; });
    stopped.start("127.0.0.1", server.server.serverPort());
    stopped.start("127.0.0.1", server.server.serverPort());
    EXPECT_TRUE(waitFor([&] { return answers > 0; }));
    stopped.start("127.0.0.1", server.server.serverPort());
    stopped.stop();
    runEvents(20);
    EXPECT_EQ(answers, 1);
}
