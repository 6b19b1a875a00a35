// A machine with databases, and what independent readers see in them.
#pragma once

#include "TestPlaces.h"
#include "databases/store/SuiteDatabase.h"
#include "databases/suite/DatabaseInformation.h"
#include "databases/suite/DatabaseKinds.h"
#include "databases/suite/ValidateDatabase.h"
#include "support/MachineFolder.h"
#include "support/ScriptedPrompts.h"

#include <QProcess>

namespace tolvex::tests {

class DatabasesTest : public testing::Test {
protected:
    // Servers are those declared by the tests, never those of this machine; the driver manager reads the list
    // once.
    DatabasesTest() { qputenv("ODBCSYSINI", TOLVEX_ODBC_FOLDER); }

    // Makes a database of a kind with its Description row.
    void make(const QString& path, qint32 type, QString title = QStringLiteral("A title")) const {
        ASSERT_EQ(ValidateDatabase(path, type, true, &title), 0) << prompts.texts().join('|').toStdString();
    }

    // Adds a Settings table with this many long values.
    static void fill(const QString& path, int count) {
        auto database = OpenSuiteDatabase(path);
        CheckTable(*database, SettingsTableSchema());
        database->begin();
        auto rows = database->open("Settings", RecordsetMode::Table);
        for (int i = 0; i < count; ++i) {
            rows->addNew();
            rows->set("Item", QString::number(i));
            rows->set("Value", QString(1500, u'v'));
            rows->update();
        }
        rows.reset();
        database->commit();
        database->close();
    }

    // What a program of mdbtools prints about a database, without the line end.
    QString mdb(const char* program, const QString& path, const QStringList& words = {}) const {
        QProcess process;
        process.start(QLatin1String(program), QStringList{machine.host(path)} + words);
        EXPECT_TRUE(process.waitForFinished()) << program;
        EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
        return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
    }
    // Rows of a table without the heading, separated by "|"; fractions as in mdb-export ("2.5999999").
    std::string rows(const QString& path, const QString& table) const {
        return mdb("mdb-export", path, {QStringLiteral("-H"), QStringLiteral("-Q"), table})
            .replace(u'\n', u'|')
            .toStdString();
    }

    QStringList texts() const { return prompts.texts(); }

    TestMachine machine;
    ScriptedPrompts prompts;
};

} // namespace tolvex::tests
