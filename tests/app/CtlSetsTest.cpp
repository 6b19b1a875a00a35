// Configuration sets from a shell.
#include "RunCtl.h"

#include <QJsonArray>
#include <QJsonObject>

using tolvex::tests::Ctl;

TEST_F(Ctl, KeepsConfigurationSets) {
    run({"profile", "set", "tolvex.ini", "FileLocations", "Data", "C:\\DATA"});
    EXPECT_EQ(run({"--json", "sets", "list"}).json().array(),
              (QJsonArray{QJsonObject{{"file", "tolvex.ini"},
                                      {"description", "Standard Configuration"},
                                      {"dataLocation", "C:\\DATA"},
                                      {"place", "localdrive"}}}));
    EXPECT_EQ(run({"--yes", "sets", "delete", "tolvex.ini"}).status, 1);
    EXPECT_EQ(run({"sets", "copy", "TOLVEX.INI", "studio2", "Second"}).status, 0);
    EXPECT_EQ(run({"sets", "copy", "tolvex.ini", "studio2.ini", "again"}).status, 3);
    EXPECT_EQ(run({"sets", "copy", "tolvex.ini", "no-hyphen", "x"}).status, 2);
    EXPECT_EQ(run({"sets", "copy", "gone.ini", "x", "x"}).status, 1);
    EXPECT_EQ(run({"sets", "rename", "studio2.ini", QString(31, 'x')}).status, 2);
    EXPECT_EQ(run({"sets", "rename", "studio2.ini", "News"}).status, 0);
    EXPECT_EQ(run({"profile", "get", "studio2.ini", "General", "ConfigName"}).out, "News\n");
    EXPECT_EQ(run({"profile", "get", "studio2.ini", "FileLocations", "Data"}).out, "C:\\DATA\n");
    // Without an answer the question gets its default, No.
    EXPECT_EQ(run({"sets", "delete", "studio2.ini"}).status, 1);
    EXPECT_EQ(run({"--yes", "sets", "delete", "studio2.ini"}).status, 0);
    EXPECT_FALSE(QFile::exists(onC("WINDOWS/studio2.ini")));
    EXPECT_EQ(run({"sets", "list"}).out.count('\n'), 2);
}
