// The keypad for a cart number, and the buttons of the audiowall window that open it and the search.
#include "PickerStation.h"

#include "audio/forms/CartView.h"
#include "audio/forms/JumpGrid.h"
#include "audio/forms/frmAudioWallSetup.h"
#include "audio/forms/frmFindCart.h"
#include "audio/forms/frmJumpToCart.h"

#include <QAction>
#include <QDrag>
#include <QLCDNumber>
#include <QMenu>
#include <QMimeData>
#include <QMouseEvent>
#include <QPushButton>

#include <gtest/gtest.h>

using namespace tolvex;
using namespace tolvex::tests;

namespace {

class JumpToCart : public testing::Test, protected PickerStation {
protected:
    std::unique_ptr<frmJumpToCart> form;

    void open(const QString& tag = {}) {
        if (!form)
            form = std::make_unique<frmJumpToCart>(carts, picking);
        form->setCaller(&asker);
        form->Tag = tag;
        FitForm(form.get());
        form->show();
        form->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(form.get()));
    }
    template<typename Widget>
    Widget* on(const char* name) const {
        return form->findChild<Widget*>(QLatin1String(name));
    }
    void keys(const QString& text) const {
        QTest::keyClicks(form->focusWidget() ? form->focusWidget() : form.get(), text);
    }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) const {
        QTest::keyClick(form->focusWidget() ? form->focusWidget() : form.get(), key, modifiers);
    }
    void press(const char* name) const { QTest::mouseClick(on<QPushButton>(name), Qt::LeftButton); }
    QString number() const { return on<QLabel>("lblCartNumber")->text(); }
    // The digits that are lit, "." for a dark place.
    QString display() const {
        QString text;
        for (const char* led : {"LED1", "LED2", "LED3", "LED4", "LED5"})
            text += on<QLCDNumber>(led)->isVisible() ? QString::number(on<QLCDNumber>(led)->intValue()) : ".";
        return text;
    }
};

} // namespace

TEST_F(JumpToCart, TakesTheDigitsThatMakeACart) {
    makeWall(9999, {{1234, {"Station song"}}});
    open();
    EXPECT_EQ(display(), ".....");
    EXPECT_FALSE(on<QPushButton>("cmdOK")->isEnabled());
    keys("0");
    press("cmdNumber_0");
    EXPECT_EQ(number(), "");
    press("cmdNumber_1");
    EXPECT_TRUE(on<QPushButton>("cmdOK")->hasFocus());
    keys("23");
    QTest::keyClick(form->focusWidget(), Qt::Key_4, Qt::KeypadModifier);
    keys("5");
    EXPECT_EQ(number(), "1234");
    EXPECT_EQ(display(), ".1234");
    EXPECT_EQ(on<CartView>("CartControl")->face().description, "Station song");
    EXPECT_TRUE(on<CartView>("CartControl")->extro());
    key(Qt::Key_Backspace);
    press("cmdDelete");
    EXPECT_EQ(display(), "...12");
    for (int i = 0; i < 3; ++i)
        key(Qt::Key_Backspace);
    EXPECT_EQ(display(), ".....");
    settings.NoCarts = 500;
    keys("501");
    EXPECT_EQ(number(), "50");
    keys("0");
    EXPECT_EQ(number(), "500");
    settings.NoCarts = 99999;
    keys("071");
    EXPECT_EQ(display(), "50007");
}

TEST_F(JumpToCart, AnswersOnceAndCancelSendsNothing) {
    makeWall(500, {});
    open("7");
    EXPECT_EQ(number(), "7");
    EXPECT_EQ(picking.openKeypad, form.get());
    keys("j");
    EXPECT_EQ(asker.answers, QList<int>{7});
    EXPECT_FALSE(form->isVisible());
    EXPECT_FALSE(picking.openKeypad);
    EXPECT_EQ(number(), "");
    open();
    EXPECT_EQ(number(), "");
    keys("J"); // no number: nothing to jump to
    EXPECT_TRUE(form->isVisible());
    keys("12");
    key(Qt::Key_Return);
    open("500");
    key(Qt::Key_Return);
    EXPECT_EQ(asker.answers, (QList<int>{7, 12, 500}));
    open("501"); // there is no such cart
    keys("j");
    EXPECT_TRUE(form->isVisible());
    press("cmdCancel");
    open("3");
    form->close();
    open("3");
    // Only one is open: the other gives way, and nobody hears of it. A caller without a slot is passed over.
    frmJumpToCart second(carts, picking);
    QObject deaf;
    second.setCaller(&deaf);
    second.Tag = "44";
    second.show();
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(picking.openKeypad, &second);
    QTest::keyClick(&second, Qt::Key_J);
    EXPECT_FALSE(second.isVisible());
    EXPECT_EQ(asker.answers, (QList<int>{7, 12, 500}));
}

TEST_F(JumpToCart, HandsKeysOfTheSuiteOn) {
    makeWall(500, {});
    QList<std::pair<int, int>> hot;
    int quits = 0;
    open("45");
    key(Qt::Key_F1); // nobody there: swallowed all the same
    picking.hotKey = [&hot](int code, qint32 value) { hot.append({code, value}); };
    picking.quitKey = [&quits] { ++quits; };
    key(Qt::Key_F1);
    key(Qt::Key_F12, Qt::ControlModifier);
    key(Qt::Key_Q, Qt::ControlModifier);
    key(Qt::Key_Q);
    EXPECT_EQ(hot, (QList<std::pair<int, int>>{{112, 0}, {123, 45}}));
    EXPECT_EQ(quits, 1);
    EXPECT_EQ(number(), "45");
}

TEST_F(JumpToCart, ACartWithADescriptionReactsToTheMouse) {
    makeWall(500, {{44, {}}, {45, {"Station song"}}});
    QList<std::pair<int, PlayerAction>> sent;
    picking.sendToPlayer = [&sent](qint32 cart, PlayerAction action) { sent.append({cart, action}); };
    open("44");
    auto* cart = on<CartView>("CartControl");
    auto* menu = form->findChild<QMenu*>("mnuCart");
    const auto move = [cart](const QPoint& to) {
        QMouseEvent event(QEvent::MouseMove, to, cart->mapToGlobal(to), Qt::NoButton, Qt::LeftButton,
                          Qt::NoModifier);
        QCoreApplication::sendEvent(cart, &event);
    };
    const auto drag = [&] {
        QTest::mousePress(cart, Qt::LeftButton, {}, {20, 20});
        move({30, 20});
        QTest::mouseRelease(cart, Qt::LeftButton, {}, {30, 20});
        const auto* found = cart->findChild<QDrag*>();
        return found ? found->mimeData()->text() : QString();
    };
    EXPECT_EQ(drag(), "");
    QTest::mouseClick(cart, Qt::RightButton);
    EXPECT_FALSE(menu->isVisible());
    form->findChild<QAction*>("mnuCartPlay")->trigger();
    key(Qt::Key_Backspace);
    keys("5");
    EXPECT_EQ(drag(), "45");
    for (const char* entry : {"mnuCartPlay", "mnuCartCue"}) {
        QTest::mouseClick(cart, Qt::RightButton);
        ASSERT_TRUE(menu->isVisible());
        QTest::mouseClick(menu, Qt::LeftButton, {},
                          menu->actionGeometry(form->findChild<QAction*>(entry)).center());
    }
    EXPECT_EQ(sent, (QList<std::pair<int, PlayerAction>>{{45, PlayerAction::Play}, {45, PlayerAction::Cue}}));
    EXPECT_TRUE(form->isVisible());
    QTest::mouseDClick(cart, Qt::LeftButton);
    EXPECT_EQ(asker.answers, QList<int>{45});
}

// The jump buttons of the audiowall window take their carts from both windows.
TEST_F(JumpToCart, FillsAJumpButton) {
    makeWall(500, {{45, {"Station song"}}});
    settings.JumpCartButtons = {{10, "Ten"}, {20, "Twenty"}};
    frmAudioWallSetup setup(settings);
    setup.offerCarts(carts, picking);
    FitForm(&setup);
    setup.show();
    setup.findChild<QTabWidget*>()->setCurrentIndex(1);
    setup.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&setup));
    auto* grid = setup.findChild<JumpGrid*>();
    auto* entry = setup.findChild<QLineEdit*>("txtGridEntry");
    const auto click = [grid](int row, int column) {
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {},
                          grid->visualItemRect(grid->item(row, column)).center());
    };
    click(1, 1);
    EXPECT_TRUE(entry->actions().isEmpty()); // a description is no cart
    click(1, 0);
    ASSERT_EQ(entry->actions().size(), 2);
    entry->actions()[0]->trigger();
    auto* keypad = setup.findChild<frmJumpToCart*>();
    ASSERT_TRUE(QTest::qWaitForWindowActive(keypad));
    EXPECT_EQ(keypad->findChild<QLabel*>("lblCartNumber")->text(), "20");
    QTest::keyClick(keypad, Qt::Key_1);
    QTest::keyClick(keypad, Qt::Key_J);
    EXPECT_EQ(grid->item(1, 0)->text(), "201");
    setup.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&setup));
    click(0, 0);
    QTest::keyClicks(entry, "30");
    QTest::keyClick(entry, Qt::Key_F, Qt::ControlModifier);
    auto* search = setup.findChild<frmFindCart*>();
    ASSERT_TRUE(QTest::qWaitForWindowActive(search));
    EXPECT_EQ(search->StartCart, 30);
    search->close(); // no answer
    EXPECT_EQ(grid->item(0, 0)->text(), "30");
    setup.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&setup));
    QTest::keyClick(grid, Qt::Key_F, Qt::ControlModifier);
    ASSERT_TRUE(QTest::qWaitForWindowActive(search));
    search->findChild<QComboBox*>("cmbSearchText")->setEditText("song");
    QTest::mouseClick(search->findChild<QPushButton*>("cmdFind"), Qt::LeftButton);
    ASSERT_TRUE(QTest::qWaitFor([search] { return !search->isSearching(); }));
    QTest::keyClick(search->focusWidget(), Qt::Key_Return);
    EXPECT_EQ(grid->item(0, 0)->text(), "45");
    EXPECT_EQ(grid->item(0, 1)->text(), "Ten");
}
