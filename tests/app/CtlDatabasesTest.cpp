// Databases of the suite and the users database from a shell.
#include "RunCtl.h"

#include <QJsonArray>
#include <QJsonObject>

using tolvex::tests::Ctl;

TEST_F(Ctl, MakesChecksAndDescribesDatabases) {
    EXPECT_EQ(run({"db", "create", "C:\\D\\LOG", "--type", "x"}).status, 2);
    EXPECT_EQ(run({"db", "create", "C:\\D\\LOG", "--type", "14", "--title", "Log"}).status, 0);
    EXPECT_EQ(run({"db", "create", "C:\\D\\LOG", "--type", "14"}).status, 3);
    EXPECT_EQ(run({"db", "tables", "C:\\D\\LOG.mdb"}).out.count('\n'), 7);
    EXPECT_EQ(run({"db", "validate", "C:\\D\\LOG.mdb"}).status, 0);
    EXPECT_EQ(run({"db", "validate", "C:\\D\\NEW.mdb"}).status, 1);
    EXPECT_EQ(run({"--no", "db", "validate", "C:\\D\\NEW.mdb", "--type", "1"}).status, 1);
    EXPECT_EQ(run({"db", "describe", "C:\\D\\LOG.mdb", QString(201, u'x')}).status, 2);
    EXPECT_EQ(run({"db", "describe", "C:\\D\\LOG.mdb", "Second log"}).status, 0);
    const QJsonObject info = run({"--json", "db", "info", onC("D/LOG.mdb")}).json().object();
    EXPECT_EQ(info["description"].toString(), "Second log");
    EXPECT_EQ(info["version"].toDouble(), 2.6);
    EXPECT_EQ(info["type"].toInt(), 14);
    EXPECT_TRUE(info["lastAccessed"].isNull());
    EXPECT_EQ(run({"db", "info", "C:\\D\\NONE"}).status, 1);
    EXPECT_EQ(run({"--json", "db", "find", "C:\\D", "--type", "14"}).json().object(),
              (QJsonObject{{"count", 1}, {"firstName", "LOG.mdb"}}));
    EXPECT_EQ(run({"db", "find", "C:\\D", "--type", "1"}).status, 1);

    const QStringList command{"db", "settings", "C:\\D\\LOG.mdb"};
    EXPECT_EQ(run(command + QStringList{"set", "BeenSet", "1"}).status, 0);
    EXPECT_EQ(run(command + QStringList{"get", "beenset"}).out, "1\n");
    EXPECT_EQ(run(QStringList{"--json"} + command + QStringList{"list"}).json().array(),
              (QJsonArray{QJsonObject{{"item", "BeenSet"}, {"value", "1"}}}));
    EXPECT_EQ(run(command + QStringList{"set", "BeenSet", ""}).status, 0);
    EXPECT_EQ(run(command + QStringList{"get", "BeenSet"}).status, 1);
    EXPECT_EQ(run(command + QStringList{"put", "BeenSet", "1"}).status, 2);

    QFile(onC("D/LOG.mdb")).setPermissions(QFile::ReadOwner);
    const Result refused = run(command + QStringList{"set", "BeenSet", "1"});
    EXPECT_EQ(refused.status, 3);
    EXPECT_TRUE(refused.err.contains("not stored: the file may not be written")) << refused.err.toStdString();
    EXPECT_EQ(run(command + QStringList{"get", "BeenSet"}).status, 1);
    EXPECT_EQ(run({"db", "describe", "C:\\D\\LOG.mdb", "Third log"}).status, 3);
    EXPECT_EQ(run({"db", "create", "C:\\D\\LONG", "--type", "14", "--title", QString(201, u't')}).status, 3);
    EXPECT_EQ(QDir(onC("D")).entryList(QDir::Files), QStringList{"LOG.mdb"});
}

TEST_F(Ctl, TellsUsersGroupsAndHistory) {
    run({"profile", "set", "tolvex.ini", "FileLocations", "Data", "C:\\DATA"});
    EXPECT_EQ(run({"users", "list"}).status, 1);
    EXPECT_FALSE(QFile::exists(onC("DATA/USERS")));
    EXPECT_EQ(run({"users", "process"}).status, 0);
    const QString file = onC("DATA/USERS/USERS25.MDB");
    for (const char* login : {"ANN", "BOB"})
        EXPECT_EQ(run({"db", "query", file,
                       QStringLiteral("INSERT INTO Users (LoginName, ExpirationDate) VALUES ('%1', 40000)")
                           .arg(login)})
                      .status,
                  0);
    EXPECT_EQ(run({"users", "process"}).status, 0);
    const QJsonArray users = run({"--json", "users", "list"}).json().array();
    ASSERT_EQ(users.size(), 2);
    EXPECT_EQ(users[0]["loginName"].toString(), "ANN");
    EXPECT_EQ(users[0]["accountStatus"].toInt(-1), 0);
    EXPECT_TRUE(users[0]["expirationDate"].isNull());
    const QJsonArray history = run({"--json", "users", "history", "--last", "1"}).json().array();
    ASSERT_EQ(history.size(), 1);
    EXPECT_EQ(history[0]["notes"].toString(), "BOB");
    EXPECT_EQ(history[0]["action"].toInt(), 21);
    EXPECT_EQ(run({"users", "history"}).out.count('\n'), 3);
    EXPECT_EQ(run({"--json", "users", "groups"}).json().array().size(), 0);
    EXPECT_EQ(run({"users", "history", "--last", "0"}).status, 2);
}
