// Commands and serial ports from a shell.
#include "RunCtl.h"

#include "TestPlaces.h"
#include "support/PseudoTerminal.h"
#include "support/WaitFor.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QTcpServer>
#include <QTcpSocket>

namespace tolvex::tests {
namespace {

class CtlCommands : public Ctl {
protected:
    void SetUp() override {
        ASSERT_EQ(run({"profile", "set", "tolvex.ini", "FileLocations", "Data", "C:\\DATA"}).status, 0);
        QDir().mkpath(onC("DATA"));
    }
    QByteArray file(const QString& name) const { return read(onC("DATA/Commands/" + name + ".TCD")); }
    QJsonObject shown(const QString& name) const {
        return run({"--json", "commands", "show", name}).json().object();
    }
    // Runs the program while the test's own event loop runs, for a device or peer in the test.
    Result runBeside(const QStringList& words) const {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("TOLVEX_HOME", home());
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(TOLVEX_BIN_DIR "/tolvexctl"), words);
        EXPECT_TRUE(waitFor([&] { return process.state() == QProcess::NotRunning; }));
        return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
    }
};

} // namespace

TEST_F(CtlCommands, MakeChangeAndDeleteCommands) {
    EXPECT_EQ(run({"commands", "list"}).status, 1);
    EXPECT_EQ(run({"commands", "add", "Door", "--serial", "2", "--settings", "1200,e,7,2", "--handshaking",
                   "both", "--use-existing", "--text", "\\x02open\\r", "--escapes"})
                  .status,
              0);
    EXPECT_EQ(shown("door"), (QJsonObject{{"name", "Door"},
                                          {"type", "serial"},
                                          {"leaveOpen", false},
                                          {"useExisting", true},
                                          {"port", 2},
                                          {"settings", "1200,e,7,2"},
                                          {"handshaking", "both"},
                                          {"text", "\\x02open\\r"},
                                          {"bytes", "Am9wZW4N"}}));
    EXPECT_EQ(file("Door").mid(1024), QByteArray("\x02open\r"));
    EXPECT_EQ(run({"commands", "add", "DOOR", "--external", "--text", "x"}).status, 1);
    EXPECT_EQ(run({"commands", "add", "Bare", "--tcp", "::1", "--text", "x"}).status, 2);

    QByteArray bytes;
    for (int i = 0; i < 256; ++i)
        bytes += char(i);
    EXPECT_EQ(
        run({"commands", "add", "All", "--tcp", "[::1]:4001", "--leave-open", "--file", "-"}, bytes).status,
        0);
    EXPECT_EQ(file("All").mid(1024), bytes);
    EXPECT_TRUE(
        run({"commands", "add", "Long", "--serial", "1", "--text", QString(2000, 'x')}).err.isEmpty());
    const QByteArray shownLong = run({"commands", "show", "Long"}).out;
    EXPECT_TRUE(shownLong.size() < 1000 && shownLong.contains("2000 bytes in all")) << shownLong.constData();
    EXPECT_EQ(run({"--yes", "commands", "delete", "Long"}).status, 0);
    EXPECT_EQ(shown("All")["address"], "::1");
    write(onC("text.bin"), "a\\r");
    EXPECT_EQ(run({"commands", "add", "Start", "--external", "--window", "minimized-background", "--file",
                   "C:\\text.bin"})
                  .status,
              0);
    EXPECT_EQ(shown("Start")["windowStyle"], "minimized-background");
    EXPECT_EQ(file("Start").mid(1024), QByteArray("a\\r"));
    const QJsonArray list = run({"--json", "commands", "list"}).json().array();
    ASSERT_EQ(list.size(), 3);
    EXPECT_EQ(list[0].toObject(),
              (QJsonObject{{"name", "All"}, {"type", "tcp"}, {"leaveOpen", true}, {"useExisting", false}}));
    EXPECT_TRUE(run({"commands", "list"}).out.contains("External Command  Start    n/a            n/a"));

    // Options that are left out change nothing; an empty text is questioned.
    EXPECT_EQ(run({"commands", "edit", "all", "--use-existing", "--close", "--name", "Everything"}).status,
              0);
    EXPECT_EQ(file("Everything").mid(1024), bytes);
    EXPECT_FALSE(QFile::exists(onC("DATA/Commands/All.TCD")));
    EXPECT_EQ(shown("Everything")["leaveOpen"], false);
    EXPECT_EQ(shown("Everything")["useExisting"], true);
    EXPECT_EQ(run({"--no", "commands", "edit", "Door", "--text", ""}).status, 1);
    EXPECT_EQ(file("Door").size(), 1024 + 6);
    EXPECT_EQ(run({"--yes", "commands", "edit", "Door", "--text", ""}).status, 0);
    EXPECT_EQ(file("Door").size(), 1024);
    EXPECT_EQ(run({"commands", "edit", "Door", "--udp", "studio2:4001"}).status, 0);
    EXPECT_EQ(shown("Door")["type"], "udp");

    EXPECT_EQ(run({"hardware", "card", "1", "rs232", "1"}).status, 0);
    EXPECT_EQ(run({"hardware", "set", "1", "3", "--type", "input", "--description", "Open the door"}).status,
              0);
    const Result asked = run({"commands", "delete", "door"});
    EXPECT_EQ(asked.status, 1);
    EXPECT_TRUE(asked.err.contains("Hardware card 1, line 3 names it: Open the door"))
        << asked.err.constData();
    EXPECT_EQ(run({"--yes", "commands", "delete", "door"}).status, 0);
    EXPECT_EQ(run({"--yes", "commands", "delete", "door"}).status, 1);
}

TEST_F(CtlCommands, WhatTheEditorRefusesIsRefused) {
    const struct {
        QStringList words;
        const char* said;
    } rows[] = {
        {{"add", "a_b", "--serial", "1", "--text", "x"}, "You can only use numbers, letters and spaces"},
        {{"add", "A", "--text", "x"}, "One of --serial, --tcp, --udp and --external is expected."},
        {{"add", "A", "--serial", "1", "--tcp", "h:1"}, "One of --serial"},
        {{"add", "A", "--serial", "5", "--text", "x"}, "it can be 1, 2, 3, 4."},
        {{"add", "A", "--serial", "1", "--settings", "9600", "--text", "x"}, "do not appear to be correct."},
        {{"add", "A", "--serial", "1", "--handshaking", "x"}, "none, xonxoff, rtscts, both"},
        {{"add", "A", "--tcp", "studio2"}, "\"studio2:4001\""},
        {{"add", "A", "--tcp", "h:0", "--text", "x"}, "You must enter an IP Port to connect to"},
        {{"add", "A", "--tcp", "h:1", "--settings", "x"}, "--settings does not belong"},
        {{"add", "A", "--udp", "h:1", "--text", "a\\q", "--escapes"}, "is not an escape"},
        {{"add", "A", "--udp", "h:1", "--text", "x", "--file", "y"}, "exclude each other"},
        {{"add", "A", "--external", "--window", "big"}, "it can be normal"},
    };
    for (const auto& row : rows) {
        const Result result = run(QStringList{"commands"} + row.words);
        EXPECT_EQ(result.status, 2) << row.words.join(' ').toStdString();
        EXPECT_TRUE(result.err.contains(row.said)) << result.err.constData();
    }
    EXPECT_EQ(run({"commands", "list"}).status, 1);
    EXPECT_TRUE(run({"commands", "add", "A", "--serial", "1", "--settings", "x,n,8,1", "--text", "x"})
                    .err.contains("No port will take these settings"));
    for (const char* word : {"show", "edit", "run", "delete"})
        EXPECT_EQ(run({"commands", word, "Nobody"}).status, 1) << word;
}

TEST_F(CtlCommands, RunSendsForReal) {
    PseudoTerminal device(PseudoTerminal::Hold::Free);
    ASSERT_TRUE(QFile::link(device.path(), home() + "/dosdevices/com3"));
    device.onReceive = [&device](const QByteArray&) { device.send("OK\r"); };
    EXPECT_EQ(run({"commands", "add", "Ask", "--serial", "3", "--text", "?"}).status, 0);
    const Result sent = runBeside({"--json", "commands", "run", "Ask"});
    EXPECT_EQ(sent.status, 0) << sent.err.constData();
    EXPECT_EQ(sent.json().object(),
              (QJsonObject{{"name", "Ask"}, {"to", "COM3"}, {"bytes", 1}, {"text", "?"}}));
    EXPECT_EQ(device.received, QByteArray("?"));
    EXPECT_EQ(runBeside({"--json", "commands", "run", "Ask", "--answer"}).json()["answer"], "OK\\r");

    const QJsonObject port = run({"--json", "ports", "list"}).json().array()[2].toObject();
    EXPECT_EQ(port["name"], "COM3");
    EXPECT_EQ(port["device"], device.path());
    EXPECT_EQ(port["present"], true);
    device.unplug();
    const Result gone = run({"commands", "run", "Ask"});
    EXPECT_EQ(gone.status, 3);
    EXPECT_TRUE(gone.err.contains("which is not there")) << gone.err.constData();

    write(onC("DATA/Commands/Empty.TCD"), "");
    const Result empty = run({"commands", "run", "Empty"});
    EXPECT_EQ(empty.status, 3);
    EXPECT_TRUE(empty.err.contains("it has 0 bytes")) << empty.err.constData();

    EXPECT_EQ(run({"commands", "add", "Net", "--tcp", "127.0.0.1:1", "--text", "x"}).status, 0);
    const Result refused = run({"commands", "run", "Net"});
    EXPECT_EQ(refused.status, 3);
    EXPECT_TRUE(refused.err.contains("Connection refused")) << refused.err.constData();
}

} // namespace tolvex::tests
