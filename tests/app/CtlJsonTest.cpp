// With --json a script gets exactly one document, whatever happens to the command.
#include "RunCtl.h"

#include "app/ctl/Commands.h"

#include <QJsonArray>
#include <QJsonObject>

using tolvex::tests::Ctl;

namespace {

template<class Result>
QString errorText(const Result& result) {
    const QJsonObject all = result.json().object();
    EXPECT_EQ(all.keys(), QStringList("error")) << result.out.toStdString();
    EXPECT_TRUE(all["error"]["number"].isDouble());
    return all["error"]["text"].toString();
}

} // namespace

TEST_F(Ctl, GivesADocumentForEachCommandThatIsRefusedOrFails) {
    for (const tolvex::ctl::Command& command : tolvex::ctl::AllCommands()) {
        QStringList words = QString(command.words).split(' ');
        for (int n = command.fewest(); n > 0; --n)
            words << "x";
        if (words == QStringList{"serve"}) // would not end on its own
            words << "--seconds"
                  << "1"
                  << "--port"
                  << "0";
        const Result result = run(QStringList{"--json", "--no"} + words);
        SCOPED_TRACE(words.join(' ').toStdString());
        ASSERT_FALSE(result.json().isNull()) << result.out.toStdString() << result.err.toStdString();
        if (result.status >= 2) {
            EXPECT_FALSE(errorText(result).isEmpty());
            EXPECT_FALSE(result.err.isEmpty());
        }
        if (command.most() < 0)
            continue;
        const Result wrong = run(QStringList{"--json"} + words + QStringList(9, "too many"));
        EXPECT_TRUE(wrong.status == 2 && errorText(wrong).startsWith("Expected: "))
            << wrong.out.toStdString();
    }
}

TEST_F(Ctl, TellsInItsDocumentWhatFailedAndTheNumberOfTheError) {
    EXPECT_EQ(errorText(run({"--json", "settings", "set", "Display", "ShowClock", "7"})),
              "[Display] ShowClock: \"7\" is neither on (1) nor off (0)");
    EXPECT_EQ(run({"settings", "set", "Audio", "KHz", "fast"}).err,
              "[Audio] KHz: \"fast\" is not a whole number\n");
    EXPECT_TRUE(
        errorText(run({"status", "--nonsense", "--json"})).startsWith("There is no option \"--nonsense\""));
    const Result unwritable = run({"--json", "profile", "set", folder_.filePath("no/x.ini"), "s", "k", "v"});
    EXPECT_EQ(unwritable.status, 3);
    EXPECT_EQ(unwritable.json()["error"]["number"].toInt(), 3);
    // The system's own messages about a failure, in a box or on standard error.
    write(folder_.filePath("bad.mdb"), QByteArray(8192, 'x'));
    const Result bad = run({"--json", "db", "info", folder_.filePath("bad.mdb")});
    EXPECT_EQ(bad.status, 3);
    EXPECT_TRUE(errorText(bad).contains("bad.mdb could not be read")) << bad.out.toStdString();
    EXPECT_EQ(run({"--json", "db", "tables", folder_.filePath("bad.mdb")}).json()["error"]["number"].toInt(),
              3343);
    // The command's partial output comes with its error.
    write(
        folder_.filePath("x.json"),
        R"({"format":"tolvex-settings","version":1,"settings":{"local":{"Audio":{"KHz":1.5,"Channels":1}}}})");
    const Result refused = run({"--json", "settings", "import", "x.json"});
    EXPECT_EQ(refused.status, 3);
    EXPECT_EQ(errorText(refused), "[Audio] KHz: a value of that kind cannot be stored");
    EXPECT_EQ(refused.json()["error"]["details"]["changes"][0]["key"], "Channels");
    // A question that was answered No.
    run({"sets", "list"});
    run({"sets", "copy", "tolvex.ini", "two", "Second"});
    const Result declined = run({"--json", "--no", "sets", "delete", "two.ini"});
    EXPECT_EQ(declined.status, 1);
    EXPECT_EQ(errorText(declined), "The answer is no.");
}

TEST_F(Ctl, GivesADocumentForWhatWasSet) {
    EXPECT_EQ(run({"--json", "settings", "set", "Display", "ShowClock", "-1"}).json()["value"], true);
    EXPECT_EQ(run({"--json", "profile", "set", "t.ini", "s", "k", " v "}).json()["value"], "v");
    EXPECT_EQ(run({"--json", "registry", "set", "Software\\X", "n", "5", "--dword"}).json()["value"], 5);
    EXPECT_EQ(run({"--json", "profile", "delete", "t.ini", "s"}).json()["done"], true);
    EXPECT_EQ(run({"--json", "hardware", "card", "2", "joystick"}).json()["done"], true);
    EXPECT_EQ(run({"--json", "hardware", "set", "2", "1", "--type", "input"}).json()["line"], 1);
    run({"db", "create", "C:\\D\\LOG", "--type", "14"});
    EXPECT_EQ(run({"--json", "db", "settings", "C:\\D\\LOG", "set", "A", "1"}).json()["item"], "A");
    EXPECT_EQ(
        run({"--json", "db", "import", "C:\\D\\LOG.mdb", "Settings"}, "{\"Item\":\"B\"}\n").json()["rows"],
        1);
    EXPECT_EQ(run({"--json", "db", "query", "C:\\D\\LOG.mdb", "SELECT * FROM Settings WHERE Item = 'Z'"}).out,
              "");
}
