// Databases on a server from a shell, through the real driver manager: with the tests' own driver, and over
// the wire.
#include "RunCtl.h"

#include "TestPlaces.h"
#include "databases/TdsServer.h"

#include <QJsonArray>
#include <QJsonObject>

using tolvex::tests::Ctl;
using tolvex::tests::TdsServer;

namespace {

class CtlServers : public Ctl {
protected:
    CtlServers() { qputenv("ODBCSYSINI", TOLVEX_ODBC_FOLDER); }

    void expectToWork(const QString& server) {
        const auto ask = [&](const QStringList& words) {
            return run(words + QStringList{"--connect", server});
        };
        EXPECT_EQ(ask({"db", "info", "LOG"}).status, 1);
        EXPECT_EQ(ask({"db", "create", "LOG", "--type", "14", "--title", "Log \u00e9"}).status, 0);
        EXPECT_EQ(ask({"db", "create", "LOG", "--type", "14"}).status, 3);
        EXPECT_EQ(ask({"db", "validate", "LOG"}).status, 0);
        EXPECT_EQ(ask({"db", "describe", "LOG", "Second ' log"}).status, 0);
        const QJsonObject info = ask({"--json", "db", "info", "LOG"}).json().object();
        EXPECT_EQ(info["description"].toString(), "Second ' log");
        EXPECT_EQ(info["fullName"].toString(), "LOG");
        EXPECT_TRUE(info["isServer"].toBool());
        EXPECT_EQ(ask({"--json", "db", "find", "--type", "14"}).json().object(),
                  (QJsonObject{{"count", 1}, {"firstName", ""}}));
        EXPECT_EQ(ask({"db", "settings", "LOG", "set", "KOVA.LogFont.FontName", "It's"}).status, 0);
        EXPECT_EQ(ask({"db", "settings", "LOG", "get", "kova.logfont.fontname"}).out, "It's\n");
        EXPECT_EQ(ask({"--json", "db", "settings", "LOG", "list"}).json().array(),
                  (QJsonArray{QJsonObject{{"item", "KOVA.LogFont.FontName"}, {"value", "It's"}}}));
        // The users' tables as well.
        EXPECT_EQ(ask({"db", "create", "USERS", "--type", "0", "--title", "Users"}).status, 0);
        EXPECT_EQ(ask({"db", "validate", "USERS"}).status, 0);
        EXPECT_EQ(ask({"db", "create", "LONG", "--type", "0", "--title", QString(201, u't')}).status, 3);
        EXPECT_EQ(ask({"db", "info", "LONG"}).status, 1);
    }
};

} // namespace

TEST_F(CtlServers, WorkWithTheOwnDriver) {
    expectToWork(QStringLiteral("DRIVER={Test Server};Server=") + folder_.path());
}

TEST_F(CtlServers, WorkOverTheWire) {
    const TdsServer server(folder_.path());
    expectToWork(server.connect());
}

TEST_F(CtlServers, ThatCannotBeReachedAreNamed) {
    EXPECT_EQ(run({"db", "find", "--type", "14"}).status, 2);
    const Result failed = run({"db", "info", "LOG", "--connect", "DSN=none;PWD=secret"});
    EXPECT_EQ(failed.status, 3);
    EXPECT_TRUE(failed.err.contains("ODBC--connection to 'none' failed.")) << failed.err.toStdString();
    EXPECT_FALSE(failed.err.contains("secret"));
    EXPECT_EQ(run({"db", "find", "--type", "14", "--connect", "DSN=none"}).status, 3);
}

// Ctrl+C ends a command that is waiting for a server, at once.
TEST_F(CtlServers, ThatHangCanBeLeft) {
    const TdsServer server(folder_.path());
    server.hang();
    QProcess process;
    process.start(TOLVEX_BIN_DIR "/tolvexctl", {"db", "info", "LOG", "--connect", server.connect()});
    ASSERT_TRUE(process.waitForStarted());
    ASSERT_FALSE(process.waitForFinished(1000)); // it waits
    ::kill(static_cast<pid_t>(process.processId()), SIGINT);
    ASSERT_TRUE(process.waitForFinished(5000));
    EXPECT_EQ(process.exitStatus(), QProcess::CrashExit);
}
