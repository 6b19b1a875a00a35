// The form: what opening shows and asks, the fields of each type, Apply, OK, Cancel, the line list.
#include "hardware/forms/HardwareForm.h"

#include "support/QtPrinters.h"

#include "hardware/LineList.h"
#include "platform/Machine.h"
#include "ui/style/FitForm.h"

#include <QHeaderView>
#include <QProcess>
#include <QRegularExpression>
#include <QScreen>
#include <QScrollBar>

#include <gtest/gtest.h>

using namespace tolvex;
using namespace tolvex::tests;

namespace {

const QByteArray threeCards = "[Hardware1]\r\nCardType=3\r\nBaseAddress=2\r\nLineType1=0\r\nAction1=1\r\n"
                              "Action1Data1=4\r\n[Hardware2]\r\nCardType=4\r\nBaseAddress=16\r\n";

QString plain(QString caption) {
    return caption.remove(u'&');
}

struct PrintedWord {
    QString text;
    double left;
};

// The words of a PDF file in reading order, from an independent reader.
QList<PrintedWord> printedWords(const QString& hostPath) {
    QProcess reader;
    reader.start("pdftotext", {"-bbox", hostPath, "-"});
    EXPECT_TRUE(reader.waitForFinished() && reader.exitCode() == 0);
    static const QRegularExpression word("<word xMin=\"([^\"]*)\"[^>]*>([^<]*)</word>");
    const QString page = QString::fromUtf8(reader.readAllStandardOutput());
    QList<PrintedWord> words;
    for (const QRegularExpressionMatch& match : word.globalMatch(page))
        words.append({match.captured(2), match.captured(1).toDouble()});
    return words;
}

} // namespace

TEST(HardwareSettings, OpensWithTheCardsAsTheyAreStored) {
    HardwareForm hw(threeCards);
    hw.driver.addFixed(16, 3, 2);
    hw.driver.addFixed(10, 2, 2);
    hw.open();
    EXPECT_EQ(hw.form->windowTitle(), "Hardware Settings");
    EXPECT_EQ(hw.type(1)->currentText(), "RS232 based controller");
    EXPECT_EQ(hw.on<QComboBox>(1, "ComPortlist")->currentText(), "2");
    EXPECT_EQ(plain(hw.on<QLabel>(1, "PortAddressL")->text()), "Not Used");
    EXPECT_FALSE(hw.address(1)->isEnabled());
    EXPECT_EQ(hw.grid(1)->model()->rowCount(), 8);
    EXPECT_EQ(hw.cell(1, 1, ColumnDescription), "IC Trigger 4");
    EXPECT_EQ(hw.cell(1, 2, ColumnType), "Output");
    EXPECT_EQ(hw.type(2)->currentText(), "Advantech Card (i.e. PCI 1750)");
    EXPECT_EQ(plain(hw.on<QLabel>(2, "PortAddressL")->text()), "Device Number(Hex)");
    EXPECT_EQ(hw.address(2)->text(), "10");
    EXPECT_FALSE(hw.on<QComboBox>(2, "ComPortlist")->isEnabled());
    // Reading asks the real device; then device 0, while the address is empty; then the text as a decimal.
    EXPECT_EQ(hw.driver.calls.filter("open"), (QStringList{"open 16", "open 0", "open 10"}));
    EXPECT_EQ(hw.grid(2)->model()->rowCount(), 4);
    EXPECT_EQ(hw.type(3)->currentText(), "Disabled");
    EXPECT_EQ(hw.grid(3)->model()->rowCount(), 0);
    EXPECT_FALSE(hw.address(3)->isEnabled());
    EXPECT_NE(hw.grid(1)->model()->index(0, ColumnAction).data(Qt::ForegroundRole),
              hw.grid(1)->model()->index(1, ColumnAction).data(Qt::ForegroundRole));
    // A default description made on opening is not a change by the user.
    EXPECT_EQ(hw.changes(), "");
    EXPECT_EQ(hw.prompts.pointer(), platform::Pointer::Default);
    EXPECT_TRUE(hw.prompts.asked.isEmpty());
    QStringList headings;
    for (int column = 0; column < hw.grid(1)->model()->columnCount(); ++column)
        headings += hw.grid(1)->model()->headerData(column, Qt::Horizontal).toString();
    EXPECT_EQ(headings, (QStringList{"Line", "Type", "L", "Description", "Action", "Info 1", "Info 2",
                                     "Info 3", "Info 4"}));
}

TEST(HardwareSettings, AMissingDriverIsToldOncePerActionAndNotPerKey) {
    HardwareForm hw("[Hardware1]\r\nCardType=4\r\n[Hardware3]\r\nCardType=4\r\nBaseAddress=9\r\n");
    {
        const NoDriver none;
        hw.open();
        EXPECT_EQ(hw.prompts.asked.size(), 1);
        EXPECT_EQ(hw.grid(1)->model()->rowCount(), 0);
        hw.address(1)->setFocus();
        QTest::keyClicks(hw.address(1), "255");
        EXPECT_EQ(hw.prompts.asked.size(), 1);
        hw.grid(1)->setFocus();
        EXPECT_EQ(hw.prompts.asked.size(), 2);
        hw.press("cmdApply");
        EXPECT_EQ(hw.prompts.asked.size(), 3);
    }
    hw.driver.addFixed(12, 3, 3);
    hw.driver.calls.clear();
    hw.address(1)->setFocus();
    QApplication::processEvents();
    QTest::keyClicks(hw.address(1), "12");
    EXPECT_EQ(hw.driver.calls.filter("open"), (QStringList{"open 1", "open 12"}));
    hw.grid(1)->setFocus();
    // "1" did not answer, but it was only an intermediate text.
    EXPECT_EQ(hw.prompts.asked.size(), 3);
    EXPECT_EQ(hw.grid(1)->model()->rowCount(), 6);
    // Choosing a type is a separate action.
    hw.type(2)->setCurrentIndex(2);
    EXPECT_EQ(hw.grid(2)->model()->rowCount(), 2);
    EXPECT_EQ(hw.prompts.asked.size(), 3);
}

TEST(HardwareSettings, FieldsAndLinesFollowTheType) {
    HardwareForm hw("[Hardware1]\r\nCardType=3\r\nBaseAddress=1\r\n");
    hw.open();
    struct Case {
        const char* type;
        const char* caption;
        bool address;
        bool port;
        int rows;
    };
    for (const Case& c : {Case{"Joystick Port", "Not Used", false, false, 4},
                          Case{"Advantech Card (i.e. PCI 1750)", "Device Number(Hex)", true, false, 0},
                          Case{"Disabled", "Device Number(Hex)", false, false, 0},
                          Case{"RS232 based controller", "Not Used", false, true, 8}}) {
        hw.type(1)->setCurrentText(c.type);
        EXPECT_EQ(plain(hw.on<QLabel>(1, "PortAddressL")->text()), c.caption);
        EXPECT_EQ(hw.address(1)->isEnabled(), c.address) << c.type;
        EXPECT_EQ(hw.on<QComboBox>(1, "ComPortlist")->isEnabled(), c.port) << c.type;
        EXPECT_EQ(hw.grid(1)->model()->rowCount(), c.rows) << c.type;
        // Each type set its lines permanently.
        EXPECT_FALSE(hw.cards[1].Lines[4].isOutput());
        EXPECT_TRUE(hw.cards[1].Lines[5].isOutput());
    }
    EXPECT_EQ(hw.prompts.asked.size(), 1); // device 1 does not answer
}

TEST(HardwareSettings, ApplyStopsAtTheFirstFaultAndOkClosesAfterAnEarlierApply) {
    HardwareForm hw(threeCards);
    hw.driver.addFixed(16, 3, 2);
    hw.open();
    hw.showCard(3);
    hw.type(3)->setCurrentText("RS232 based controller");
    hw.on<QComboBox>(1, "ComPortlist")->setCurrentIndex(3);
    const QByteArray before = hw.ini();
    hw.press("cmdOK");
    EXPECT_EQ(hw.prompts.texts().back(), "You must specify a Serial Port to connect to");
    EXPECT_EQ(hw.prompts.asked.back().icon, platform::Icon::Information);
    EXPECT_TRUE(hw.form->isVisible());
    EXPECT_EQ(hw.ini(), before);
    EXPECT_EQ(hw.cards[1].BaseAddress, 4); // already taken up
    EXPECT_TRUE(hw.on<QComboBox>(3, "ComPortlist")->hasFocus());
    EXPECT_EQ(hw.cards[3].CardType, 0);
    EXPECT_TRUE(hw.changes().contains("1 and 3"));

    hw.on<QComboBox>(3, "ComPortlist")->setCurrentIndex(0);
    hw.address(2)->setText(" 1f");
    hw.driver.addFixed(31, 2, 2);
    hw.press("cmdApply");
    EXPECT_TRUE(hw.ini().contains("[Hardware2]\r\nCardType=4\r\nBaseAddress=31\r\n"));
    EXPECT_TRUE(hw.ini().contains("[Hardware3]\r\nCardType=3\r\nBaseAddress=1\r\n"));
    EXPECT_EQ(hw.changes(), "");
    const auto managers = [] {
        int count = 0;
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (widget->objectName() == "frmHardwareManager") {
                EXPECT_TRUE(widget->isMinimized());
                ++count;
            }
        return count;
    };
    EXPECT_EQ(managers(), 1);
    frmHardwareManager::LoadManager();
    EXPECT_EQ(managers(), 1);

    for (const char* wrong : {"100", "FFFF"}) {
        hw.showCard(1);
        hw.address(2)->setText(wrong);
        hw.prompts.forget();
        hw.press("cmdApply");
        EXPECT_EQ(hw.prompts.texts().back(), "You must specify a Device Number from 0 to FF") << wrong;
        EXPECT_EQ(managers(), 0);
        EXPECT_TRUE(hw.form->isVisible());
        EXPECT_TRUE(hw.address(2)->isVisible() && hw.address(2)->hasFocus());
    }
    hw.prompts.forget();
    hw.press("cmdOK");
    EXPECT_EQ(hw.prompts.texts().back(), "You must specify a Device Number from 0 to FF");
    EXPECT_FALSE(hw.form->isVisible());
    EXPECT_TRUE(hw.ini().contains("BaseAddress=31"));
}

TEST(HardwareSettings, OkWritesAndAFileThatCannotBeWrittenKeepsTheFormOpen) {
    HardwareForm hw(threeCards);
    hw.driver.addFixed(16, 3, 2);
    hw.driver.addFixed(10, 3, 2);
    hw.open();
    hw.click(1, 2, ColumnLogic);
    hw.settings.LocalIniFile = "C:\\GONE\\TOLVEX.INI";
    hw.press("cmdOK");
    EXPECT_TRUE(hw.form->isVisible());
    ASSERT_EQ(hw.prompts.asked.size(), 1);
    EXPECT_TRUE(hw.prompts.texts().front().startsWith("C:\\GONE\\TOLVEX.INI was not changed"));
    hw.settings.LocalIniFile = "TOLVEX.INI";
    hw.press("cmdOK");
    EXPECT_FALSE(hw.form->isVisible());
    // The unused line is not stored; the generated description is.
    EXPECT_TRUE(hw.ini().contains("Description1=IC Trigger 4\r\n"));
    EXPECT_FALSE(hw.ini().contains("ActiveLow2"));
}

TEST(HardwareSettings, CancelAsksOnlyWhenSomethingWouldBeLost) {
    HardwareForm hw(threeCards);
    hw.driver.addFixed(16, 3, 2);
    hw.driver.addFixed(10, 3, 2);
    hw.open();
    hw.click(1, 3, ColumnType);
    EXPECT_TRUE(hw.changes().contains("card 1"));
    hw.prompts.answers = {platform::Answer::No, platform::Answer::Yes};
    hw.key(Qt::Key_Escape);
    EXPECT_TRUE(hw.form->isVisible());
    EXPECT_EQ(hw.prompts.asked.back().defaultAnswer, platform::Answer::No);
    hw.form->close();
    EXPECT_FALSE(hw.form->isVisible());
    EXPECT_EQ(hw.ini(), threeCards);
    EXPECT_FALSE(hw.cards[1].Lines[3].isOutput()); // until the next opening
    hw.open();
    EXPECT_EQ(hw.cell(1, 3, ColumnType), "Output");
    hw.click(1, 3, ColumnType);
    hw.click(1, 3, ColumnType);
    hw.press("cmdCancel");
    EXPECT_FALSE(hw.form->isVisible());
    EXPECT_EQ(hw.prompts.asked.size(), 2);
}

TEST(HardwareSettings, TheSizeFollowsTheLinesUpToTheScreen) {
    HardwareForm hw("[Hardware1]\r\nCardType=3\r\nBaseAddress=1\r\nDescription8=Last\r\n");
    for (const int inputs : {0, 12, 90}) {
        hw.driver.addFixed(0, inputs, 1);
        hw.machine.write(iniPath, inputs == 0 ? hw.ini() : "[Hardware1]\r\nCardType=4\r\n");
        platform::ForgetProfiles();
        frmHardwareSettings form(hw.cards, hw.settings);
        FitForm(&form);
        const QSize screen = form.screen()->availableSize();
        form.show();
        QApplication::processEvents();
        auto* grid = form.findChild<QTabWidget*>("tbsSettings")->widget(0)->findChild<LineGrid*>("gridUsage");
        EXPECT_EQ(grid->verticalScrollBar()->maximum() > 0, inputs == 90) << inputs;
        EXPECT_LE(form.width(), screen.width());
        EXPECT_EQ(form.height() == screen.height(), inputs == 90) << inputs;
        // Room beyond the columns goes to the descriptions; a long one takes only its share.
        EXPECT_GE(grid->horizontalHeader()->length(), grid->viewport()->width());
        const int width = grid->sizeHint().width();
        hw.cards[1].Lines[1].Description = QString(60, u'W');
        grid->showLines();
        const int wider = grid->sizeHint().width();
        EXPECT_GT(wider, width);
        hw.cards[1].Lines[1].Description = QString(250, u'W');
        grid->showLines();
        EXPECT_EQ(grid->sizeHint().width(), wider);
    }
}

TEST(HardwareSettings, SaysWhichDeviceTheLinesCameFrom) {
    HardwareForm hw(threeCards);
    hw.driver.addFixed(10, 3, 2);
    hw.open();
    EXPECT_EQ(hw.prompts.asked.size(), 1); // device 16, which is the card's own, does not answer
    const auto origin = [&](int card) { return hw.on<QLabel>(card, "lblOrigin"); };
    EXPECT_EQ(origin(1)->text(), "");
    EXPECT_EQ(origin(2)->text(),
              "The lines are those of device 10: 3 inputs and 2 outputs. Apply sets device "
              "16, which is 10 in hexadecimal.");
    hw.showCard(2);
    hw.address(2)->setFocus();
    hw.address(2)->setText("7");
    EXPECT_EQ(origin(2)->text(), "Device 7 does not answer.");
    EXPECT_EQ(hw.changes(), "Not applied yet: card 2"); // the number alone
    hw.address(2)->setText("10");
    EXPECT_EQ(hw.changes(), "");
    hw.driver.failing = "features";
    hw.address(2)->setText("0");
    EXPECT_EQ(hw.grid(2)->model()->rowCount(), 32);
    EXPECT_TRUE(origin(2)->text().startsWith("Device 0 does not say which lines it has: 16 inputs"));
    EXPECT_EQ(hw.address(2)->accessibleDescription(), "no answer");
    hw.address(2)->setText("1G");
    EXPECT_EQ(hw.address(2)->accessibleDescription(), "0 to FF");
    hw.grid(2)->setFocus();
}

TEST(HardwareSettings, AnAbsentDriverCostsNoLines) {
    const QByteArray large = "[Hardware1]\r\nCardType=4\r\nBaseAddress=9\r\nLineType64=0\r\n"
                             "Description64=Far\r\nAction64=1\r\n";
    HardwareForm hw(large + "[Hardware2]\r\nCardType=3\r\nBaseAddress=1\r\n");
    const NoDriver none;
    hw.open();
    hw.showCard(2);
    hw.click(2, 1, ColumnDescription);
    QTest::keyClicks(hw.on<QLineEdit>(2, "txtDescription"), "Lamp");
    hw.press("cmdOK");
    EXPECT_FALSE(hw.form->isVisible());
    EXPECT_TRUE(hw.ini().contains("Description1=Lamp"));
    EXPECT_TRUE(hw.ini().startsWith(large)) << hw.ini().toStdString();
}

TEST(HardwareSettings, TheLineListNamesWhatIsWired) {
    HardwareForm hw(threeCards);
    hw.driver.addFixed(16, 3, 2);
    hw.driver.addFixed(10, 3, 2);
    hw.open();
    hw.settings.LinkMeshId = 3;
    EXPECT_FALSE(hw.form->listHtml().contains("not applied yet"));
    hw.click(1, 1, ColumnLogic);
    EXPECT_EQ(hw.form->listHtml().count("not applied yet"), 1);
    EXPECT_TRUE(hw.form->listHtml().contains("Workstation 3 (" + platform::ComputerName() + ")"));
    HardwareLine& line = hw.cards[1].Lines[2];
    line.Description = "Lamp <A> & B";
    line.ActiveLow = -1;
    hw.cards[2].Lines[1].Action = 999;
    hw.cards[2].Lines[1].ActionData[1] = 7;
    const ListedCard card{1, "RS232 based controller", 8, &hw.cards[1]};
    const QString html = LineListHtml(
        "Lines", "Studio 1",
        {card, {2, "Advantech", 5, &hw.cards[2], false}, {3, "Disabled", 0, &hw.cards[3]}}, true);
    EXPECT_TRUE(html.contains("Lamp &lt;A&gt; &amp; B"));
    EXPECT_TRUE(html.contains("Active low"));
    EXPECT_TRUE(html.contains("IC Trigger, Instant Cart 4"));
    EXPECT_TRUE(html.contains("Action 999, 0, 7, 0, 0"));
    EXPECT_EQ(html.count("<tr>"), 5);
    EXPECT_TRUE(html.contains("<h3>Card 1: RS232 based controller</h3>"));
    EXPECT_TRUE(html.contains("<h3>Card 2: Advantech (not applied yet)</h3>"));
    EXPECT_FALSE(html.contains("Card 3"));
    EXPECT_EQ(LineListHtml("Lines", "", {card}, false).count("<tr>"), 9);

    hw.prompts.files = {std::nullopt, QString("C:\\LINES.PDF"), QString("C:\\GONE\\LINES.PDF")};
    for (int i = 0; i < 3; ++i)
        hw.press("cmdSaveList");
    EXPECT_TRUE(hw.machine.read("C:\\LINES.PDF").startsWith("%PDF-"));
    ASSERT_EQ(hw.prompts.asked.size(), 1);
    EXPECT_TRUE(
        hw.prompts.texts().front().startsWith("There was a problem saving the file C:\\GONE\\LINES.PDF"));

    hw.press("cmdPrint");
    EXPECT_FALSE(hw.prompts.offeredSelection);
    EXPECT_EQ(hw.prompts.asked.size(), 1);
    hw.prompts.pdf = hw.machine.host("C:\\GONE\\PRINTED.PDF");
    hw.press("cmdPrint");
    ASSERT_EQ(hw.prompts.asked.size(), 2);
    EXPECT_TRUE(hw.prompts.texts().back().startsWith("There was a problem while printing."));
}

TEST(HardwareSettings, ThePrintedPageCanBeReadAtTheCabinet) {
    HardwareForm hw(threeCards);
    hw.driver.addFixed(16, 3, 2);
    hw.driver.addFixed(10, 3, 2);
    hw.open();
    hw.settings.LinkMeshId = 3;
    hw.settings.ConfigName = "Studio 1";
    hw.type(3)->setCurrentText("Joystick Port");
    // A long text and an unknown number must not move a card's columns.
    hw.cards[2].Lines[2].Description = QString("Wiring ").repeated(12);
    hw.cards[2].Lines[1].Action = 999;
    hw.cards[2].Lines[1].ActionData[1] = 7;
    for (const char* button : {"cmdPrint", "cmdSaveList"}) {
        hw.prompts.pdf = hw.machine.host("C:\\LIST.PDF");
        hw.prompts.files = {QString("C:\\LIST.PDF")};
        hw.press(button);
        const QList<PrintedWord> words = printedWords(hw.machine.host("C:\\LIST.PDF"));
        QStringList texts;
        for (const PrintedWord& word : words)
            texts += word.text;
        const QString text = texts.join(u' ');
        for (const QString& part :
             {QString("Workstation 3 (%1), Studio 1 (TOLVEX.INI)").arg(platform::ComputerName()),
              QString("Card 1: RS232 based controller, attached to port 2 Line Type"),
              QString("Card 2: Advantech Card (i.e. PCI 1750), device 10 (not applied yet) Line Type"),
              QString("Card 3: Joystick Port (not applied yet) Line Type"),
              QString("1 Input Normal IC Trigger 4 IC Trigger, Instant Cart 4"),
              QString("Action 999, 0, 7, 0, 0")})
            EXPECT_TRUE(text.contains(part)) << part.toStdString() << " in " << text.toStdString();
        // The columns of all cards are aligned.
        const QStringList headings = {"Line", "Type", "Logic", "Description", "Action"};
        QList<QList<double>> lefts;
        for (qsizetype i = 0; i + headings.size() <= texts.size(); ++i) {
            if (texts.mid(i, headings.size()) != headings)
                continue;
            lefts.append(QList<double>());
            for (qsizetype column = 0; column < headings.size(); ++column)
                lefts.last() += words[i + column].left;
        }
        ASSERT_EQ(lefts.size(), 3) << text.toStdString();
        EXPECT_EQ(lefts[0], lefts[1]);
        EXPECT_EQ(lefts[0], lefts[2]);
    }
}
