// The console: the order of its start, which buttons are enabled, keys, the check at the exit, its end.
#include "console/forms/Station.h"

#include "TestPlaces.h"
#include "automation/AutomationSchema.h"
#include "console/ConsoleJobs.h"
#include "console/forms/JobTile.h"
#include "console/forms/WorkstationPanel.h"
#include "console/forms/frmConfigure.h"
#include "core/system/Registry.h"
#include "databases/suite/DatabaseKinds.h"
#include "databases/suite/ValidateDatabase.h"
#include "platform/registry/RegistryStore.h"
#include "ui/style/OpenForms.h"

#include <QAction>
#include <QCryptographicHash>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QTabWidget>
#include <QTextEdit>

#include <gtest/gtest.h>

using namespace tolvex;
using namespace tolvex::tests;

namespace {

const QString OptionsKey = "SOFTWARE\\Norvane\\Tolvex";

// A station whose folders exist, and its console, started and shown.
struct Console : Station {
    explicit Console(const QByteArray& ini = configuredIni())
        : Station(ini) {
        machine.makeFolder("C:\\DATA");
        machine.makeFolder("C:\\WALL");
        // The Terminal list and the hotlist are missing: both are made.
        prompts.answers = {platform::Answer::Yes, platform::Answer::Yes};
    }
    bool start() {
        if (!form.load())
            return false;
        form.show();
        form.activateWindow();
        return QTest::qWaitForWindowActive(&form);
    }
    // Yes to making the ten lists of the audiowall.
    void allowLists() { prompts.answers.assign(10, platform::Answer::Yes); }
    int tab() { return find<QTabWidget>(form, "tbsConfig")->currentIndex(); }

    frmConfigure form{workstation};
};

QStringList enabled(frmConfigure& form) {
    QStringList names;
    for (const ConsoleJob& job : ConsoleJobs())
        if (find<JobTile>(form, job.control)->isEnabled())
            names += QString::fromLatin1(job.control);
    return names;
}

} // namespace

TEST(Console, StartsInOrderAndShowsTheConfiguration) {
    Console console;
    ASSERT_TRUE(console.start());
    EXPECT_EQ(console.prompts.splashes,
              (QStringList{"Starting Tolvex Configuration", "Loading Locale Specific Information...",
                           "Loading System Specific Information...", "Accessing AudioWall...",
                           "Accessing Terminals...", "Opening Public Instant Cart Hotlists...", QString()}));
    EXPECT_EQ(find<QLabel>(console.form, "lblStatus")->text(), "Studio 1 (TOLVEX.INI)");
    EXPECT_EQ(console.tab(), 0);
    EXPECT_EQ(console.settings.UsersFolder, "C:\\DATA\\USERS\\");
    EXPECT_EQ(console.prompts.pointer(), platform::Pointer::Default);
    EXPECT_TRUE(console.machine.exists("C:\\DATA\\Terminal.Lst"));
    EXPECT_TRUE(console.machine.exists("C:\\WALL\\GLIC.Lst"));
    // No help file in the application folder: no menu entry for it.
    EXPECT_FALSE(find<QAction>(console.form, "mnuHelpContents")->isVisible());
    EXPECT_TRUE(find<QAction>(console.form, "mnuAbout")->isVisible());
}

TEST(Console, EndsAtOnceWithoutEngineInASecondInstanceOrAfterACancelledChoice) {
    {
        Console console;
        EXPECT_FALSE(console.form.load(false));
        EXPECT_TRUE(console.prompts.splashes.isEmpty());
    }
    {
        Console console;
        DeleteRegistryValue(platform::LocalMachineHive, "Software\\Microsoft\\DataAccess", "FullInstallVer");
        EXPECT_FALSE(console.form.load());
        ASSERT_EQ(console.prompts.asked.size(), 1);
        EXPECT_EQ(console.prompts.asked[0].icon, platform::Icon::Stop);
    }
    {
        Console console;
        WriteRegistryLong(platform::LocalMachineHive, OptionsKey, "MultiConfigFile", -1, 0);
        console.prompts.configurationSets = {QString()};
        EXPECT_FALSE(console.form.load());
        console.form.close();
        EXPECT_EQ(console.ini(), configuredIni());
    }
}

// An import interrupted after it changed the local file: the record says what the file was to hold.
TEST(Console, PutsAnInterruptedImportBackBeforeItLoads) {
    Console console;
    const QByteArray half = "[FileLocations]\r\nData=C:\\ELSEWHERE\r\n";
    console.machine.write("C:\\WINDOWS\\OLD.bak", console.ini());
    console.machine.write("C:\\WINDOWS\\TOLVEX.INI", half);
    console.machine.write(
        "C:\\WINDOWS\\TOLVEX.INI.import",
        R"({"format":"tolvex-interrupted-change","files":[{"path":"C:\\WINDOWS\\TOLVEX.INI",)"
        R"("backup":"C:\\WINDOWS\\OLD.bak","after":")" +
            QCryptographicHash::hash(half, QCryptographicHash::Sha256).toHex() +
            R"("},{"path":"C:\\DATA\\TLVX_SYS.INI","backup":"","after":"0"}]})");
    ASSERT_TRUE(console.start());
    EXPECT_TRUE(console.prompts.texts().value(0).startsWith(
        "An import of settings was cut short. These files were put back as they were before it: "))
        << console.prompts.texts().value(0).toStdString();
    EXPECT_EQ(console.settings.DataLocation, "C:\\DATA");
    EXPECT_EQ(console.ini(), configuredIni());
    EXPECT_FALSE(console.machine.exists("C:\\WINDOWS\\TOLVEX.INI.import"));
}

TEST(Console, AsksOnAMachineThatWasNeverConfigured) {
    // Nine bytes are not a configuration, ten are.
    for (const QByteArray& ini : {QByteArray(), QByteArray("[a]\r\nb=c9"), QByteArray("[a]\r\nb=c10")}) {
        Console console(ini);
        console.prompts.answers = {platform::Answer::No};
        const bool asks = ini.size() < 10;
        ASSERT_TRUE(console.form.load());
        EXPECT_EQ(console.prompts.texts().filter("Configuration Wizard").size(), asks ? 1 : 0) << ini.size();
    }
}

TEST(Console, EnablesWhatHasAPlaceToWorkIn) {
    Console console;
    ASSERT_TRUE(console.start());
    QStringList always;
    QStringList withData;
    for (const ConsoleJob& job : ConsoleJobs()) {
        withData += job.control;
        if (job.enabling == JobEnabling::Always || job.enabling == JobEnabling::FirstCartLocationExists)
            always += job.control;
    }
    EXPECT_TRUE(always.contains("cmdCompress") && withData.contains("cmdHardwareSetup"));
    EXPECT_EQ(enabled(console.form), withData);
    console.settings.DataLocation = "C:\\GONE";
    console.form.UpdateEnabledButtons();
    EXPECT_EQ(enabled(console.form), always);
    console.settings.DataLocation.clear();
    console.form.UpdateEnabledButtons();
    EXPECT_EQ(enabled(console.form), always);
    EXPECT_TRUE(find<JobTile>(console.form, "cmdDisplaySettings")->toolTip().contains("Data Location"));

    // The rules themselves, also for the jobs whose forms come later.
    const ConsoleState onlyCarts{false, true};
    for (const ConsoleJob& job : ConsoleJobs()) {
        const QString control = job.control;
        const bool free =
            control == "cmdFileLocations" || control == "cmdOPAL" || job.opening == JobOpening::Routine;
        EXPECT_EQ(IsEnabled(job.enabling, {}), free) << job.control;
        EXPECT_EQ(IsEnabled(job.enabling, onlyCarts), free || control == "cmdAudiowallSetup") << job.control;
    }
}

TEST(Console, TabMovesTheStripAndLettersPressButtons) {
    Console console;
    ASSERT_TRUE(console.start());
    QTest::keyClick(&console.form, Qt::Key_Tab);
    EXPECT_EQ(console.tab(), 1);
    QTest::keyClick(&console.form, Qt::Key_Tab, Qt::ControlModifier);
    QTest::keyClick(&console.form, Qt::Key_Tab);
    QTest::keyClick(&console.form, Qt::Key_Tab);
    EXPECT_EQ(console.tab(), 0);
    QTest::keyClick(&console.form, Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(console.tab(), 3);
    QTest::keyClick(&console.form, Qt::Key_Tab);

    console.allowLists();
    QString opened;
    withNextForm([&opened](QWidget& form) {
        opened = form.objectName();
        QTest::keyClick(&form, Qt::Key_Escape);
    });
    QTest::keyClick(&console.form, Qt::Key_I);
    EXPECT_EQ(opened, "frmFileLocations");
    withNextForm([&opened](QWidget& form) {
        opened = form.objectName();
        QTest::keyClick(&form, Qt::Key_Escape);
    });
    QTest::keyClick(&console.form, Qt::Key_T, Qt::AltModifier);
    EXPECT_EQ(opened, "frmDateTimeSetup");
}

TEST(Console, ALetterMarkedTwiceReachesBothInTurn) {
    Console console;
    ASSERT_TRUE(console.start());
    // "d" marks the display settings and, once it can be
    // opened, the audio setup; here both are enabled.
    find<JobTile>(console.form, "cmdAudioSetup")->setEnabled(true);
    QTest::keyClick(&console.form, Qt::Key_D);
    EXPECT_EQ(console.form.focusWidget()->objectName(), "cmdAudioSetup");
    QTest::keyClick(&console.form, Qt::Key_D);
    EXPECT_EQ(console.form.focusWidget()->objectName(), "cmdDisplaySettings");
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST(Console, SearchFindsASettingByItsWordsAndOpensItsForm) {
    Console console;
    ASSERT_TRUE(console.start());
    auto* box = find<QLineEdit>(console.form, "txtFind");
    QTest::keyClick(&console.form, Qt::Key_F, Qt::ControlModifier);
    ASSERT_TRUE(box->hasFocus());
    QTest::keyClicks(box, "touch screens");
    EXPECT_EQ(console.tab(), 0);
    auto* list = find<QListWidget>(console.form, "listFound");
    ASSERT_TRUE(list->isVisible());
    ASSERT_GE(list->count(), 1);
    QString opened;
    withNextForm([&opened](QWidget& form) {
        opened = form.objectName();
        QTest::keyClick(&form, Qt::Key_Escape);
    });
    QTest::keyClick(box, Qt::Key_Return);
    EXPECT_EQ(opened, "frmDisplayOptions");
    EXPECT_FALSE(list->isVisible());

    // A setting is also found by its key; nonsense gets a message.
    console.form.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&console.form));
    QTest::keyClick(&console.form, Qt::Key_F, Qt::ControlModifier);
    QTest::keyClicks(box, "radioclockcomport");
    EXPECT_TRUE(list->item(0)->text().contains("Date/Time Setup")) << list->item(0)->text().toStdString();
    box->setText("commands");
    QTest::keyClick(box, Qt::Key_Down);
    EXPECT_EQ(list->currentItem()->text(), "Commands");
    box->setText("xyzzy");
    EXPECT_EQ(list->item(0)->text(), "No setting has these words");
}

// Also a setting of the automation database, by a field's words or its item's name: with its tab in front.
TEST(Console, SearchOpensTheTabOfASetting) {
    Console console;
    ASSERT_TRUE(console.start());
    QString title;
    const QString path = QStringLiteral("C:\\DATA\\SCHEDULE\\KOVA26.MDB");
    ASSERT_EQ(ValidateDatabase(path, KOVAType, true, &title), 0);
    ASSERT_EQ(ValidateKOVADatabaseTables(path), 0);
    console.settings.DefaultDatabase = QStringLiteral("KOVA26.MDB");
    QStringList found;
    const auto search = [&console, &found](const char* words) {
        console.form.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&console.form));
        QTest::keyClick(&console.form, Qt::Key_F, Qt::ControlModifier);
        auto* box = find<QLineEdit>(console.form, "txtFind");
        QTest::keyClicks(box, words);
        found.clear();
        for (int row = 0; row < find<QListWidget>(console.form, "listFound")->count(); ++row)
            found += find<QListWidget>(console.form, "listFound")->item(row)->text();
        QTest::keyClick(box, Qt::Key_Return);
    };
    const auto shows = [](QWidget& window, const char* tabs) {
        const auto* strip = find<QTabWidget>(window, tabs);
        const QString tab = strip->tabText(strip->currentIndex()).trimmed();
        QTest::keyClick(&window, Qt::Key_Escape);
        return tab;
    };
    QString seen;
    QString focus;
    withForm("frmKOVADatabaseSettings", [&](QWidget& window) {
        focus = window.focusWidget() ? window.focusWidget()->objectName() : QString();
        seen = shows(window, "tbsKOVA");
        QTimer::singleShot(0, qApp, [] {
            withForm("frmKOVASetup", [](QWidget& setup) { QTest::keyClick(&setup, Qt::Key_Escape); });
        });
    });
    search("KOVA.PreCueTime");
    EXPECT_EQ(seen, "KAE Settings");
    EXPECT_EQ(focus, "txtPrecueTime");
    // One line for its two labels and its name, with the window that has it.
    EXPECT_EQ(found, QStringList{"Cue the next item when there is less than  ·  K-OVA Database Settings"});
    withForm("frmKOVASetup", [&](QWidget& window) {
        EXPECT_TRUE(
            QTest::qWaitFor([&] { return find<QTabWidget>(window, "tbsSettings")->currentIndex() == 1; }));
        shows(window, "tbsSettings");
    });
    search("secs to wait before releasing");
}

TEST(Console, ChecksTheConfigurationAtTheExitOnly) {
    Console console(configuredIni().replace("LinkMeshId=1", "LinkMeshId=0"));
    ASSERT_TRUE(console.start());
    console.prompts.forget();
    console.prompts.answers = {platform::Answer::No, platform::Answer::Yes};
    auto* leave = find<QAction>(console.form, "mnuExit");
    leave->trigger();
    EXPECT_EQ(console.prompts.texts(),
              QStringList{
                  "Tolvex is not fully configured:\n\nLinkMesh ID No has not been set\n\nDefinitely Exit?"});
    EXPECT_TRUE(console.form.isVisible());
    leave->trigger();
    EXPECT_FALSE(console.form.isVisible());
}

TEST(Console, ThePanelLeadsToTheFormThatMends) {
    Console console(configuredIni().replace("Carts3=C:\\WALL", "Carts3="));
    console.prompts.answers.push_back(platform::Answer::Yes);
    ASSERT_TRUE(console.start());
    auto* panel = find<WorkstationPanel>(console.form, "pnlWorkstation");
    const auto links = panel->widget()->findChildren<QPushButton*>();
    ASSERT_FALSE(links.isEmpty());
    EXPECT_EQ(links.front()->text(), QString::fromUtf8("File Locations ›"));
    EXPECT_EQ(find<JobTile>(console.form, "cmdFileLocations")->accessibleDescription(),
              "1 AudioWall Location/s have not been set");
    // Correcting it through the link removes the line.
    console.allowLists();
    withNextForm([](QWidget& form) {
        QTest::keyClicks(find<QLineEdit>(form, "txtCartLocations_3"), "c:\\wall");
        click(form, "cmdDone");
    });
    QTest::mouseClick(links.front(), Qt::LeftButton);
    EXPECT_EQ(find<JobTile>(console.form, "cmdFileLocations")->accessibleDescription(),
              "Where data and carts live");
}

TEST(Console, ClosingUnloadsTheOthersSavesAndStartsTheCaller) {
    Console console;
    console.machine.link("x:", QDir::tempPath());
    const QString mark = console.machine.host("C:\\started");
    console.machine.write("C:\\caller", "#!/bin/sh\necho \"$1\" > \"" + mark.toUtf8() + "\"\n");
    QFile(console.machine.host("C:\\caller"))
        .setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    console.workstation.startUp.typedCommandLine = "/RUNBY=C:\\caller";
    ASSERT_TRUE(console.start());
    QDialog first;
    QDialog last;
    EnterForm(&first);
    EnterForm(&last);
    QStringList order;
    QObject::connect(&first, &QDialog::finished, [&order] { order += "first"; });
    QObject::connect(&last, &QDialog::finished, [&order] { order += "last"; });
    first.show();
    last.show();
    console.settings.CartMinimumWidth = 3210;
    console.form.close();
    EXPECT_EQ(order, (QStringList{"last", "first"}));
    EXPECT_EQ(console.value("AudioWall", "CartMinimumWidth"), "3210");
    EXPECT_FALSE(TerminalListIsOpen(console.workstation.terminals));
    EXPECT_TRUE(QTest::qWaitFor([&mark] { return QFileInfo(mark).size() > 0; }, 3000));
    EXPECT_EQ(console.machine.read("C:\\started"), "/NOPREVCHECK\n");
}

TEST(Console, F1OpensThePageOfTheFormOneIsIn) {
    Console console;
    QFile built(QString(TOLVEX_BIN_DIR) + "/config.chm");
    ASSERT_TRUE(built.open(QIODevice::ReadOnly));
    console.machine.write("C:\\APP\\config.chm", built.readAll());
    ASSERT_TRUE(console.start());
    EXPECT_TRUE(find<QAction>(console.form, "mnuHelpContents")->isVisible());
    const auto shownPage = [] {
        const QWidget* window = OpenForms().last();
        return window->objectName() == "frmHelp" ? window->findChild<QTextEdit*>("txtPage")->toPlainText()
                                                 : QString();
    };
    QTest::keyClick(&console.form, Qt::Key_F1);
    EXPECT_TRUE(shownPage().startsWith("The console"));
    QString page;
    withNextForm([&](QWidget& form) {
        QTest::keyClick(&form, Qt::Key_F1);
        page = shownPage();
        QTest::keyClick(&form, Qt::Key_Escape);
    });
    console.form.activateWindow();
    find<JobTile>(console.form, "cmdDateTimeSetup")->click();
    EXPECT_TRUE(page.startsWith("Date and Time")) << page.toStdString();
}

TEST(Console, OptionsAreStoredAndTheirDefaultLeavesNothing) {
    Console console;
    ASSERT_TRUE(console.start());
    auto* multi = find<QAction>(console.form, "mnuAllowMulti");
    EXPECT_FALSE(multi->isChecked());
    multi->trigger();
    EXPECT_EQ(ReadRegistryLong(platform::LocalMachineHive, OptionsKey, "MultiConfigFile", 7), -1);
    multi->trigger();
    EXPECT_FALSE(platform::RegistryRead(platform::LocalMachineHive, OptionsKey, "MultiConfigFile"));
}

// The two windows of settings that workstations share: what OK stored is in force, and what is missing leads
// to its window.
TEST(Console, OpensRippingAndTransfers) {
    Console console;
    console.machine.write("C:\\DATA\\TLVX_SYS.INI", "[OPALTransfers]\r\nDirectory=C:\\LISTS\r\n");
    ASSERT_TRUE(console.start());
    EXPECT_EQ(find<JobTile>(console.form, "cmdOPAL")->accessibleDescription(),
              "The folder of the transport lists could not be found");
    find<QTabWidget>(console.form, "tbsConfig")->setCurrentIndex(1);
    withNextForm([](QWidget& form) {
        EXPECT_EQ(form.windowTitle(), "Opal Transfer Setup");
        click(form, "chkAllowOPAL");
        click(form, "cmdOK");
    });
    click(console.form, "cmdOPAL");
    EXPECT_EQ(console.machine.read("C:\\DATA\\TLVX_SYS.INI"), "");
    EXPECT_EQ(console.settings.OPALDirectory, "");
    EXPECT_EQ(find<JobTile>(console.form, "cmdOPAL")->accessibleDescription(), "Transfers between stations");

    withNextForm([](QWidget& form) {
        EXPECT_EQ(form.windowTitle(), "CD Ripping Settings");
        click(form, "chkAskFirst");
        click(form, "Command1");
    });
    QTest::keyClick(&console.form, Qt::Key_R);
    EXPECT_NE(console.settings.AskBeforeProcess, 0);
    EXPECT_TRUE(console.machine.read("C:\\WALL\\Audwall.ini").contains("AskBeforeProcess=1\r\n"));
    // Without a first location there is no file: the console says so and opens nothing.
    console.settings.CartPartTable[1].Location.clear();
    console.prompts.forget();
    click(console.form, "cmdCDRipping");
    EXPECT_EQ(console.prompts.texts(),
              QStringList{"You must set the first Cart Location (in File Locations) first"});
}

TEST(Console, ChecksComeBeforeFormsWithTheirOwnMessages) {
    Station station;
    EXPECT_FALSE(CheckHolds(JobCheck::DataLocationSet, station.settings));
    station.settings.DataLocation = "C:\\DATA";
    EXPECT_TRUE(CheckHolds(JobCheck::DataLocationSet, station.settings));
    EXPECT_FALSE(CheckHolds(JobCheck::FirstCartLocationSet, station.settings));
    EXPECT_STREQ(FindConsoleJob("cmdHardwareSetup")->message,
                 "You must set the Data Location (in File Locations) first");
    EXPECT_TRUE(FindConsoleJob("cmdLinkmeshSetup")->informs);
}
