// "Find a cart..." in the console's menu: search, details, copy, the next match, and back.
#include "console/forms/Station.h"

#include "audio/CartStore.h"
#include "console/forms/frmConfigure.h"

#include <QClipboard>
#include <QComboBox>
#include <QDir>

#include <gtest/gtest.h>

using namespace tolvex;
using namespace tolvex::tests;

namespace {

// Lists of ten thousand empty carts, but for these.
void writeWall(TestMachine& machine, const QMap<int, QString>& titles) {
    const CartListRecord empty = EncodeCartRecord(MakeEmptyCartRecord(1, 2));
    QByteArray list = QByteArray(empty.data(), CartListRecordLength).repeated(CartsInPart);
    for (int part = 10; part >= 1; --part) {
        for (auto cart = titles.begin(); part == 1 && cart != titles.end(); ++cart) {
            CartRecord record = MakeEmptyCartRecord(1, 2);
            record.Line1 = cart.value();
            record.Length = record.TotalLength = 75;
            list.replace((cart.key() - 1) * CartListRecordLength, CartListRecordLength,
                         EncodeCartRecord(record).data(), CartListRecordLength);
        }
        machine.write(QStringLiteral("C:\\WALL\\Carts%1.lst").arg(part), list);
    }
}

} // namespace

TEST(FindCartDoor, ShowsTheChosenCartAndTheNextOne) {
    Station station(configuredIni());
    station.machine.makeFolder("C:\\DATA");
    writeWall(station.machine, {{12, "News at one"}, {700, "News at ten"}});
    station.prompts.answers = {platform::Answer::Yes, platform::Answer::Yes}; // Terminal list and hotlist
    frmConfigure console(station.workstation);
    ASSERT_TRUE(console.load());
    console.show();
    activate(console);

    QStringList copied;
    withForm("frmFindCart", [&](QWidget& search) {
        find<QComboBox>(search, "cmbSearchText")->setEditText("news");
        click(search, "cmdFind");
        // The window that comes next: the first cart's details, then the second one's.
        withForm("frmCartDetails", [&](QWidget& details) {
            click(details, "cmdCopy");
            copied += QApplication::clipboard()->text();
            withForm("frmCartDetails", [&](QWidget& next) { // the same window once more
                click(next, "cmdCopy");
                copied += QApplication::clipboard()->text();
                click(next, "cmdClose");
            });
            click(details, "cmdFindNext");
        });
        EXPECT_TRUE(QTest::qWaitFor([&] { return search.findChild<QWidget*>("lviewItems")->hasFocus(); }));
        QTest::keyClick(search.focusWidget(), Qt::Key_Return);
    });
    clickMenu(console, "mnuUtilities", "mnuFindCart");
    ASSERT_EQ(copied.size(), 2);
    EXPECT_TRUE(copied[0].startsWith("Cart: 12\nLine 1: News at one\nLength: 01:15.00\n"))
        << copied[0].toStdString();
    EXPECT_TRUE(copied[0].contains("Plays: from 00:00.00 to 01:15.00, 01:15.00 long\n"));
    EXPECT_TRUE(copied[0].endsWith("Listed in: C:\\WALL\\Carts1.lst, record 12\n"));
    EXPECT_TRUE(copied[1].startsWith("Cart: 700\n"));
    EXPECT_EQ(station.workstation.picking.SelectedCart, 700);
    EXPECT_TRUE(console.isEnabled());

    ASSERT_TRUE(QDir(station.machine.host("C:\\WALL")).removeRecursively());
    console.UpdateEnabledButtons();
    EXPECT_FALSE(find<QAction>(console, "mnuFindCart")->isEnabled());
}
