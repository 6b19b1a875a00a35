// The automation player's two windows by mouse and keyboard.
#include "databases/ServerTest.h"

#include "automation/AutomationSchema.h"
#include "automation/AutomationSetup.h"
#include "automation/forms/ControlVariants.h"
#include "automation/forms/frmKOVADatabaseSettings.h"
#include "automation/forms/frmKOVASetup.h"
#include "core/settings/Settings.h"
#include "databases/suite/DatabaseSettings.h"
#include "databases/users/UsersDatabase.h"
#include "platform/host/LookOnly.h"
#include "platform/profile/ProfileFile.h"
#include "support/FixedClock.h"
#include "ui/binding/ColourButton.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFontDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>
#include <QTimer>

using namespace tolvex;
using namespace tolvex::tests;
using platform::Answer;

namespace {

const QString Path = QStringLiteral("C:\\DATA\\SCHEDULE\\KOVA26.MDB");

class AutomationFormsTest : public ServerTest {
protected:
    AutomationFormsTest() {
        platform::ForgetProfiles();
        settings.DataLocation = QStringLiteral("C:\\DATA");
        settings.LocalIniFile = QStringLiteral("TOLVEX.INI");
        settings.NoCarts = 9999;
        settings.ReleaseTime = 10;
        make(Path, KOVAType, "The log");
        EXPECT_EQ(ValidateKOVADatabaseTables(Path), 0);
    }
    void openSettings(const QString& name = Path, const QString& connect = {}) {
        auto window = std::make_unique<frmKOVADatabaseSettings>(record, settings, users);
        window->setDatabase(name, connect);
        show(std::move(window));
    }
    void openSetup() { show(std::make_unique<frmKOVASetup>(settings, record, users)); }
    void show(std::unique_ptr<QDialog> window) {
        form = std::move(window);
        form->show();
        form->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(form.get()));
    }
    template<class Widget>
    Widget* find(const char* name) const {
        auto* widget = form->findChild<Widget*>(QLatin1String(name));
        if (!widget)
            throw std::runtime_error(std::string("no control ") + name);
        return widget;
    }
    // Brings the tab of a control to the front, as a user has to.
    QWidget* reach(const char* name) const {
        auto* widget = find<QWidget>(name);
        for (QWidget* page = widget; page->parentWidget(); page = page->parentWidget())
            if (auto* tabs = qobject_cast<QTabWidget*>(page->parentWidget()->parentWidget()))
                tabs->setCurrentWidget(page);
        return widget;
    }
    void click(const char* name) const {
        QWidget* widget = reach(name);
        ASSERT_TRUE(widget->isEnabled()) << name;
        const bool isButton = qobject_cast<QPushButton*>(widget) != nullptr;
        QTest::mouseClick(widget, Qt::LeftButton, {}, isButton ? QPoint() : QPoint(8, widget->height() / 2));
    }
    void type(const char* name, const char* text) const {
        auto* box = qobject_cast<QLineEdit*>(reach(name));
        box->setFocus();
        box->selectAll();
        QTest::keyClick(box, Qt::Key_Delete);
        QTest::keyClicks(box, text);
    }
    void pick(const char* name, int entry) const {
        auto* list = qobject_cast<QComboBox*>(reach(name));
        list->setFocus();
        QTest::keyClick(list, Qt::Key_Home);
        for (int at = 0; at < entry; ++at)
            QTest::keyClick(list, Qt::Key_Down);
        ASSERT_EQ(list->currentIndex(), entry);
    }
    QString text(const char* label) const { return find<QLabel>(label)->text(); }
    QString typed(const char* box) const { return find<QLineEdit>(box)->text(); }
    bool on(const char* box) const { return find<QAbstractButton>(box)->isChecked(); }
    bool enabled(const char* names) const {
        bool all = true;
        for (const QString& name : QString(names).split(' '))
            all = all && find<QWidget>(name.toLatin1())->isEnabled();
        return all;
    }
    // Runs with the modal window that comes next.
    static void withNextWindow(const std::function<void(QWidget&)>& act) {
        QTimer::singleShot(50, qApp, [act] {
            ASSERT_TRUE(QApplication::activeModalWidget());
            act(*QApplication::activeModalWidget());
        });
    }
    static void waitForRows(const QWidget& chooser) {
        EXPECT_TRUE(QTest::qWaitFor([&] {
            return chooser.findChild<QPushButton*>("cmdOK")->isEnabled() &&
                   !chooser.findChild<QWidget*>("pnlStatus")->isVisible();
        }));
    }
    KOVADatabaseSettings stored() {
        KOVADatabaseSettings read;
        AutomationEditing again(read, settings, users);
        EXPECT_TRUE(again.open(Path));
        return read;
    }
    QByteArray file() const { return machine.read(Path); }

    Settings settings;
    UsersState users{settings};
    KOVADatabaseSettings record;
    std::unique_ptr<QDialog> form;
};

} // namespace

// Every row of the table: each control is moved by hand to another value, stored, and shown again.
TEST_F(AutomationFormsTest, StoresAndShowsEveryControl) {
    openSettings();
    AutomationEntries wanted;
    int number = 20;
    for (const AutomationField& field : AutomationFields()) {
        QWidget* control = reach(field.control);
        const QString name = field.control;
        if (!control->isEnabled() || field.kind >= AutomationField::Kind::Font)
            continue;
        if (qobject_cast<QCheckBox*>(control)) {
            click(field.control);
        } else if (auto* list = qobject_cast<QComboBox*>(control); list && !list->isEditable()) {
            pick(field.control, list->currentIndex() == 0 ? list->count() - 1 : 0);
        } else if (qobject_cast<ColourButton*>(control)) {
            prompts.colours = {++number};
            click(field.control);
        } else if (qobject_cast<QLineEdit*>(control)) {
            type(field.control,
                 name.startsWith("txtVoice") ? "8500" : QByteArray::number(++number).constData());
        } else if (list) {
            list->setFocus();
            list->lineEdit()->selectAll();
            QTest::keyClicks(list, "ddmmyyyy");
        }
        wanted[name] = FromControl(ValueOf(control));
    }
    EXPECT_GT(wanted.size(), 75);
    click("cmdOK");
    EXPECT_FALSE(form->isVisible()) << texts().join('|').toStdString();
    EXPECT_TRUE(rows(Path, "Settings").find("BeenSet,1") != std::string::npos);
    openSettings();
    for (auto entry = wanted.begin(); entry != wanted.end(); ++entry)
        EXPECT_EQ(FromControl(ValueOf(find<QWidget>(entry.key().toLatin1()))), entry.value())
            << entry.key().toStdString();
    QTest::keyClick(form.get(), Qt::Key_Escape); // nothing was changed since: no question
    EXPECT_FALSE(form->isVisible());
    // The format stands in no control, and counts as a change all the same.
    openSettings();
    prompts.waveFormats = {platform::WaveFormat{1, 1, 8000}};
    click("cmdSelectAudioFormat");
    prompts.answers = {Answer::No};
    QTest::keyClick(form.get(), Qt::Key_Escape);
    EXPECT_TRUE(form->isVisible());
}

TEST_F(AutomationFormsTest, EnablesByTheRules) {
    openSettings();
    const struct {
        const char* step; // a box to click
        int entry;        // of station control, -1 for none
        const char* on;
        const char* off;
    } steps[] = {
        {"", 0, "txtFadeEachTime lblFadeEachAfter txtRestartSeconds",
         "txtMaxFadeTime lblMaxFadeAfter lblStationControlComputer txtStationControlComputer "
         "lblShowNextItemsCount txtShowNextItemsCount lblStationControlPort comboStationControlPort "
         "chkAllowManualZCP chkWaitSplitReturn"},
        {"", 1,
         "lblStationControlComputer txtStationControlComputer lblShowNextItemsCount txtShowNextItemsCount "
         "lblStationControlPort comboStationControlPort chkAllowManualZCP",
         "chkWaitSplitReturn"},
        {"", 2, "txtStationControlComputer txtShowNextItemsCount chkAllowManualZCP chkWaitSplitReturn",
         "lblStationControlPort comboStationControlPort"},
        {"chkAutoRestart", -1, "chkAutoRestart", "txtRestartSeconds"},
        {"optFadeLast", -1, "txtMaxFadeTime lblMaxFadeAfter", "txtFadeEachTime lblFadeEachAfter"},
        {"chkSTLevelTrigger", -1, "chkSTLevelTrigger", "txtSTTriggerLevel lblLevelTriggerPercDesc"},
        {"chkScheduleAds", -1, "txtAdvertClientDatabase cmdSelectClientsDB lblAdvertClientsDB",
         "txtSTTriggerLevel"},
    };
    for (const auto& step : steps) {
        if (step.entry >= 0)
            pick("comboStationControl", step.entry);
        else
            click(step.step);
        EXPECT_TRUE(enabled(step.on)) << step.on;
        for (const QString& name : QString(step.off).split(' '))
            EXPECT_FALSE(find<QWidget>(name.toLatin1())->isEnabled()) << name.toStdString();
    }
    type("txtAdvertClientDatabase", "ADS");
    click("chkScheduleAds");
    EXPECT_EQ(typed("txtAdvertClientDatabase"), "");
}

// The first wrong field: its message, its tab in front, the focus on it, and the file as it was.
TEST_F(AutomationFormsTest, RefusesAtTheFieldAndWritesNothing) {
    openSettings();
    type("txtSegPreviewLength", "3x0y1"); // digits only
    EXPECT_EQ(typed("txtSegPreviewLength"), "301");
    type("txtRestartSeconds", "");
    type("txtPrecueTime", "40000");
    const QByteArray before = file();
    const auto press = [this](const char* field) {
        reach("pnlLogPreview"); // another tab
        prompts.forget();
        click("cmdOK");
        EXPECT_TRUE(form->isVisible());
        EXPECT_EQ(prompts.asked.size(), 1);
        EXPECT_EQ(prompts.asked.last().icon, platform::Icon::Exclamation);
        EXPECT_EQ(prompts.pointer(), platform::Pointer::Default);
        EXPECT_TRUE(find<QWidget>(field)->isVisible() && find<QWidget>(field)->hasFocus()) << field;
        return texts().value(0);
    };
    EXPECT_EQ(press("txtRestartSeconds"),
              "You must set the automatic restart delay to a value from 0 to 32000 seconds");
    type("txtRestartSeconds", "5");
    EXPECT_TRUE(press("txtSegPreviewLength").startsWith("You can only set from 1 to 300"));
    type("txtSegPreviewLength", "30");
    EXPECT_EQ(press("txtPrecueTime"), "This number has to lie between 0 and 32767.");
    EXPECT_EQ(file(), before);
    prompts.answers = {Answer::No, Answer::Yes};
    click("cmdCancel");
    EXPECT_TRUE(form->isVisible());
    click("cmdCancel");
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(file(), before);
}

TEST_F(AutomationFormsTest, ShowsWhatFollowsFromTheControls) {
    const FixedClock clock({{2024, 3, 5}, {9, 0}});
    make("C:\\DATA\\ADS.MDB", AdvertsType, "The clients");
    {
        const auto database = OpenSuiteDatabase(Path);
        const auto rows = database->open("Settings", RecordsetMode::Dynaset);
        PutDatabaseSetting(rows.get(), "KOVA.LogFont.FontName", "No such font", 0);
    }
    openSettings();
    EXPECT_EQ(form->focusWidget()->objectName(), "txtSegPreviewLength");
    EXPECT_EQ(find<ColourButton>("cmdAutomationFore")->colour(), 0); // black can be read on pure green
    EXPECT_EQ(text("lblMusicSampleFilename"), "TL240305.LOG");
    auto* format = qobject_cast<QComboBox*>(reach("comboMusicFilenameFormat"));
    format->lineEdit()->selectAll();
    QTest::keyClicks(format, "d");
    EXPECT_EQ(text("lblMusicSampleFilename"), "TL5.LOG"); // at each key
    QTest::keyClicks(format, "-mmm");
    EXPECT_EQ(text("lblMusicSampleFilename"), "TL5-Mar.LOG");
    type("txtMusicFilenamePrefix", " X ");
    EXPECT_EQ(text("lblMusicSampleFilename"), "X5-Mar.LOG");
    click("chkScheduleAds");
    withNextWindow([](QWidget& chooser) {
        waitForRows(chooser);
        QTest::keyClick(&chooser, Qt::Key_Return);
    });
    click("cmdSelectClientsDB");
    EXPECT_EQ(typed("txtAdvertClientDatabase"), "ADS.MDB");
    EXPECT_EQ(text("lblAdvertClientsDB"), "The clients");
    type("txtAdvertClientDatabase", "NONE");
    EXPECT_EQ(text("lblAdvertClientsDB"), "");
    prompts.folders = {QString("M:\\LOGS")};
    click("cmdBrowseMusicLogsPath");
    EXPECT_EQ(prompts.folderPrompts.last(), "Select the folder to use for Songs Log files:");
    EXPECT_EQ(typed("txtMusicLogPath"), "M:\\LOGS");
    prompts.waveFormats = {platform::WaveFormat{1, 1, 48000}};
    click("cmdSelectAudioFormat");
    EXPECT_TRUE(text("lblAudioFormat").contains("48.000 kHz") && text("lblAudioFormat").endsWith("Mono "))
        << text("lblAudioFormat").toStdString();
    // The dialog shows another font for one that is not installed: it stays, whatever else is chosen.
    for (const int points : {12, 20}) {
        withNextWindow([points](QWidget& dialog) {
            auto* fonts = qobject_cast<QFontDialog*>(&dialog);
            QFont font = fonts->currentFont();
            font.setPointSize(points);
            font.setItalic(points == 20);
            fonts->setCurrentFont(font);
            QTest::keyClick(fonts, Qt::Key_Return);
        });
        click("cmdSelectLogFont");
        EXPECT_EQ(find<QWidget>("pnlLogPreview")->font().pointSize(), points);
        EXPECT_EQ(text("lblLogFont"),
                  QStringLiteral("No such font, %1 points (not installed here, so another "
                                 "font stands in for it)")
                      .arg(points));
    }
    prompts.colours = {255, 0xFF0000};
    click("cmdStatusback"); // paints its sample and nothing else
    EXPECT_TRUE(find<QWidget>("pnlStatus")->styleSheet().contains("#ff0000"));
    click("cmdLogBack");
    EXPECT_TRUE(find<QWidget>("pnlLog")->styleSheet().contains("#0000ff"));
    EXPECT_TRUE(find<QWidget>("pnlLogPreview")->styleSheet().contains("#0000ff"));
    type("txtAdvertClientDatabase", "ADS.MDB");
    click("cmdOK");
    EXPECT_FALSE(form->isVisible()) << texts().join('|').toStdString();
    const KOVADatabaseSettings now = stored();
    EXPECT_EQ(now.SEGUE_VoiceLinkKhz, 48000);
    EXPECT_EQ(now.SEGUE_VoiceLinkChannels, 1);
    EXPECT_EQ(now.KOVA_LogFont_FontSize, 20);
    EXPECT_TRUE(now.KOVA_LogFont_FontItalic);
    EXPECT_EQ(now.KOVA_LogFont_FontName, "No such font");
    EXPECT_TRUE(find<QWidget>("lblReadOnly")->isHidden());
    EXPECT_EQ(now.KOVA_LogBackColor, 0xFF0000);
    EXPECT_EQ(now.KOVA_LogForeColor, static_cast<qint32>(0x80000012)); // a system colour survives
    EXPECT_EQ(now.MUSIC_FilenameFormat, "d-mmm");
    EXPECT_EQ(record.SEGUE_VoiceLinkKhz, 48000);
}

TEST_F(AutomationFormsTest, OpensADatabaseOnAServerAndNoneThatIsGone) {
    openSettings("C:\\DATA\\SCHEDULE\\NONE.MDB");
    EXPECT_FALSE(enabled("tbsKOVA") || enabled("cmdOK"));
    QTest::keyClick(form.get(), Qt::Key_Escape);
    EXPECT_FALSE(form->isVisible());
    makeOnServer("kova", KOVAType);
    ASSERT_EQ(ValidateKOVADatabaseTables("kova", connect()), 0);
    openSettings("kova", connect());
    type("txtPrecueTime", "33");
    click("cmdOK");
    EXPECT_FALSE(form->isVisible()) << texts().join('|').toStdString();
    openSettings("kova", connect());
    EXPECT_EQ(typed("txtPrecueTime"), "33");
    {
        const platform::LookOnly look;
        openSettings();
        EXPECT_TRUE(find<QWidget>("lblReadOnly")->isVisible());
        EXPECT_TRUE(text("lblReadOnly").contains("(opened for reading only)"));
    }
    // And a file that goes while its settings are on the screen.
    openSettings();
    type("txtPrecueTime", "44");
    platform::RemoveFile(Path);
    click("cmdOK");
    EXPECT_TRUE(form->isVisible());
    EXPECT_TRUE(texts().last().contains("was removed or replaced"));
}

TEST_F(AutomationFormsTest, SetsUpTheWorkstation) {
    machine.write("C:\\WINDOWS\\TOLVEX.INI", "");
    make("C:\\DATA\\SCHEDULE\\OLD.MDB", KOVAType, "An older one");
    openSetup();
    EXPECT_EQ(text("lblKOVADatabaseDescription"), "");
    EXPECT_FALSE(enabled("cmdKOVADBSettings"));
    withNextWindow([](QWidget& chooser) {
        waitForRows(chooser);
        QTest::keyClick(chooser.focusWidget(), Qt::Key_End);
        QTest::mouseClick(chooser.findChild<QPushButton*>("cmdOK"), Qt::LeftButton);
    });
    click("cmdSelectKOVADatabase");
    EXPECT_EQ(text("lblKOVADatabaseFName"), "OLD.MDB");
    EXPECT_EQ(text("lblKOVADatabaseDescription"), "An older one ");
    EXPECT_TRUE(enabled("cmdKOVADBSettings"));
    EXPECT_EQ(mdb("mdb-tables", "C:\\DATA\\SCHEDULE\\OLD.MDB", {"-1"}).count('\n'), 5); // up to date at once

    EXPECT_FALSE(enabled("comboReleaseControl") || enabled("txtReleaseTime") || enabled("comboRequestMode"));
    click("chkAllowControl");
    EXPECT_TRUE(enabled("comboReleaseControl txtReleaseTime lblReleaseTimeout comboRequestMode "
                        "chkGetControlKLogStart frameControl"));
    type("txtReleaseTime", "2x5");
    pick("comboReleaseControl", 2);
    EXPECT_FALSE(enabled("txtReleaseTime"));
    pick("comboRequestMode", 1);
    pick("comboKOVAICMode", 2);
    click("chkGenerateAdvertRecFiles");
    withNextWindow([](QWidget& window) {
        EXPECT_EQ(window.objectName(), "frmKOVADatabaseSettings");
        // As large as all of its tabs need, as far as the screen has room.
        const int wanted = window.findChild<QTabWidget*>()->tabBar()->sizeHint().width();
        EXPECT_GE(window.width(), qMin(wanted, window.screen()->availableSize().width()));
        EXPECT_TRUE(window.windowFlags() & Qt::WindowStaysOnTopHint);
        EXPECT_TRUE(window.findChild<QWidget*>("tbsKOVA")->isEnabled());
        QTest::keyClick(&window, Qt::Key_Escape);
    });
    click("cmdKOVADBSettings");
    click("cmdOK");
    EXPECT_EQ(
        machine.read("C:\\WINDOWS\\TOLVEX.INI"),
        "[KOVA]\r\nDefaultDatabase=OLD.MDB\r\nGenerateAdvertRecFiles=1\r\nLogWhenStationController=0\r\n"
        "DisplayInstantCarts=2\r\nAllowControl=1\r\nReleaseMode=2\r\nReleaseTime=25\r\nRequestMode=1\r\n"
        "GetControlKLogStart=0\r\n");
    EXPECT_EQ(settings.DefaultDatabase, "OLD.MDB");

    // A file that may not be written keeps the window open, and the settings as they were.
    openSetup();
    click("chkGenerateAdvertRecFiles");
    {
        const platform::LookOnly look;
        click("cmdOK");
    }
    EXPECT_TRUE(form->isVisible());
    EXPECT_TRUE(texts().takeLast().contains("C:\\WINDOWS\\TOLVEX.INI was not changed: it "));
    EXPECT_NE(settings.GenerateAdvertRecFiles, 0);

    openSetup();
    EXPECT_TRUE(on("chkAllowControl"));
    click("cmdClearKOVADatabase");
    EXPECT_EQ(text("lblKOVADatabaseDescription"), "");
    EXPECT_FALSE(enabled("cmdKOVADBSettings"));
    const QByteArray before = machine.read("C:\\WINDOWS\\TOLVEX.INI");
    prompts.answers = {Answer::Yes};
    click("cmdCancel");
    EXPECT_EQ(machine.read("C:\\WINDOWS\\TOLVEX.INI"), before);
    EXPECT_EQ(settings.DefaultDatabase, "OLD.MDB");
}

// What the chooser does to the workstation's own database is followed; a file that is gone is told.
TEST_F(AutomationFormsTest, FollowsItsOwnDatabase) {
    settings.DefaultDatabase = "KOVA26.MDB";
    qputenv("XDG_DATA_HOME", machine.path().toUtf8());
    openSetup();
    const auto inChooser = [this](const char* action) {
        withNextWindow([action](QWidget& chooser) {
            waitForRows(chooser);
            chooser.findChild<QAction*>(action)->trigger();
            QTest::keyClick(&chooser, Qt::Key_Escape);
        });
        click("cmdSelectKOVADatabase");
    };
    prompts.typed = {QString("NEW")};
    inChooser("mnuRename");
    EXPECT_EQ(text("lblKOVADatabaseFName"), "NEW.MDB");
    EXPECT_EQ(text("lblKOVADatabaseDescription"), "The log ");
    EXPECT_TRUE(texts().last().startsWith("KOVA26.MDB was the automation database of this workstation."));
    EXPECT_TRUE(find<QWidget>("lblKOVADatabaseFault")->isHidden());
    prompts.answers = {Answer::Yes, Answer::Yes};
    inChooser("mnuDelete");
    EXPECT_EQ(text("lblKOVADatabaseFName"), "");
    EXPECT_TRUE(texts().last().startsWith("NEW.MDB was the automation database of this workstation."));
    prompts.answers = {Answer::Yes}; // the changes are lost
    click("cmdCancel");
    openSetup();
    EXPECT_EQ(text("lblKOVADatabaseFault"), "This file is not in C:\\DATA\\SCHEDULE.");
    EXPECT_TRUE(find<QWidget>("lblKOVADatabaseFault")->isVisible());
}
