// The window that finds carts, worked by mouse and keyboard, with searches that are stopped in the middle.
#include "PickerStation.h"

#include "audio/forms/CartResultList.h"
#include "audio/forms/frmFindCart.h"

#include <QAbstractItemModelTester>
#include <QDrag>
#include <QHeaderView>
#include <QMimeData>
#include <QMouseEvent>
#include <QPointer>
#include <QPushButton>

#include <gtest/gtest.h>

using namespace tolvex;
using namespace tolvex::tests;

namespace {

class FindCart : public testing::Test, protected PickerStation {
protected:
    std::unique_ptr<frmFindCart> form;

    void open(qint32 start = 0) {
        if (!form)
            form = std::make_unique<frmFindCart>(carts, picking);
        form->setCaller(&asker);
        form->StartCart = start;
        FitForm(form.get());
        form->show();
        form->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(form.get()));
    }
    template<typename Widget>
    Widget* on(const char* name) const {
        return form->findChild<Widget*>(QLatin1String(name));
    }
    CartResultList* list() const { return on<CartResultList>("lviewItems"); }
    void press(const char* name) const {
        auto* button = on<QAbstractButton>(name);
        ASSERT_TRUE(button->isVisible() && button->isEnabled()) << name;
        QTest::mouseClick(button, Qt::LeftButton, {},
                          button->isCheckable() ? QPoint(8, button->height() / 2) : QPoint());
    }
    void type(const QString& text) const {
        auto* box = on<QComboBox>("cmbSearchText");
        box->setFocus();
        box->lineEdit()->selectAll();
        QTest::keyClick(box, Qt::Key_Delete);
        QTest::keyClicks(box, text);
    }
    void wait() const {
        ASSERT_TRUE(QTest::qWaitFor([this] { return !form->isSearching(); }, 60000));
    }
    void search(const QString& text) const {
        type(text);
        QTest::keyClick(on<QComboBox>("cmbSearchText"), Qt::Key_Return);
        EXPECT_TRUE(form->isSearching());
        wait();
    }
    QStringList column(int column) const {
        QStringList texts;
        for (int row = 0; row < list()->model()->rowCount(); ++row)
            texts += list()->model()->index(row, column).data().toString();
        return texts;
    }
    QStringList found() const { return column(FoundCarts::CartNo); }
    QPoint row(int number) const {
        return list()->visualRect(list()->model()->index(number, FoundCarts::CartNo)).center();
    }
    void doubleClick(int number) const {
        QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, row(number));
        QTest::mouseDClick(list()->viewport(), Qt::LeftButton, {}, row(number));
    }
    void clickHeading(int section) const {
        QHeaderView* header = list()->horizontalHeader();
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                          {header->sectionViewportPosition(section) + 10, header->height() / 2});
    }

    // A search that takes long, since each cart is asked for a file of its own, and is in the middle.
    void beginLongSearch() {
        makeWall(30000, {{1, {"First hit"}}, {2, {"Second hit"}}});
        settings.UseIndividualCartListFiles = -1;
        open();
        type("hit");
        press("cmdFind");
        ASSERT_TRUE(QTest::qWaitFor([this] { return form->search()->done() > 200 && found().size() == 2; }));
        ASSERT_TRUE(form->isSearching());
        ASSERT_LT(form->search()->done(), form->search()->total());
    }
};

// Counts the slices of the search.
struct Slices : QObject {
    int count = 0;
    bool eventFilter(QObject*, QEvent* event) override {
        count += event->type() == QEvent::Timer ? 1 : 0;
        return false;
    }
};

void postMouse(QWidget* target, const QList<QEvent::Type>& types, const QPoint& at) {
    for (const QEvent::Type type : types)
        QCoreApplication::postEvent(target, new QMouseEvent(type, at, target->mapToGlobal(at), Qt::LeftButton,
                                                            Qt::LeftButton, Qt::NoModifier));
}

} // namespace

TEST_F(FindCart, FindsAndAnswersOnce) {
    makeWall(1250, {{3, {"News at one", "read by Anna"}}, {700, {"Traffic"}}, {1200, {"Night NEWS"}}});
    settings.SearchCartNotes = -1;
    settings.SearchCartsFromStart = 0;
    open();
    EXPECT_FALSE(list()->isVisible());
    EXPECT_FALSE(on<QPushButton>("cmdStop")->isEnabled());
    EXPECT_TRUE(on<QCheckBox>("chkNotes")->isChecked());
    EXPECT_FALSE(on<QCheckBox>("chkSearchFromStart")->isChecked());
    EXPECT_EQ(form->focusWidget(), on<QComboBox>("cmbSearchText"));
    search("  news");
    EXPECT_EQ(found(), (QStringList{"3", "1200"}));
    EXPECT_EQ(column(FoundCarts::Key), (QStringList{"000003", "001200"}));
    EXPECT_EQ(column(FoundCarts::Line2), (QStringList{"read by Anna", ""}));
    EXPECT_EQ(column(FoundCarts::Length), (QStringList{"03:00", "03:00"}));
    EXPECT_EQ(on<QLabel>("lblSearchCartNumber")->text(), "1200");
    EXPECT_EQ(form->frameGeometry().height(), 5130 / 15);
    EXPECT_TRUE(list()->hasFocus());
    EXPECT_TRUE(on<QPushButton>("cmdFind")->isEnabled());
    QTest::keyClick(list(), Qt::Key_Down);
    QTest::keyClick(list(), Qt::Key_Return);
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(asker.answers, QList<int>{1200});
    EXPECT_EQ(picking.SelectedCart, 1200);

    open();
    EXPECT_EQ(picking.SelectedCart, 0);
    EXPECT_FALSE(list()->isVisible());
    search("nowhere");
    EXPECT_EQ(found(), QStringList{"No carts found."});
    EXPECT_EQ(column(FoundCarts::Key), QStringList{"0"});
    doubleClick(0);
    EXPECT_TRUE(form->isVisible());
    QTest::keyClick(list(), Qt::Key_Escape);
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(asker.answers, (QList<int>{1200, 0}));

    open();
    form->close();
    form.reset();
    EXPECT_EQ(asker.answers, (QList<int>{1200, 0, 0}));
}

TEST_F(FindCart, SearchesAsItsOptionsSay) {
    makeWall(50, {});
    setCart(10, {"Jingle", "long"}, 185);
    setCart(20, {"Long jingle"}, 75);
    setCart(30, {"Jingle", "", "long"}, 76);
    machine.write("D:\\WALL\\TLV00040.TXT", "A LONG jingle");
    settings.SearchCartsFromStart = 0;
    open(25);
    search("long");
    EXPECT_EQ(found(), QStringList{"30"});
    press("chkSearchFromStart");
    press("chkNotes");
    search("long");
    EXPECT_EQ(found(), (QStringList{"10", "20", "30", "40"}));
    press("chkSearchFromStart");
    auto* direction = on<QComboBox>("cmbSearchDirection");
    direction->setFocus();
    QTest::keyClick(direction, Qt::Key_Down);
    EXPECT_EQ(on<QCheckBox>("chkSearchFromStart")->text(), "Search from the &end of the Audiowall");
    press("chkNotes");
    search("long");
    EXPECT_EQ(found(), (QStringList{"20", "10"}));

    press("chkSearchFromStart");
    QTest::keyClick(list(), Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_EQ(on<QTabWidget>("tbsFind")->currentIndex(), 1);
    EXPECT_FALSE(on<QWidget>("chkLine_1")->isEnabled());
    press("chkLimitLines");
    press("chkLine_1");
    press("chkLine_2");
    QTest::keyClick(form.get(), Qt::Key_Tab, Qt::ControlModifier);
    search("LONG");
    EXPECT_EQ(found(), QStringList{"30"});

    // Cart 20 is 1:15 long. Typed as 1:11, 3 seconds more or less reach up to less than 1:15.
    QTest::keyClick(form.get(), Qt::Key_Tab, Qt::ControlModifier);
    press("chkLimitLines");
    press("chkTimeSearch");
    auto* length = on<QLineEdit>("mskLength");
    EXPECT_EQ(length->text(), "03:00");
    length->setFocus();
    QTest::keyClick(length, Qt::Key_Home);
    QTest::keyClicks(length, "0111");
    press("cmdFind");
    wait();
    EXPECT_EQ(found(), QStringList{"No carts found."});
    auto* give = on<QComboBox>("comboLength");
    give->setFocus();
    QTest::keyClick(give, Qt::Key_Down); // 5 seconds
    press("cmdFind");
    wait();
    EXPECT_EQ(found(), (QStringList{"30", "20"}));
}

TEST_F(FindCart, KeepsTheLastSixSearches) {
    makeWall(5, {});
    open();
    for (const char* text : {"a", "b", "c", "d", "e", "f", "g", "g", ""})
        search(text);
    picking.LastSearches[6] = "of another program";
    form->close();
    const auto stored = [this] {
        return QStringList(picking.LastSearches.begin(), picking.LastSearches.begin() + 7);
    };
    EXPECT_EQ(stored(), (QStringList{"g", "f", "e", "d", "c", "b", "of another program"}));
    form.reset();
    open();
    EXPECT_EQ(on<QComboBox>("cmbSearchText")->count(), 6);
    EXPECT_EQ(on<QComboBox>("cmbSearchText")->currentText(), "g");
    search("d");
    form->close();
    EXPECT_EQ(stored(), (QStringList{"d", "g", "f", "e", "c", "b", "of another program"}));
}

// Whatever comes in during a search acts before the search goes on by more than the slice that runs.
TEST_F(FindCart, StopActsWithinASlice) {
    beginLongSearch();
    EXPECT_FALSE(on<QWidget>("cmbSearchText")->isEnabled());
    EXPECT_EQ(form->search()->shownCart() % 100, 0);
    Slices slices;
    form->installEventFilter(&slices);
    postMouse(on<QWidget>("cmdStop"), {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}, {5, 5});
    wait();
    EXPECT_LE(slices.count, 1);
    const qint32 looked = form->search()->done();
    QTest::qWait(30);
    EXPECT_EQ(form->search()->done(), looked);
    EXPECT_EQ(found(), (QStringList{"1", "2"}));
    EXPECT_TRUE(list()->hasFocus());
    EXPECT_TRUE(on<QWidget>("cmbSearchText")->isEnabled());
    EXPECT_TRUE(asker.answers.isEmpty());
}

TEST_F(FindCart, AChoiceInMidSearchActsWithinASlice) {
    beginLongSearch();
    Slices slices;
    form->installEventFilter(&slices);
    postMouse(list()->viewport(),
              {QEvent::MouseButtonPress, QEvent::MouseButtonRelease, QEvent::MouseButtonDblClick,
               QEvent::MouseButtonRelease},
              row(1));
    ASSERT_TRUE(QTest::qWaitFor([this] { return !form->isVisible(); }));
    EXPECT_LE(slices.count, 1);
    EXPECT_TRUE(form->search()->stopped());
    QTest::qWait(30);
    EXPECT_EQ(asker.answers, QList<int>{2});
    EXPECT_EQ(picking.LastSearches[0], "hit");
}

TEST_F(FindCart, ClosingInMidSearchAnswersOnce) {
    beginLongSearch();
    // Escape ends the search, not the window.
    QTest::keyClick(list(), Qt::Key_Escape);
    EXPECT_TRUE(form->isVisible() && !form->isSearching());
    press("cmdFind");
    Slices slices;
    form->installEventFilter(&slices);
    QMetaObject::invokeMethod(form.get(), "close", Qt::QueuedConnection);
    ASSERT_TRUE(QTest::qWaitFor([this] { return !form->isVisible(); }));
    EXPECT_LE(slices.count, 1);
    EXPECT_EQ(asker.answers, QList<int>{0});
    // The window destroyed in the middle, and by the answer itself.
    open();
    press("cmdFind");
    QTest::qWait(10);
    ASSERT_TRUE(form->isSearching());
    form.reset();
    EXPECT_EQ(asker.answers, (QList<int>{0, 0}));
    open();
    asker.then = [this] { form.release()->deleteLater(); };
    press("cmdFind");
    ASSERT_TRUE(QTest::qWaitFor([this] { return found().size() == 2; }));
    doubleClick(0);
    EXPECT_EQ(asker.answers, (QList<int>{0, 0, 1}));
    EXPECT_FALSE(form);
}

// Other programs write while the search runs: a cart's own file, newer than its list, and a list that is cut.
TEST_F(FindCart, ReadsWhatOtherProgramsWriteMeanwhile) {
    beginLongSearch();
    machine.write("D:\\WALL\\TLV29000.LST", cartBytes({"A late hit"}));
    setCart(29500, {"hit"});
    ASSERT_TRUE(PickerStation::list(11).resize(19100 * CartListRecordLength)); // up to cart 29100
    wait();
    EXPECT_EQ(found(), (QStringList{"1", "2", "29000"}));
}

TEST_F(FindCart, GoesOnWithTheLastSearchUnseen) {
    makeWall(300, {{5, {"hit"}}, {100, {"hit"}}});
    picking.LastSearches[0] = "hit";
    open(); // ticks "from the start", as it is set
    form->close();
    asker.answers.clear();
    const auto next = [this](qint32 start) {
        form->setCaller(&asker);
        form->StartCart = start;
        form->findNext();
        const qsizetype before = asker.answers.size();
        EXPECT_TRUE(QTest::qWaitFor([&] { return asker.answers.size() > before; }));
        EXPECT_FALSE(form->isVisible());
    };
    next(6);
    EXPECT_EQ(picking.SelectedCart, 100);
    next(101);
    EXPECT_EQ(asker.answers, (QList<int>{100, 0}));
    EXPECT_EQ(prompts.texts(),
              QStringList{"There were no further items found on the Audiowall that matched your search"});
    EXPECT_EQ(prompts.asked[0].icon, platform::Icon::Information);
    form.reset();
    EXPECT_EQ(asker.answers.size(), 2);
}

TEST_F(FindCart, SortsByTheHiddenNumberAndByTexts) {
    makeWall(300, {{9, {"beta"}}, {20, {"Alpha"}}, {100, {"gamma"}}});
    setCart(101, {"delta"}, 61);
    open();
    search("a");
    const QStringList byNumber = {"9", "20", "100", "101"};
    clickHeading(FoundCarts::Line1);
    EXPECT_EQ(found(), (QStringList{"20", "9", "101", "100"}));
    list()->setCurrentIndex(list()->model()->index(1, FoundCarts::CartNo));
    clickHeading(FoundCarts::CartNo);
    EXPECT_EQ(found(), byNumber);
    EXPECT_EQ(list()->currentIndex().row(), 0); // the choice goes with its cart
    clickHeading(FoundCarts::CartNo);
    EXPECT_EQ(found(), QStringList(byNumber.rbegin(), byNumber.rend()));
    clickHeading(FoundCarts::Length);
    EXPECT_EQ(found().first(), "101");

    // Rows that come later go to their places.
    FoundCarts model;
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    const auto batch = [](const QList<qint32>& numbers) {
        QList<FoundCart> cartsFound;
        for (const qint32 number : numbers)
            cartsFound += FoundCart{number, {}};
        return cartsFound;
    };
    model.add(batch({7, 30}));
    model.sort(FoundCarts::Key, Qt::DescendingOrder);
    const QPersistentModelIndex seven = model.index(1, 0);
    model.add(batch({5, 8, 40}));
    QList<qint32> order;
    for (int i = 0; i < model.rowCount(); ++i)
        order += model.cart(i);
    EXPECT_EQ(order, (QList<qint32>{40, 30, 8, 7, 5}));
    EXPECT_EQ(seven.row(), 3);
}

TEST_F(FindCart, DragsACartNumberAsText) {
    makeWall(50, {{42, {"hit"}}});
    open();
    search("hit");
    QWidget* view = list()->viewport();
    const auto move = [view](const QPoint& to) {
        QMouseEvent event(QEvent::MouseMove, to, view->mapToGlobal(to), Qt::NoButton, Qt::LeftButton,
                          Qt::NoModifier);
        QCoreApplication::sendEvent(view, &event);
    };
    const QPoint at = row(0);
    QTest::mousePress(view, Qt::LeftButton, {}, at);
    move(at + QPoint(2, -2)); // 30 twips
    EXPECT_FALSE(list()->findChild<QDrag*>());
    move(at + QPoint(2, 3));
    const auto* drag = list()->findChild<QDrag*>();
    ASSERT_TRUE(drag);
    EXPECT_EQ(drag->mimeData()->text(), "42");
    EXPECT_FALSE(drag->pixmap().isNull());
    QTest::mouseRelease(view, Qt::LeftButton, {}, at);
    search("nowhere");
    QTest::mousePress(view, Qt::LeftButton, {}, row(0));
    move(row(0) + QPoint(9, 9));
    EXPECT_TRUE(list()->findChildren<QDrag*>().isEmpty());
    QTest::mouseRelease(view, Qt::LeftButton, {}, row(0));
}
