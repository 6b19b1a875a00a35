// The database commands of tolvexctl, as a user runs them.
#include "TestPlaces.h"
#include "app/RunCtl.h"

#include "jet/Database.h"
#include "jet/table/TableDesign.h"

#include <QJsonArray>
#include <QJsonObject>

namespace tolvex::tests {
namespace {

class CtlDb : public Ctl {
protected:
    CtlDb() {
        jet::Database database = jet::Database::create(file().toStdString());
        jet::AppendTable(database.catalog(), {u"Settings",
                                              {{u"Item", jet::ColumnType::Text, 250, false, false, true},
                                               {u"Value", jet::ColumnType::Memo, 0, false, false, true}},
                                              {{u"Main", {{u"Item"}}, true}},
                                              {}});
        database.close();
    }
    QString file() const { return folder_.filePath("a.mdb"); }
    Result db(const char* command, const QStringList& rest = {}, const QByteArray& input = {}) const {
        return run(QStringList{"db", command, file()} + rest, input);
    }
};

TEST_F(CtlDb, MovesRowsInAndOut) {
    const QByteArray csv = "Item,Value\r\nName,\"a, \"\"b\"\"\"\r\nEmpty,\"\"\r\nNull,\r\n";
    EXPECT_EQ(db("import", {"settings"}, csv).status, 0);
    EXPECT_EQ(db("export", {"Settings"}).out, csv);
    const Result lines = run({"--json", "db", "export", file(), "Settings"});
    EXPECT_EQ(lines.out,
              "{\"Item\":\"Name\",\"Value\":\"a, \\\"b\\\"\"}\n{\"Item\":\"Empty\",\"Value\":\"\"}\n"
              "{\"Item\":\"Null\",\"Value\":null}\n");

    const Result twice = db("import", {"Settings"}, "Value,Item\nx,New\ny,NAME\n");
    EXPECT_EQ(twice.status, 3);
    EXPECT_TRUE(twice.err.contains("line 3") && twice.err.contains("3022")) << twice.err.toStdString();
    EXPECT_EQ(db("export", {"Settings"}).out, csv);
    EXPECT_EQ(run({"--json", "db", "import", file(), "Settings"}, "{\"Item\":\"J\",\"Value\":null}\n").status,
              0);
    EXPECT_EQ(db("query", {"SELECT Item FROM Settings WHERE Item > 'I' ORDER BY Item DESC"}).out,
              "Item\r\nNull\r\nName\r\nJ\r\n");
    EXPECT_EQ(run({"--json", "db", "query", file(), "DELETE FROM Settings WHERE Value IS NULL"})
                  .json()["rows"]
                  .toInt(),
              2);
    const QJsonArray tables = run({"--json", "db", "tables", file()}).json().array();
    ASSERT_EQ(tables.size(), 1);
    EXPECT_EQ(tables[0]["rows"].toInt(), 2);
}

TEST_F(CtlDb, TellsTheDesign) {
    const QJsonObject table = run({"--json", "db", "schema", file()}).json().array()[0].toObject();
    EXPECT_EQ(table["columns"][1]["type"].toString(), "Memo");
    EXPECT_EQ(table["columns"][0]["size"].toInt(), 250);
    EXPECT_TRUE(table["indexes"][0]["unique"].toBool());
    EXPECT_EQ(db("schema", {"Nothing"}).status, 1);
    EXPECT_EQ(db("export", {"Nothing"}).status, 3);
    EXPECT_EQ(db("query", {"SELECT"}).status, 3);
}

// An index of a table names a missing column. The others are listed and read; failures give the reason.
TEST_F(CtlDb, TellsABrokenTableAndListsTheOthers) {
    const QString log = onC("D/LOG.MDB");
    ASSERT_EQ(run({"db", "create", log, "--type", "14"}).status, 0);
    QByteArray bytes = read(log);
    qsizetype definition = -1;
    const QByteArray stamp("\x83\x07\x00\x00", 4); // before the columns of an index
    for (qsizetype page = 6 * 4096; definition < 0 && page < bytes.size(); page += 4096)
        if (bytes[page] == 2)
            definition = page;
    bytes[bytes.indexOf(stamp, definition) + 4] = 77;
    write(log, bytes);

    const auto details = [](const Result& failed) {
        const QJsonObject error = failed.json().object()[QLatin1String("error")].toObject();
        EXPECT_EQ(error[QLatin1String("number")].toInt(), 3428);
        return error[QLatin1String("details")].toArray();
    };
    const Result tables = run({"--json", "db", "tables", log});
    EXPECT_EQ(tables.status, 3);
    EXPECT_EQ(details(tables).size(), 6);
    EXPECT_EQ(tables.err.count("names a column that is not there"), 1) << tables.err.toStdString();
    EXPECT_EQ(details(run({"--json", "db", "schema", log})).size(), 5);
    EXPECT_EQ(run({"db", "validate", log}).status, 3);
    EXPECT_EQ(run({"db", "check", log}).status, 1);
    const Result lost = run({"--json", "db", "compact", log});
    EXPECT_EQ(lost.status, 1);
    EXPECT_EQ(lost.json().array().size(), 1);
    EXPECT_EQ(run({"db", "check", log}).status, 0);
    EXPECT_EQ(run({"db", "validate", log}).status, 0);
    EXPECT_EQ(run({"db", "tables", log}).status, 0);
}

// The index of the settings is unreadable: no item is missing, and the command fails with the reason.
TEST_F(CtlDb, ASilentRoutinesErrorIsHeard) {
    db("import", {"Settings"}, "Item,Value\na,1\n");
    EXPECT_EQ(db("settings", {"get", "a"}).out, "1\n");
    QByteArray bytes = read(file());
    for (qsizetype page = 14 * 4096; page < bytes.size(); page += 4096)
        if (bytes[page] == 4)
            bytes[page] = 9;
    write(file(), bytes);
    const Result got = db("settings", {"get", "a"});
    EXPECT_EQ(got.status, 3);
    EXPECT_TRUE(got.err.contains("is no index page") && got.err.contains("3428")) << got.err.toStdString();

    // A search skips what it cannot read, and says so.
    EXPECT_EQ(run({"db", "create", onC("D/GOOD.MDB"), "--type", "1"}).status, 0);
    QByteArray other = read(onC("D/GOOD.MDB"));
    // A column of the description, after its length.
    other.replace(other.lastIndexOf(QByteArray("\x08\0T\0y\0p\0e\0\x83", 11)) + 2, 1, "H");
    write(onC("D/OTHER.MDB"), other);
    QByteArray broken = read(onC("D/GOOD.MDB"));
    broken[2 * 4096] = 9; // the definition of the catalogue
    write(onC("D/BROKEN.MDB"), broken);
    write(onC("D/EMPTY.MDB"), {});
    const Result found = run({"db", "find", "C:\\D", "--type", "1"});
    EXPECT_EQ(found.status, 0);
    EXPECT_TRUE(found.err.contains("EMPTY.MDB is empty, or may not be read.")) << found.err.toStdString();
    EXPECT_TRUE(found.err.contains("BROKEN.MDB")) << found.err.toStdString();
    EXPECT_TRUE(found.err.contains("OTHER.MDB: The item was not found")) << found.err.toStdString();
    EXPECT_EQ(run({"db", "info", "C:\\D\\EMPTY.MDB"}).status, 3);
    const Result absent = run({"db", "find", "C:\\E", "--type", "1"});
    EXPECT_EQ(absent.status, 1);
    EXPECT_TRUE(absent.err.contains("There is no folder C:\\E.")) << absent.err.toStdString();
}

TEST_F(CtlDb, OfManyThatCreateOneDatabaseOneSucceeds) {
    QDir().mkpath(onC("D"));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("TOLVEX_HOME", home());
    std::vector<std::unique_ptr<QProcess>> creators;
    for (int i = 0; i < 6; ++i) {
        creators.push_back(std::make_unique<QProcess>());
        creators.back()->setProcessEnvironment(environment);
        creators.back()->start(
            QStringLiteral(TOLVEX_BIN_DIR "/tolvexctl"),
            {"db", "create", onC("D/RACE.MDB"), "--type", "14", "--title", QString::number(i)});
    }
    QList<int> successful;
    for (int i = 0; i < 6; ++i) {
        EXPECT_TRUE(creators[i]->waitForFinished());
        if (creators[i]->exitCode() == 0)
            successful += i;
    }
    ASSERT_EQ(successful.size(), 1);
    EXPECT_EQ(run({"--json", "db", "info", onC("D/RACE.MDB")}).json()["description"],
              QString::number(successful[0]));
}

TEST_F(CtlDb, ChecksAndCompacts) {
    db("import", {"Settings"}, "Item,Value\na,1\nb,2\n");
    const QByteArray before = read(file());
    EXPECT_EQ(db("check").status, 0);
    EXPECT_EQ(db("compact").status, 0);
    EXPECT_EQ(read(folder_.filePath("a-0001.BAK")), before);
    EXPECT_EQ(db("export", {"Settings"}).out, "Item,Value\r\na,1\r\nb,2\r\n");

    QByteArray damaged = before;
    damaged[2 * 4096 + 16] = 99; // the number of rows of a system table
    write(file(), damaged);
    const Result check = run({"--json", "db", "check", file()});
    EXPECT_EQ(check.status, 1);
    ASSERT_EQ(check.json()["faults"].toArray().size(), 1);
    EXPECT_EQ(check.json()["faults"][0]["page"].toInt(), 2);
    EXPECT_EQ(check.json()["faults"][0]["table"].toString(), "MSysObjects");
    EXPECT_EQ(db("compact").status, 0);
    EXPECT_EQ(db("check").status, 0);
    EXPECT_EQ(read(folder_.filePath("a-0002.BAK")), damaged);

    write(file(), "no database");
    EXPECT_EQ(db("compact").status, 3);
    EXPECT_EQ(read(file()), "no database");
    EXPECT_EQ(QDir(folder_.path()).entryList({"MDB*"}), QStringList());
}

} // namespace
} // namespace tolvex::tests
