// The text viewer, the small editor and the help viewer, over real files.
#include "TestPlaces.h"
#include "support/MachineFolder.h"
#include "support/PrintingPrompts.h"
#include "ui/forms/frmEditText.h"
#include "ui/help/HelpFile.h"
#include "ui/help/frmHelp.h"
#include "ui/richtext/frmPrintPreview.h"
#include "ui/style/OpenForms.h"

#include <QListWidget>
#include <QScrollBar>
#include <QTest>
#include <QTextBrowser>
#include <QTimer>
#include <QTreeWidget>

#include <gtest/gtest.h>

using namespace tolvex;
using namespace tolvex::tests;

namespace {

QTextEdit* view(QWidget& form) {
    return form.findChild<QTextEdit*>("rtfFile");
}

void press(QWidget& form, const char* name) {
    QTest::mouseClick(form.findChild<QPushButton*>(name), Qt::LeftButton);
}

} // namespace

TEST(PrintPreview, ShowsFormattedAndPlainTextAndNothingForAMissingFile) {
    TestMachine machine;
    machine.write("C:\\a.rtf", "{\\rtf1 {\\b bold} text}");
    machine.write("C:\\b.txt", "caf\xe9\r\nsecond");
    frmPrintPreview form;
    form.LoadFile("C:\\a.rtf");
    EXPECT_EQ(view(form)->toPlainText(), "bold text");
    form.SetTextDisplay(true);
    form.LoadFile("C:\\a.rtf");
    EXPECT_EQ(view(form)->toPlainText(), "{\\rtf1 {\\b bold} text}");
    form.LoadFile("C:\\b.txt");
    EXPECT_EQ(view(form)->toPlainText(), QString::fromUtf8("café\nsecond"));
    form.LoadFile("C:\\missing.txt");
    EXPECT_EQ(view(form)->toPlainText(), "");
}

TEST(PrintPreview, ListsAFolderAndSavesACopyByteForByte) {
    TestMachine machine;
    ScriptedPrompts prompts;
    const QByteArray rich = "{\\rtf1 {\\i two}}\r\n";
    machine.write("C:\\N\\one.RTF", "{\\rtf1 one}");
    machine.write("C:\\N\\two.rtf", rich);
    machine.write("C:\\N\\other.txt", "x");
    frmPrintPreview form;
    form.DisplayFolder("C:\\N", "rtf");
    form.show();
    auto* list = form.findChild<QListWidget*>("listFiles");
    ASSERT_EQ(list->count(), 2);
    EXPECT_EQ(view(form)->toPlainText(), "one");
    list->setCurrentRow(1);
    EXPECT_EQ(view(form)->toPlainText(), "two");
    prompts.files = {std::nullopt, QString("C:\\copy.rtf")};
    press(form, "cmdSave");
    press(form, "cmdSave");
    EXPECT_EQ(prompts.fileQuestions[0].title, "Select File to Save to");
    EXPECT_EQ(prompts.fileQuestions[0].filter, "All Files|*.*");
    EXPECT_EQ(machine.read("C:\\copy.rtf"), rich);
    form.HideFolder();
    EXPECT_FALSE(list->isVisible());
}

TEST(PrintPreview, PrintsAllOrTheSelectionAndACancelPrintsNothing) {
    TestMachine machine;
    PrintingPrompts prompts;
    QByteArray lines;
    for (int i = 0; i < 400; ++i)
        lines += "line " + QByteArray::number(i) + "\r\n";
    machine.write("C:\\long.txt", lines);
    frmPrintPreview form;
    form.LoadFile("C:\\long.txt");
    form.show();
    press(form, "cmdPrint");
    EXPECT_FALSE(view(form)->textCursor().hasSelection());
    EXPECT_TRUE(prompts.asked.isEmpty());

    prompts.pdf = machine.host("C:\\all.pdf");
    press(form, "cmdPrint");
    EXPECT_FALSE(prompts.offeredSelection);
    EXPECT_TRUE(machine.read("C:\\all.pdf").startsWith("%PDF"));
    QTextCursor first = view(form)->textCursor();
    first.setPosition(0);
    first.setPosition(5, QTextCursor::KeepAnchor);
    view(form)->setTextCursor(first);
    prompts.pdf = machine.host("C:\\few.pdf");
    prompts.onlySelection = true;
    press(form, "cmdPrint");
    EXPECT_TRUE(prompts.offeredSelection);
    EXPECT_LT(machine.read("C:\\few.pdf").size(), machine.read("C:\\all.pdf").size());
}

TEST(PrintPreview, PagingKeysGoToTheTextWhereverTheFocusIs) {
    TestMachine machine;
    machine.write("C:\\long.txt", QByteArray(4000, '\n'));
    frmPrintPreview form;
    form.LoadFile("C:\\long.txt");
    form.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&form));
    auto* button = form.findChild<QPushButton*>("cmdPrint");
    button->setFocus();
    QTest::keyClick(button, Qt::Key_End);
    QTest::keyClick(button, Qt::Key_PageDown);
    EXPECT_GT(view(form)->textCursor().position() + view(form)->verticalScrollBar()->value(), 0);
    press(form, "cmdDone");
    EXPECT_FALSE(form.isVisible());
}

TEST(EditText, OkTakesTheTextAndCancelLeavesIt) {
    for (const bool ok : {true, false}) {
        frmEditText form;
        form.Tag = "before";
        form.show();
        auto* text = form.findChild<QTextEdit*>("rtxtText");
        EXPECT_EQ(text->toPlainText(), "before");
        EXPECT_EQ(text->textCursor().position(), 0);
        QTest::keyClicks(text, "x");
        press(form, ok ? "OKB" : "CancelB");
        EXPECT_EQ(form.Tag, ok ? "xbefore" : "before");
        EXPECT_FALSE(form.isVisible());
    }
}

TEST(Help, OpensTheBuiltFileAtThePageOfAContext) {
    TestMachine machine;
    QFile built(QString(TOLVEX_BIN_DIR) + "/config.chm");
    ASSERT_TRUE(built.open(QIODevice::ReadOnly)) << "the build makes it";
    machine.write("C:\\config.chm", built.readAll());
    const auto file = HelpFile::open("C:\\config.chm");
    ASSERT_TRUE(file);
    // Every context has a page, every page of the contents is there.
    const QList<QByteArray> rows = file->read("/contexts.txt").value().split('\n');
    EXPECT_GT(rows.size(), 10);
    for (const QByteArray& row : rows) {
        const QByteArray page = row.simplified().split(' ').last();
        EXPECT_TRUE(page.isEmpty() || file->read(page)) << page.toStdString();
    }
    EXPECT_EQ(file->pageOf(100), "/console.html");
    EXPECT_EQ(file->pageOf(99999), "/index.html");
    EXPECT_GT(file->contents().size(), 5);
    for (const HelpFile::Entry& entry : file->contents())
        EXPECT_TRUE(file->read(entry.page)) << entry.page.toStdString();

    ASSERT_TRUE(ShowHelp("C:\\config.chm", 110));
    auto* window = qobject_cast<frmHelp*>(OpenForms().last());
    ASSERT_NE(window, nullptr);
    auto* page = window->findChild<QTextBrowser*>("txtPage");
    EXPECT_TRUE(page->toPlainText().startsWith("File Locations"));
    EXPECT_EQ(window->findChild<QTreeWidget*>("treeContents")->currentItem()->text(0), "File Locations");
    ShowHelp("C:\\config.chm", 100);
    QTest::mouseClick(window->findChild<QPushButton*>("cmdBack"), Qt::LeftButton);
    EXPECT_TRUE(page->toPlainText().startsWith("File Locations"));
    window->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

    machine.write("C:\\damaged.chm", QByteArray("ITSF") + QByteArray(200, 'x'));
    EXPECT_FALSE(HelpFile::open("C:\\damaged.chm"));
    EXPECT_FALSE(ShowHelp("C:\\missing.chm", 0));
}
