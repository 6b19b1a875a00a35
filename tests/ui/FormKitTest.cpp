// The kit for forms, driven by keyboard and mouse: fields that fill and take a record, rules that say why a
// control is disabled, errors that are shown at their field, questions about unsaved changes, boxes of
// digits, colours.
#include "support/MachineFolder.h"
#include "support/QtPrinters.h"
#include "support/ScriptedPrompts.h"

#include "ui/binding/ColourButton.h"
#include "ui/binding/EnableRules.h"
#include "ui/binding/FieldError.h"
#include "ui/binding/FormBinding.h"
#include "ui/binding/FormChanges.h"
#include "ui/binding/SettingBinding.h"
#include "ui/richtext/PrintDocument.h"
#include "ui/style/FitForm.h"
#include "ui/style/TextBoxes.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QTabBar>
#include <QTabWidget>
#include <QTableWidget>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

using namespace tolvex;
using namespace tolvex::tests;

namespace {

struct Record {
    qint16 flag = 0;
    qint16 ticked = 0;
    bool plain = false;
    qint16 word = 0;
    qint32 port = 0;
    qint32 player = 0;
    qint16 mode = 0;
    float seconds = 0;
    QString name;
    qint32 colour = 0;
    qint32 speed = 0;
};

const BoundField<Record> fields[] = {
    Bound<&Record::flag>("chkFlag"),
    Bound<&Record::ticked>("chkTicked").tickedAs(1),
    Bound<&Record::plain>("chkPlain"),
    Bound<&Record::word>("txtWord"),
    Bound<&Record::port>("comboPort").from(1),
    Bound<&Record::player>("comboPlayer"),
    Bound<&Record::mode>("optOne optTwo").from(1),
    Bound<&Record::seconds>("txtSeconds").range(0, 60),
    Bound<&Record::name>("txtName").atMost(5).help("What it is called."),
    Bound<&Record::colour>("cmdColour"),
    Bound<&Record::speed>("sldSpeed"),
};

// Two tabs with one control of each kind.
struct Form : QWidget {
    QTabWidget* tabs = new QTabWidget(this);
    QWidget* first = new QWidget;
    QWidget* second = new QWidget;

    Form() {
        auto* layout = new QVBoxLayout(this);
        layout->addWidget(tabs);
        tabs->addTab(first, "&First");
        tabs->addTab(second, "Second");
        new QVBoxLayout(first);
        new QVBoxLayout(second);
        for (const char* name : {"chkFlag", "chkTicked", "chkPlain"})
            add<QCheckBox>(first, name)->setText(name);
        add<QLineEdit>(first, "txtName");
        auto* label = add<QLabel>(first, "lblName");
        label->setText("The &name:");
        label->setBuddy(get<QLineEdit>("txtName"));
        add<QComboBox>(first, "comboPort")->addItems({"Port 1", "Port 2"});
        auto* players = add<QComboBox>(first, "comboPlayer");
        players->addItem("Player 1", 1);
        players->addItem("the last", 255);
        for (const char* name : {"txtWord", "txtSeconds"})
            add<QLineEdit>(second, name)->setAccessibleName(name);
        add<QRadioButton>(second, "optOne");
        add<QRadioButton>(second, "optTwo");
        add<ColourButton>(second, "cmdColour");
        add<QSlider>(second, "sldSpeed");
    }
    void open() {
        show();
        activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(this));
    }
    template<typename Widget>
    Widget* add(QWidget* page, const char* name) {
        auto* widget = new Widget(page);
        widget->setObjectName(name);
        page->layout()->addWidget(widget);
        return widget;
    }
    template<typename Widget>
    Widget* get(const char* name) const {
        return findChild<Widget*>(name);
    }
    void type(const char* name, const QString& text) {
        get<QLineEdit>(name)->setFocus();
        get<QLineEdit>(name)->selectAll();
        QTest::keyClicks(get<QLineEdit>(name), text);
    }
};

} // namespace

TEST(FormBinding, FillsAndTakesEachKindOfField) {
    Form form;
    Record record = {5, -1, true, -7, 2, 255, 2, 1.5F, "Studio", static_cast<qint32>(0x8000000Fu), 33};
    FormBinding binding(&form);
    binding.bind(record, fields);
    binding.fill();
    EXPECT_EQ(form.get<QLineEdit>("txtSeconds")->text(), "1.5");
    EXPECT_EQ(form.get<QComboBox>("comboPort")->currentText(), "Port 2");
    EXPECT_EQ(form.get<QComboBox>("comboPlayer")->currentText(), "the last");
    EXPECT_TRUE(form.get<QRadioButton>("optTwo")->isChecked());
    EXPECT_EQ(form.get<QLineEdit>("txtName")->text(), "Studi");
    EXPECT_EQ(form.get<QLineEdit>("txtName")->toolTip(), "What it is called.");
    record.name = "Studi";
    EXPECT_FALSE(binding.changed());

    binding.take();
    EXPECT_EQ(record.flag, -1);
    EXPECT_EQ(record.ticked, 1);
    EXPECT_TRUE(record.plain);
    EXPECT_EQ(record.word, -7);
    EXPECT_EQ(record.port, 2);
    EXPECT_EQ(record.player, 255);
    EXPECT_EQ(record.mode, 2);
    EXPECT_EQ(record.seconds, 1.5F);
    EXPECT_EQ(record.colour, static_cast<qint32>(0x8000000Fu));
    EXPECT_EQ(record.speed, 33);

    form.get<QRadioButton>("optOne")->setChecked(true);
    EXPECT_TRUE(binding.changed());
    form.get<QLineEdit>("txtWord")->setText("40000x");
    form.get<QLineEdit>("txtSeconds")->setText("2.25");
    form.get<QCheckBox>("chkFlag")->setChecked(false);
    binding.take();
    EXPECT_EQ(record.mode, 1);
    EXPECT_EQ(record.word, 32767);
    EXPECT_EQ(record.seconds, 2.25F);
    EXPECT_EQ(record.flag, 0);
}

TEST(FormBinding, AValueThatAListDoesNotOfferStays) {
    Form form;
    Record record;
    record.port = 7;
    record.player = 3;
    FormBinding binding(&form);
    binding.bind(record, fields);
    binding.fill();
    EXPECT_EQ(form.get<QComboBox>("comboPort")->currentIndex(), -1);
    EXPECT_EQ(form.get<QComboBox>("comboPlayer")->currentIndex(), -1);
    EXPECT_FALSE(binding.changed() && record.mode == 1); // no radio button is chosen for mode 0
    binding.take();
    EXPECT_EQ(record.port, 7);
    EXPECT_EQ(record.player, 3);
    EXPECT_EQ(record.mode, 1); // none chosen: the first
}

TEST(FormBinding, NamesTheFirstNumberThatDoesNotFit) {
    Form form;
    Record record;
    FormBinding binding(&form);
    binding.bind(record, fields);
    binding.fill();
    EXPECT_FALSE(binding.wrong());
    form.get<QLineEdit>("txtSeconds")->setText("60.5");
    ASSERT_TRUE(binding.wrong());
    EXPECT_EQ(binding.wrong()->message, "\"txtSeconds\" must be a number from 0 to 60");
    form.get<QLineEdit>("txtWord")->setText("32768");
    EXPECT_EQ(binding.wrong()->message, "\"txtWord\" must be a number from -32768 to 32767");
    form.get<QLineEdit>("txtWord")->setEnabled(false);
    EXPECT_EQ(binding.wrong()->control, form.get<QLineEdit>("txtSeconds"));
}

// The settings have their own rows; a form fills some of them in its own way.
TEST(SettingBinding, BindsTheRowsThatNameTheFormAndItsControl) {
    QWidget form;
    form.setObjectName("frmDateTimeSetup");
    auto* port = new QComboBox(&form);
    port->setObjectName("comboRadioClock");
    port->addItems({"none", "1", "2"});
    Settings settings;
    settings.RadioClockComPort = 2;
    FormBinding binding(&form);
    BindSettings(binding, &form, settings);
    binding.fill();
    EXPECT_EQ(port->currentIndex(), 2);
    EXPECT_TRUE(port->toolTip().contains("radio clock"));
    port->setCurrentIndex(1);
    binding.take();
    EXPECT_EQ(settings.RadioClockComPort, 1);

    QWidget other;
    other.setObjectName("frmFileLocations");
    FormBinding none(&other);
    BindSettings(none, &other, settings);
    EXPECT_FALSE(none.changed());
}

TEST(EnableRules, SayWhyAControlCannotBeUsedAndFollowTheForm) {
    Form form;
    form.get<QLineEdit>("txtName")->setToolTip("own");
    bool there = false;
    EnableRules rules(&form, {{"txtName lblName", "Tick the flag.", IsOn("chkFlag")},
                              {"txtName", "Nothing is there.", [&there](const FormView&) { return there; }},
                              {"txtWord", "Locked.", IsOn("chkPlain"), EnableRule::Effect::Locks},
                              {"txtSeconds", "Only for port 2.",
                               [](const FormView& view) { return view.number("comboPort") == 1; }}});
    auto* name = form.get<QLineEdit>("txtName");
    EXPECT_FALSE(name->isEnabled());
    EXPECT_EQ(name->toolTip(), "Tick the flag.");
    EXPECT_EQ(name->accessibleDescription(), "Tick the flag.");
    form.get<QCheckBox>("chkFlag")->click();
    EXPECT_TRUE(form.get<QLabel>("lblName")->isEnabled());
    EXPECT_FALSE(name->isEnabled());
    EXPECT_EQ(name->toolTip(), "Nothing is there.");
    there = true;
    rules.apply();
    EXPECT_TRUE(name->isEnabled());
    EXPECT_EQ(name->toolTip(), "own");
    EXPECT_EQ(name->accessibleDescription(), "");

    auto* word = form.get<QLineEdit>("txtWord");
    EXPECT_TRUE(word->isEnabled() && word->isReadOnly());
    form.get<QCheckBox>("chkPlain")->click();
    EXPECT_FALSE(word->isReadOnly());
    EXPECT_FALSE(form.get<QLineEdit>("txtSeconds")->isEnabled());
    form.get<QComboBox>("comboPort")->setCurrentIndex(1);
    EXPECT_TRUE(form.get<QLineEdit>("txtSeconds")->isEnabled());
}

TEST(FieldError, LeadsToTheFieldAndMarksItUntilTheNextEdit) {
    ScriptedPrompts prompts;
    Form form;
    form.open();
    auto* word = form.get<QLineEdit>("txtWord");
    word->setText("99");
    EXPECT_FALSE(ShowFieldError(form.get<QLineEdit>("txtName"), "A name is needed"));
    EXPECT_FALSE(form.tabs->tabIcon(0).isNull());
    EXPECT_FALSE(ShowFieldError(word, "Too much", platform::Icon::Information));
    EXPECT_EQ(prompts.texts(), (QStringList{"A name is needed", "Too much"}));
    EXPECT_EQ(prompts.asked.last().icon, platform::Icon::Information);
    EXPECT_EQ(form.tabs->currentIndex(), 1);
    EXPECT_TRUE(word->hasFocus());
    EXPECT_EQ(word->selectedText(), "99");
    EXPECT_EQ(word->accessibleDescription(), "Too much");
    EXPECT_TRUE(form.tabs->tabIcon(0).isNull()); // one error at a time
    EXPECT_FALSE(form.tabs->tabIcon(1).isNull());
    EXPECT_EQ(form.tabs->tabBar()->accessibleTabName(1), "Second, a field is wrong");
    const QImage marked = word->grab().toImage();
    QTest::keyClicks(word, "99");
    EXPECT_TRUE(form.tabs->tabIcon(1).isNull());
    EXPECT_EQ(word->accessibleDescription(), "");
    word->selectAll();
    EXPECT_NE(word->grab().toImage(), marked);
}

TEST(FitForm, LeavesRoomForAnErrorMark) {
    ScriptedPrompts prompts;
    Form form;
    form.tabs->setTabText(0, QString(40, u'm'));
    FitForm(&form);
    form.open();
    ShowFieldError(form.get<QLineEdit>("txtName"), "A name is needed");
    EXPECT_LE(form.tabs->tabBar()->sizeHint().width(), form.tabs->width());
}

TEST(FormChanges, CountWhatCanBeUsedAndAskOnce) {
    ScriptedPrompts prompts;
    Form form;
    // The editor of a cell is not a field of the form.
    auto* grid = form.add<QTableWidget>(form.first, "grid");
    auto* editor = new QLineEdit(grid->viewport());
    FormChanges changes(&form, "chkTicked sldSpeed");
    editor->setText("x");
    form.get<QCheckBox>("chkTicked")->click();
    form.get<QSlider>("sldSpeed")->setValue(9);
    EXPECT_FALSE(changes.any());
    form.type("txtName", "Aa");
    form.get<ColourButton>("cmdColour")->setColour(0xFF);
    EXPECT_EQ(changes.names(), (QStringList{"The name", ""}));
    form.get<QLineEdit>("txtName")->setEnabled(false);
    form.get<ColourButton>("cmdColour")->setColour(0);
    EXPECT_FALSE(changes.any());
    form.get<QLineEdit>("txtName")->setEnabled(true);
    EXPECT_TRUE(changes.any());
    changes.markStored();
    EXPECT_FALSE(changes.any());

    prompts.answers = {platform::Answer::No, platform::Answer::Yes};
    EXPECT_FALSE(AskToLoseChanges("Not saved."));
    EXPECT_TRUE(AskToLoseChanges("Not saved."));
    EXPECT_EQ(prompts.asked.first().text, "Not saved.\n\nClose without them?");
    EXPECT_EQ(prompts.asked.first().defaultAnswer, platform::Answer::No);
}

TEST(TextBoxes, ABoxOfDigitsTakesNothingElseAndEndsInItsRange) {
    Form form;
    auto* word = form.get<QLineEdit>("txtWord");
    TakeDigits(word, 4);
    ClampOnLeaving(word, 1, 100);
    TakeDigits(form.get<QLineEdit>("txtSeconds"), 0, ".");
    ClampOnLeaving(form.get<QLineEdit>("txtSeconds"), 0, 60);
    form.open();
    form.tabs->setCurrentIndex(1);
    form.type("txtSeconds", "1a.5");
    EXPECT_EQ(form.get<QLineEdit>("txtSeconds")->text(), "1.5");
    form.type("txtWord", "1x23456");
    EXPECT_EQ(word->text(), "1234");
    form.get<QLineEdit>("txtSeconds")->setFocus();
    EXPECT_EQ(word->text(), "100");
    word->setFocus();
    QCoreApplication::processEvents();
    EXPECT_EQ(word->selectedText(), "100");
    QApplication::clipboard()->setText("-5");
    word->paste();
    EXPECT_EQ(word->text(), "5");
    word->clear();
    form.get<QLineEdit>("txtSeconds")->setFocus();
    EXPECT_EQ(word->text(), "1");
    form.get<QLineEdit>("txtSeconds")->clear();
    word->setFocus();
    EXPECT_EQ(form.get<QLineEdit>("txtSeconds")->text(), "0");
}

TEST(ColourButton, ChoosesByTheKeyboardAndShowsItsColourOnThePanel) {
    ScriptedPrompts prompts;
    Form form;
    form.open();
    form.tabs->setCurrentIndex(1);
    auto* ground = form.get<ColourButton>("cmdColour");
    auto* text = form.add<ColourButton>(form.second, "cmdText");
    auto* panel = form.add<QLabel>(form.second, "pnl");
    ground->setColour(0xFFFFFF);
    ShowColoursOn(panel, ground, text);
    EXPECT_EQ(panel->toolTip(), "Contrast 21.0 to 1");
    ground->setFocus();
    prompts.colours = {std::nullopt, 0x0000FF};
    QTest::keyClick(ground, Qt::Key_Space);
    EXPECT_EQ(ground->colour(), 0xFFFFFF);
    QTest::keyClick(ground, Qt::Key_Space);
    EXPECT_EQ(ground->colour(), 0x0000FF);
    EXPECT_EQ(prompts.colourInitials, (QList<qint32>{0xFFFFFF, 0xFFFFFF}));
    EXPECT_EQ(ground->accessibleDescription(), "Colour #FF0000");
    EXPECT_EQ(panel->grab().toImage().pixelColor(1, 1), QColor(255, 0, 0));
    text->setColour(0x2020FF);
    EXPECT_TRUE(panel->toolTip().endsWith("hard to read")) << panel->toolTip().toStdString();
}

TEST(PrintDocument, APdfIsWrittenWholeOrTheFaultIsReported) {
    TestMachine machine;
    ScriptedPrompts prompts;
    prompts.files = {std::nullopt, QString("C:\\A.PDF "), QString("C:\\NOT THERE\\A.PDF")};
    for (int i = 0; i < 3; ++i)
        SaveHtmlAsPdf("<p>x</p>", "Lines", "Save them", "A.pdf");
    EXPECT_TRUE(machine.read("C:\\A.PDF").startsWith("%PDF"));
    ASSERT_EQ(prompts.texts().size(), 1);
    EXPECT_TRUE(prompts.texts().first().contains("saving the file C:\\NOT THERE\\A.PDF"));
    EXPECT_EQ(prompts.fileQuestions.first().title, "Save them");
    EXPECT_EQ(prompts.fileQuestions.first().fileName, "A.pdf");
}
