// The console's jobs that open no form: automatic configuration, from the first start to a configured
// station, and compaction.
#include "console/forms/Station.h"

#include "console/Installation.h"
#include "console/forms/JobTile.h"
#include "console/forms/frmConfigure.h"
#include "databases/suite/DatabaseKinds.h"
#include "databases/suite/ValidateDatabase.h"
#include "station/CheckConfiguration.h"

#include <QAction>
#include <QDialog>
#include <QTextEdit>

#include <gtest/gtest.h>

using namespace tolvex;
using namespace tolvex::tests;
using platform::Answer;

namespace {

// A console that is not started yet, on a machine that has nothing or on a configured one.
struct Console : Station {
    explicit Console(const QByteArray& ini = {})
        : Station(ini) {
        if (ini.isEmpty())
            return;
        machine.makeFolder("C:\\DATA");
        machine.makeFolder("C:\\WALL");
        prompts.answers = {Answer::Yes, Answer::Yes}; // to making Terminal list and hotlist
    }
    bool start() {
        if (!form.load())
            return false;
        form.show();
        return true;
    }
    // Presses a button or triggers a menu entry, with these answers.
    void press(const char* name, std::deque<Answer> script) {
        prompts.forget();
        prompts.answers = std::move(script);
        if (auto* action = form.findChild<QAction*>(name))
            action->trigger();
        else
            find<JobTile>(form, name)->click();
        EXPECT_TRUE(prompts.answers.empty()) << name;
    }
    QStringList missing() {
        QStringList paths;
        for (const InstalledItem& item : LookAtInstallation(workstation))
            if (!item.present)
                paths += item.path;
        return paths;
    }

    frmConfigure form{workstation};
};

} // namespace

TEST(ConsoleRoutines, TheFirstStartLeadsToAConfiguredStation) {
    Console console;
    // Proceed; no network; these folders; do not exit. No audio editor is chosen.
    console.prompts.answers = {Answer::Yes, Answer::No, Answer::Yes, Answer::No};
    console.prompts.files = {std::nullopt};
    ASSERT_TRUE(console.start());
    EXPECT_TRUE(console.prompts.answers.empty());
    EXPECT_EQ(console.missing(), QStringList());
    EXPECT_EQ(CheckConfiguration(console.workstation), QString());
    const QStringList& shown = console.prompts.splashes;
    EXPECT_EQ(shown.mid(1, 3), (QStringList{"Automatic Configuration..", "Checking/Creating Databases..",
                                            "Checking/Creating Files.."}));
    EXPECT_TRUE(shown.contains("Finishing Configuration.."));
    EXPECT_EQ(shown.last(), QString());
    EXPECT_EQ(console.prompts.pointer(), platform::Pointer::Default);
    EXPECT_TRUE(find<JobTile>(console.form, "cmdHardwareSetup")->isEnabled());
    EXPECT_TRUE(TerminalListIsOpen(console.workstation.terminals));
    EXPECT_TRUE(console.workstation.users.database);
    console.form.close();
    EXPECT_FALSE(console.workstation.users.database);

    // The next start asks nothing, and there is nothing left to do.
    console.prompts.forget();
    frmConfigure again(console.workstation);
    ASSERT_TRUE(again.load());
    EXPECT_EQ(console.prompts.texts(), QStringList());
    EXPECT_TRUE(console.workstation.users.database);
}

// One message names the damaged database, and the console works.
TEST(ConsoleRoutines, StartsWithADamagedDatabase) {
    Console console(configuredIni());
    ASSERT_TRUE(console.start());
    console.form.close();
    const QString users = QStringLiteral("C:\\DATA\\USERS\\USERS25.MDB");
    QByteArray file = console.machine.read(users);
    constexpr qsizetype objects = 2 * 4096;      // the definition of the catalogue
    file.replace(objects + 0x2D, 2, "\xFF\xFF"); // its number of columns
    console.machine.write(users, file);
    console.prompts.forget();

    frmConfigure again(console.workstation);
    ASSERT_TRUE(again.load());
    again.show();
    EXPECT_TRUE(find<JobTile>(again, "cmdHardwareSetup")->isEnabled());
    ASSERT_EQ(console.prompts.texts().size(), 1);
    EXPECT_TRUE(console.prompts.texts()[0].contains(users)) << console.prompts.texts()[0].toStdString();
    EXPECT_EQ(console.machine.read(users), file);
}

TEST(ConsoleRoutines, TheProgramEndsWhenTheUserWantsToExitAfterwards) {
    Console console;
    console.prompts.answers = {Answer::Yes, Answer::Yes, Answer::Yes, Answer::Yes};
    console.prompts.files = {std::nullopt};
    console.machine.addDrive(u'M');
    console.machine.addDrive(u'U');
    EXPECT_FALSE(console.form.load());
    EXPECT_EQ(console.prompts.splashes.last(), QString()) << "nothing was loaded after that";
    console.form.close();
    EXPECT_EQ(console.value("FileLocations", "Data"), "M:");
    EXPECT_EQ(console.value("FileLocations", "Carts11"), "U:");

    // The same from the menu: the console closes.
    Console other(configuredIni());
    ASSERT_TRUE(other.start());
    other.prompts.files = {std::nullopt};
    other.press("mnuLookForSetup", {Answer::No, Answer::Yes, Answer::Yes});
    EXPECT_FALSE(other.form.isVisible());
}

TEST(ConsoleRoutines, EachButtonAndMenuEntryAsksItsOwnQuestion) {
    Console console(configuredIni());
    ASSERT_TRUE(console.start());
    const struct {
        const char* control;
        Answer answer;
        const char* question;
    } cases[] = {
        {"cmdAutoConfig", Answer::No, "Are you sure you want to allow Tolvex to automatically configure"},
        {"mnuLocalConfig", Answer::No, "Are you sure you want to allow Tolvex to automatically configure"},
        {"cmdNetworkSetup", Answer::Cancel, "Do you want Tolvex to automatically search"},
        {"mnuNetworkConfig", Answer::Cancel, "Do you want Tolvex to automatically search"},
        {"mnuLookForSetup", Answer::Cancel, "Do you have a networked system of Tolvex"},
    };
    for (const auto& [control, answer, question] : cases) {
        console.press(control, {answer});
        ASSERT_EQ(console.prompts.asked.size(), 1) << control;
        EXPECT_TRUE(console.prompts.asked[0].text.startsWith(QLatin1String(question))) << control;
    }
    console.prompts.files = {std::nullopt};
    console.press("cmdAutoConfig", {Answer::Yes, Answer::Yes});
    EXPECT_EQ(console.settings.DataLocation, "C:\\TOLVEX\\SYSTEM");
    EXPECT_EQ(console.workstation.users.information.FullName, "C:\\TOLVEX\\SYSTEM\\USERS\\USERS25.MDB");
    EXPECT_EQ(console.missing(), QStringList());
}

TEST(ConsoleRoutines, StopEndsTheSearchAndTheJob) {
    Console console;
    console.prompts.answers = {Answer::Yes};
    console.prompts.progressGoesOn = {false};
    ASSERT_TRUE(console.start());
    EXPECT_EQ(console.prompts.progressTitles, QStringList{"Looking for existing Tolvex Information"});
    EXPECT_EQ(console.prompts.texts().size(), 1) << "nothing is asked after Stop";
    EXPECT_FALSE(console.machine.exists("C:\\TOLVEX"));
    EXPECT_TRUE(find<JobTile>(console.form, "cmdAutoConfig")->isEnabled());
}

TEST(ConsoleRoutines, WhileOneRunsTheConsoleStartsNothingAndStaysOpen) {
    Console console(configuredIni());
    ASSERT_TRUE(console.start());
    int tried = 0;
    console.prompts.beforeAnswers = [&] {
        if (++tried > 1)
            return;
        find<JobTile>(console.form, "cmdAutoConfig")->click();
        find<QAction>(console.form, "mnuLookForSetup")->trigger();
        find<JobTile>(console.form, "cmdFileLocations")->click();
        console.form.close();
    };
    console.press("cmdNetworkSetup", {Answer::Cancel});
    EXPECT_EQ(tried, 1);
    EXPECT_TRUE(console.form.isVisible());
}

TEST(ConsoleRoutines, CompactionShowsWhatCouldNotBeSaved) {
    Console console(configuredIni());
    ASSERT_TRUE(console.start());
    const QString path = "C:\\DATA\\LOG.MDB";
    QString title = "LOSTTITLE";
    ASSERT_EQ(ValidateDatabase(path, KOVAType, true, &title), 0);
    QByteArray bytes = console.machine.read(path);
    const qsizetype page = bytes.indexOf(title.toLatin1()) / 4096;
    ASSERT_GT(page, 2);
    console.machine.write(path, bytes.replace(page * 4096, 4096, QByteArray(4096, '\xEE')));

    console.prompts.files = {path};
    QString shown;
    withNextForm([&shown](QWidget& form) {
        shown = find<QTextEdit>(form, "rtfFile")->toPlainText();
        QTest::keyClick(&form, Qt::Key_Escape);
    });
    console.press("cmdCompress", {Answer::Yes});
    EXPECT_TRUE(shown.contains("Table Description:\n    page " + QString::number(page)))
        << shown.toStdString();

    // The program holds the users database open while it runs; it is compacted all the same.
    console.prompts.files = {UsersDatabaseFile(console.settings)};
    console.press("mnuCompactDatabase", {Answer::Yes});
    EXPECT_TRUE(console.prompts.texts().last().startsWith("Your Database has been successfully"));
    EXPECT_TRUE(console.workstation.users.database);
}
