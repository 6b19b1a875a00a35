// Every form as its user sees it: opened in the console, operated by mouse and keys, closed by Cancel, by
// Escape and by OK. The test compares the files afterwards, and the display at the next start.
#include "app/window/Program.h"

#include "support/QtPrinters.h"

#include "core/report/Folders.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QRadioButton>
#include <QTableView>
#include <QTextBrowser>
#include <QTreeWidget>

#include <gtest/gtest.h>

using namespace tolvex;
using namespace tolvex::tests;

namespace {

struct FormCase {
    const char* button;
    const char* ok;
    Act work;
    QStringList stored; // by OK
    QStringList kept;   // by the program's exit after Cancel
    QString question;   // of Cancel, its beginning
    Act shown;          // what the form shows at the next start
    const char* cancel = "cmdCancel";
};

void PrintTo(const FormCase& form, std::ostream* out) {
    *out << form.button;
}

void typeInto(QWidget& form, const char* name, const QString& text) {
    activate(form);
    auto* box = find<QLineEdit>(form, name);
    QTest::mouseClick(box, Qt::LeftButton);
    box->selectAll();
    QTest::keyClicks(box, text);
    EXPECT_TRUE(box->hasFocus());
}

void keyInto(QWidget& form, const char* name, std::initializer_list<Qt::Key> keys) {
    activate(form);
    auto* field = find<QWidget>(form, name);
    field->setFocus();
    for (const Qt::Key key : keys)
        QTest::keyClick(field, key);
}

QPoint cellOf(QTableView& grid, int line, int column) {
    const QModelIndex cell = grid.model()->index(line - 1, column);
    grid.scrollTo(cell);
    return grid.visualRect(cell).center();
}

void clickTab(QWidget& form, const char* strip, int number) {
    QTabBar* bar = find<QTabWidget>(form, strip)->tabBar();
    QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(number - 1).center());
    QApplication::processEvents();
}

void workInHardware(QWidget& form) {
    auto* tabs = find<QTabWidget>(form, "tbsSettings");
    QWidget& card = *tabs->widget(0);
    keyInto(card, "CardTypeList", {Qt::Key_R});
    keyInto(card, "ComPortlist", {Qt::Key_Down, Qt::Key_Down});
    auto* grid = find<QTableView>(card, "gridUsage");
    const auto clickCell = [&](int line, int column) {
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, cellOf(*grid, line, column));
    };
    clickCell(2, 3);
    auto* text = find<QLineEdit>(card, "txtDescription");
    QTest::keyClicks(text, "Red lamp");
    QTest::keyClick(text, Qt::Key_Return);
    clickCell(2, 2);
    // Removed and restored.
    QTest::keyClick(grid, Qt::Key_Delete);
    QTest::keyClick(grid, Qt::Key_Z, Qt::ControlModifier);
    // An action from the list, and a change of tab while it is open.
    clickCell(1, 4);
    auto* list = find<QComboBox>(card, "ListOptions");
    QTest::keyClick(list->view(), Qt::Key_Down);
    QTest::keyClick(list->view(), Qt::Key_Return);
    QTest::mouseClick(tabs->tabBar(), Qt::LeftButton, {}, tabs->tabBar()->tabRect(2).center());
    keyInto(*tabs->widget(2), "CardTypeList", {Qt::Key_J});
}

const QStringList hardwareStored = {"Hardware1/Action1=1",
                                    "Hardware1/Action1Data1=1",
                                    "Hardware1/Action1Data2=0",
                                    "Hardware1/Action1Data3=0",
                                    "Hardware1/Action1Data4=0",
                                    "Hardware1/Action2=0",
                                    "Hardware1/Action2Data1=0",
                                    "Hardware1/Action2Data2=0",
                                    "Hardware1/Action2Data3=0",
                                    "Hardware1/Action2Data4=0",
                                    "Hardware1/ActiveLow1=0",
                                    "Hardware1/ActiveLow2=-1",
                                    "Hardware1/BaseAddress=2",
                                    "Hardware1/CardType=3",
                                    "Hardware1/Color1=0",
                                    "Hardware1/Color2=0",
                                    "Hardware1/Description1=IC Trigger 1",
                                    "Hardware1/Description2=Red lamp",
                                    "Hardware1/LineType1=0",
                                    "Hardware1/LineType2=0",
                                    "Hardware3/BaseAddress=0",
                                    "Hardware3/CardType=5"};

const FormCase cases[] = {
    {"cmdFileLocations",
     "cmdDone",
     [](QWidget& form) {
         typeInto(form, "txtDataLocation", "c:\\other\\");
         click(form, "chkUseOneCartLocation");
         typeInto(form, "txtCartLocations_3", "c:\\wall3");
     },
     {"FileLocations/Carts3=C:\\WALL3", "FileLocations/Data=C:\\OTHER", "FileLocations/Logs=C:\\OTHER\\LOGS",
      "FileLocations/Schedules=C:\\OTHER\\SCHEDULE"},
     {},
     {},
     [](QWidget& form) {
         EXPECT_EQ(find<QLineEdit>(form, "txtDataLocation")->text(), "C:\\OTHER");
         EXPECT_EQ(find<QLineEdit>(form, "txtCartLocations_3")->text(), "C:\\WALL3");
         EXPECT_TRUE(DirectoryExists("C:\\OTHER\\SCRIPTS") && DirectoryExists("C:\\WALL3"));
         EXPECT_FALSE(find<QCheckBox>(form, "chkUseOneCartLocation")->isChecked());
     }},
    {"cmdAudioSetup",
     "cmdOK",
     [](QWidget& form) {
         clickTab(form, "tbsAudio", 3);
         click(form, "optSweeper");
         typeInto(form, "txtSweeperVol", "70");
         clickTab(form, "tbsAudio", 4);
         withNextForm([](QWidget& chooser) {
             auto* attributes = find<QListWidget>(chooser, "listAttributes");
             EXPECT_EQ(attributes->currentItem()->text(), "44.100 kHz, 16 Bit, Stereo");
             QTest::keyClick(attributes, Qt::Key_Home);
             click(chooser, "cmdOK");
         });
         click(form, "cmdSelectAudioFormat");
     },
     {"Audio/Channels=1", "Audio/KHz=8000", "Audio/SweptVolume=70", "Audio/UsePlayerDucking=0",
      "CartPlayers/FirstPlayerInOrder=0"}, // there is no player
     {},
     {},
     [](QWidget& form) {
         EXPECT_TRUE(find<QRadioButton>(form, "optSweeper")->isChecked());
         EXPECT_EQ(find<QLabel>(form, "lblAudioFormat")->text(), " PCM 8.000 kHz, 16 Bit, Mono");
     }},
    {"cmdAudiowallSetup",
     "OKB",
     [](QWidget& form) {
         click(form, "chkDisplayPadAtLogon");
         clickTab(form, "tbsAudiowall", 5);
         typeInto(form, "txtFadeSeconds", "5");
     },
     {"Audio/PlayerFadeSeconds=5", "AudioWall/CartMinimumHeight=950", "AudioWall/ShowPadAtLogin=1"},
     {},
     {},
     [](QWidget& form) {
         EXPECT_TRUE(find<QCheckBox>(form, "chkDisplayPadAtLogon")->isChecked());
         EXPECT_EQ(find<QLineEdit>(form, "txtFadeSeconds")->text(), "5");
     },
     "CancelB"},
    {"cmdDisplaySettings",
     "cmdOK",
     [](QWidget& form) {
         click(form, "chkUseSingleClick");
         click(form, "optInfoWindowAtBottom");
         click(form, "chkInfoWindowDisplayClock");
         click(form, "chkAdjustSystemColors");
         withNextForm([](QWidget& chooser) {
             for (QLineEdit* box : chooser.findChildren<QLineEdit*>())
                 if (box->text().startsWith(u'#')) {
                     box->selectAll();
                     QTest::keyClicks(box, "#102030");
                     QTest::keyClick(box, Qt::Key_Return);
                 }
         });
         click(form, "cmdChangeBackgroundColor");
     },
     {"Display/AdjustTheSystemColors=1", "Display/FormBackcolor=3153936", "Display/ShowClock=0",
      "Display/SingleClickPlayCarts=1", "Display/UseInformationWindow=2"},
     {"Display/FormBackcolor=3153936"}, // a colour applies at once
     {},
     [](QWidget& form) {
         EXPECT_TRUE(find<QCheckBox>(form, "chkUseSingleClick")->isChecked());
         EXPECT_TRUE(find<QRadioButton>(form, "optInfoWindowAtBottom")->isChecked());
         EXPECT_FALSE(find<QCheckBox>(form, "chkInfoWindowDisplayClock")->isChecked());
         EXPECT_TRUE(find<QPushButton>(form, "cmdChangeBackgroundColor")->isEnabled());
         EXPECT_EQ(form.grab().toImage().pixelColor(4, 4), QColor(0x102030));
     }},
    {"cmdDateTimeSetup",
     "Command1",
     [](QWidget& form) {
         keyInto(form, "comboRadioClock", {Qt::Key_Down, Qt::Key_Down, Qt::Key_Down});
     },
     {"DateTimeSettings/RadioClockComPort=3"},
     {},
     {},
     [](QWidget& form) { EXPECT_EQ(find<QComboBox>(form, "comboRadioClock")->currentText(), "Com Port 3"); }},
    {"cmdHardwareSetup",
     "cmdOK",
     workInHardware,
     hardwareStored,
     {},
     "The changes to the hardware lines have not been applied.",
     [](QWidget& form) {
         auto* tabs = find<QTabWidget>(form, "tbsSettings");
         EXPECT_EQ(find<QComboBox>(*tabs->widget(0), "CardTypeList")->currentText(),
                   "RS232 based controller");
         EXPECT_EQ(find<QComboBox>(*tabs->widget(2), "CardTypeList")->currentText(), "Joystick Port");
         auto* lines = find<QTableView>(*tabs->widget(0), "gridUsage")->model();
         EXPECT_EQ(lines->index(1, 3).data(), "Red lamp");
     }},
    {"cmdOPAL",
     "cmdOK",
     [](QWidget& form) {
         click(form, "chkAllowOPAL");
         withNextForm([](QWidget& chooser) {
             auto* path = find<QLineEdit>(chooser, "fileNameEdit");
             path->setText(platform::HostPath("C:\\WALL"));
             QTest::keyClick(path, Qt::Key_Return);
         });
         click(form, "cmdBrowse");
         click(form, "chkDeleteAfterSend");
     },
     {}, // it stores in the station's file
     {},
     {},
     [](QWidget& form) {
         EXPECT_EQ(find<QLineEdit>(form, "lblDirectory")->text(), "C:\\WALL");
         EXPECT_TRUE(find<QCheckBox>(form, "chkDeleteAfterSend")->isChecked());
     }},
    {"cmdCDRipping",
     "Command1",
     [](QWidget& form) {
         click(form, "chkAskFirst");
         click(form, "chkAllowCDDB");
         typeInto(form, "txtCDDBEmailAddress", "a@b.c");
     },
     {}, // it stores beside the audio
     {},
     {},
     [](QWidget& form) {
         EXPECT_TRUE(find<QCheckBox>(form, "chkAskFirst")->isChecked());
         EXPECT_EQ(find<QLineEdit>(form, "txtCDDBEmailAddress")->text(), "a@b.c");
     }},
    {"cmdCommands",
     "cmdClose",
     [](QWidget& form) {
         // Each command is stored by its editor; the list has nothing to revert.
         withNextForm([](QWidget& editor) {
             typeInto(editor, "txtCommandFile", "Door");
             keyInto(editor, "txtSerialCommand", {Qt::Key_G, Qt::Key_O, Qt::Key_Return});
             click(editor, "cmdOK");
         });
         click(form, "cmdAddCommand");
     },
     {},
     {},
     {},
     [](QWidget& form) {
         auto* rows = find<QTableView>(form, "grdCommands")->model();
         EXPECT_EQ(rows->rowCount(), 1);
         EXPECT_EQ(rows->index(0, 1).data(), "Door");
     },
     "cmdClose"},
    {"cmdLinkmeshSetup",
     "cmdOK",
     [](QWidget& form) {
         activate(form);
         auto* grid = find<QTableView>(form, "grdTerminals");
         QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, cellOf(*grid, 3, 1));
         QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, cellOf(*grid, 3, 2));
         auto* box = find<QLineEdit>(form, "txtName");
         QTest::keyClicks(box, "Studio 3");
         QTest::keyClick(box, Qt::Key_Return);
     },
     {"LinkMesh/LinkMeshId=3"},
     {},
     "The names that you typed have not been stored.",
     [](QWidget& form) {
         const auto* rows = find<QTableView>(form, "grdTerminals")->model();
         EXPECT_EQ(rows->index(2, 1).data(), ">");
         EXPECT_EQ(rows->index(2, 2).data(), "Studio 3");
         EXPECT_EQ(rows->index(2, 5).data(), "this computer");
     }},
    {"cmdKOVASetup",
     "cmdOK",
     [](QWidget& form) {
         click(form, "chkGenerateAdvertRecFiles");
         keyInto(form, "comboKOVAICMode", {Qt::Key_Down});
         auto* tabs = find<QTabWidget>(form, "tbsSettings");
         QTest::mouseClick(tabs->tabBar(), Qt::LeftButton, {}, tabs->tabBar()->tabRect(1).center());
         click(form, "chkAllowControl");
         keyInto(form, "comboRequestMode", {Qt::Key_Down});
         typeInto(form, "txtReleaseTime", "25");
     },
     {"KOVA/AllowControl=1", "KOVA/DefaultDatabase=", "KOVA/DisplayInstantCarts=2",
      "KOVA/GenerateAdvertRecFiles=1", "KOVA/GetControlKLogStart=0", "KOVA/LogWhenStationController=1",
      "KOVA/ReleaseMode=0", "KOVA/ReleaseTime=25", "KOVA/RequestMode=1"},
     {},
     "The changes to the K-OVA setup have not been stored.",
     [](QWidget& form) {
         EXPECT_TRUE(find<QCheckBox>(form, "chkAllowControl")->isChecked());
         EXPECT_EQ(find<QLineEdit>(form, "txtReleaseTime")->text(), "25");
     }},
};

class EveryForm : public Program, public testing::WithParamInterface<FormCase> {};

} // namespace

TEST_P(EveryForm, StoresByOkAndNothingByCancelOrEscape) {
    const FormCase& form = GetParam();
    const QByteArray before = ini();
    for (const bool byKey : {false, true}) {
        machine_.write("C:\\WINDOWS\\TOLVEX.INI", before);
        ASSERT_TRUE(start());
        asked_.clear();
        open(form.button, [&](QWidget& window) {
            form.work(window);
            if (!byKey)
                return click(window, form.cancel);
            activate(window);
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        });
        EXPECT_EQ(asked_.size(), form.question.isEmpty() ? 0 : 1) << asked_.join(u'|').toStdString();
        EXPECT_TRUE(asked_.value(0).startsWith(form.question));
        EXPECT_EQ(ini(), before);
        exit();
        EXPECT_EQ(changes(before, ini()), form.kept);
    }
    machine_.write("C:\\WINDOWS\\TOLVEX.INI", before);
    ASSERT_TRUE(start());
    open(form.button, [&](QWidget& window) {
        form.work(window);
        click(window, form.ok);
    });
    EXPECT_EQ(changes(before, ini()), form.stored);
    exit();
    EXPECT_EQ(changes(before, ini()), form.stored);
    ASSERT_TRUE(start());
    open(form.button, [&](QWidget& window) {
        form.shown(window);
        QTest::keyClick(&window, Qt::Key_Escape);
    });
}

INSTANTIATE_TEST_SUITE_P(Console, EveryForm, testing::ValuesIn(cases),
                         [](const auto& form) { return std::string(form.param.button); });

TEST(EveryFormOfTheConsole, IsTriedAbove) {
    for (const ConsoleJob& job : ConsoleJobs()) {
        const auto tried = [&job](const FormCase& each) { return each.button == std::string(job.control); };
        EXPECT_EQ(job.opening != JobOpening::Routine, std::any_of(std::begin(cases), std::end(cases), tried))
            << job.control;
    }
}

TEST_F(Program, TheConfigurationSetChosenAtTheStartTakesTheSettings) {
    const QByteArray standard = ini();
    ASSERT_TRUE(start());
    clickMenu(*console_, "mnuOptions", "mnuAllowMulti");
    exit();
    // Copied, described and chosen.
    withForm("frmMultiConfig", [](QWidget& form) {
        expectSaneSize(form);
        auto* list = find<QListWidget>(form, "lvwConfigs");
        QTest::keyClick(list, Qt::Key_Down);
        withNextForm([](QWidget& first) {
            typeInto(first, "Text1", "night");
            withNextForm([](QWidget& second) {
                typeInto(second, "Text1", "Night shift");
                click(second, "cmdOK");
            });
            click(first, "cmdOK");
        });
        clickMenu(dynamic_cast<QMainWindow&>(form), "mnuOptions", "mnuCopyConfig");
        ASSERT_EQ(list->count(), 2);
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(list->item(1)).center());
        click(form, "cmdOK");
    });
    ASSERT_TRUE(start());
    EXPECT_EQ(find<QLabel>(*console_, "lblStatus")->text(), "Night shift (night.ini)");
    open("cmdDateTimeSetup", [](QWidget& form) {
        keyInto(form, "comboRadioClock", {Qt::Key_Down});
        click(form, "Command1");
    });
    exit();
    const QStringList different = {"DateTimeSettings/RadioClockComPort=1", "General/ConfigName=Night shift"};
    EXPECT_EQ(changes(standard, machine_.read("C:\\WINDOWS\\night.ini")), different);
    EXPECT_EQ(changes(standard, ini()), QStringList{"General/ConfigName=Standard Configuration"});
    // Cancelled: the program ends and writes nothing.
    const QByteArray night = machine_.read("C:\\WINDOWS\\night.ini");
    const QByteArray unchanged = ini();
    withForm("frmMultiConfig", [](QWidget& form) { click(form, "cmdCancel"); });
    EXPECT_FALSE(start());
    console_->close();
    EXPECT_EQ(machine_.read("C:\\WINDOWS\\night.ini"), night);
    EXPECT_EQ(ini(), unchanged);
}

TEST_F(Program, HelpIsReadFromTheMenuAndLeavesNothing) {
    const QByteArray before = ini();
    ASSERT_TRUE(start());
    clickMenu(*console_, "mnuHelp", "mnuHelpContents");
    QWidget* window = nullptr;
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (widget->objectName() == "frmHelp")
            window = widget;
    ASSERT_NE(window, nullptr);
    expectSaneSize(*window);
    expectWheelHarmless(*window);
    auto* page = find<QTextBrowser>(*window, "txtPage");
    const QString first = page->toPlainText();
    auto* tree = find<QTreeWidget>(*window, "treeContents");
    QTreeWidgetItem* hardware = tree->findItems("Hardware", Qt::MatchContains | Qt::MatchRecursive).value(0);
    ASSERT_NE(hardware, nullptr);
    tree->scrollToItem(hardware);
    QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, tree->visualItemRect(hardware).center());
    EXPECT_TRUE(page->toPlainText().contains("Advantech"));
    typeInto(*window, "txtFind", "advantech");
    EXPECT_EQ(page->textCursor().selectedText().toLower(), "advantech");
    click(*window, "cmdBack");
    EXPECT_EQ(page->toPlainText(), first);
    QTest::keyClick(window, Qt::Key_Escape);
    EXPECT_FALSE(window->isVisible());
    withForm("frmSplash", [](QWidget& form) {
        expectSaneSize(form);
        QTest::keyClick(&form, Qt::Key_Escape);
    });
    clickMenu(*console_, "mnuHelp", "mnuAbout");
    exit();
    EXPECT_EQ(ini(), before);
}
