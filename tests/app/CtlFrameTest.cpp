// What every command of tolvexctl shares: words, options, help, exit status.
#include "RunCtl.h"

using tolvex::tests::Ctl;

TEST_F(Ctl, RefusesWhatItDoesNotKnowWithTheNearestMatch) {
    struct Case {
        QStringList words;
        const char* expected;
    };
    const Case cases[] = {
        {{}, "A command is expected"},
        {{"profle", "get", "a"}, "\"profile\""},
        {{"profile", "gett", "x.ini"}, "\"profile get\""},
        {{"profile"}, "get, getint, set, delete"},
        {{"status", "more"}, "Expected: tolvexctl status\n"},
        {{"profile", "get", "x.ini"}, "Expected: tolvexctl profile get FILE SECTION KEY [DEFAULT]"},
        {{"--jason", "status"}, "\"--json\""},
        {{"registry", "set", "k", "n", "1", "--word"}, "\"--dword\""},
        {{"profile", "keys", "x.ini", "s", "--dword"}, "no option \"--dword\" of \"profile keys\""},
        {{"status", "--home"}, "--home DIR"},
        {{"status", "--json=yes"}, "takes no value"},
        {{"status", "--yes", "--no"}, "not both"},
        {{"nothing", "--help"}, "There is no command"},
    };
    for (const Case& one : cases) {
        const Result result = run(one.words);
        EXPECT_EQ(result.status, 2) << one.words.join(' ').toStdString();
        EXPECT_EQ(result.out, "");
        EXPECT_TRUE(result.err.contains(one.expected)) << result.err.toStdString();
    }
    EXPECT_FALSE(QDir(home()).exists()) << "a refused command touches nothing";
}

TEST_F(Ctl, HelpsAtEveryLevel) {
    const Result all = run({"--help"});
    EXPECT_EQ(all.status, 0);
    for (const char* text : {"profile get FILE SECTION KEY [DEFAULT]", "--sys-ini FILE", "Exit status"})
        EXPECT_TRUE(all.out.contains(text)) << text;
    const Result group = run({"registry", "-h"});
    EXPECT_TRUE(group.out.contains("registry delete KEY NAME") && !group.out.contains("profile"));
    const Result one = run({"--json", "registry", "set", "--help"});
    EXPECT_TRUE(one.out.startsWith("tolvexctl registry set KEY NAME VALUE [--dword]\n"));
    EXPECT_TRUE(one.out.contains("--dword  a number"));
    EXPECT_TRUE(run({"--version"}).out.startsWith("tolvexctl "));
}

TEST_F(Ctl, OptionsStandAnywhereUntilTwoHyphens) {
    EXPECT_EQ(run({"profile", "--home=" + folder_.filePath("other"), "set", "t.ini", "s", "k", "-1"}).status,
              0);
    EXPECT_EQ(read(folder_.filePath("other/drive_c/WINDOWS/t.ini")), "[s]\r\nk=-1\r\n");
    EXPECT_EQ(run({"profile", "set", "t.ini", "s", "k", "--", "--json"}).status, 0);
    EXPECT_EQ(run({"profile", "get", "t.ini", "s", "k", "--json"}).json()["value"], "--json");
}

TEST_F(Ctl, WritesNoKeyThatHasNoName) {
    for (const QStringList& names : {QStringList{"", "k"}, {"s", ""}, {" ", "k"}, {"s", "\t"}})
        EXPECT_EQ(run(QStringList{"profile", "set", "t.ini"} + names + QStringList{"v"}).status, 2);
    EXPECT_FALSE(QFile::exists(onC("WINDOWS/t.ini")));
}

TEST_F(Ctl, SaysWhyAMachineFolderCannotBeUsed) {
    write(folder_.filePath("file"), "x");
    const Result result = run({"status", "--home", folder_.filePath("file")});
    EXPECT_EQ(result.status, 3);
    EXPECT_TRUE(result.err.contains("file"));
}
