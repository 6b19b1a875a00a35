// The audiowall window, worked by mouse and keyboard.
#include "SetupForm.h"

#include "audio/forms/CartContrast.h"
#include "audio/forms/CartView.h"
#include "audio/forms/JumpGrid.h"
#include "audio/forms/frmAudioWallSetup.h"
#include "ui/binding/ColourButton.h"

#include <QFontDialog>
#include <QPushButton>
#include <QSlider>

#include <gtest/gtest.h>

using namespace tolvex;
using namespace tolvex::tests;

namespace {

class AudiowallWindow : public testing::Test, protected SetupForm<frmAudioWallSetup> {
protected:
    CartView* cart(int number) const {
        return on<CartView>(("pnlCart_" + QByteArray::number(number)).constData());
    }
    // The colour at a place of a sample, as it is painted.
    QColor painted(int number, const QPoint& at) const {
        return cart(number)->grab().toImage().pixelColor(at);
    }
    JumpGrid* grid() const { return on<JumpGrid>("grdJumps"); }
    QLineEdit* entry() const { return on<QLineEdit>("txtGridEntry"); }
    QString cell(int row, int column) const { return grid()->item(row - 1, column)->text(); }
    void clickCell(int row, int column) const {
        QTest::mouseClick(grid()->viewport(), Qt::LeftButton, {},
                          grid()->visualItemRect(grid()->item(row - 1, column)).center());
    }
    void key(Qt::Key key) const {
        QWidget* focus = form->focusWidget();
        QTest::keyClick(focus, key);
    }
};

} // namespace

TEST_F(AudiowallWindow, StoresWhatIsSetOnEachTab) {
    open();
    choose("listInstantCarts", 1);
    press("chkUpdateAudiowall");
    press("chkUpdateAudiowall");
    type("txtAudiowallUpdateInterval", "44");
    press("chkSearchCartNotes");
    tab(2);
    press("chkHighlightRecent");
    press("optHighlightMultiple");
    type("txtHighlightMultiple", "3");
    tab(3);
    prompts.colours = {0x010203};
    press("cmdChangeEmptyCartBackColor");
    choose("comboBevelWidth", 7);
    tab(4);
    for (int i = 0; i < 4; ++i)
        QTest::keyClick(on<QSlider>("sldCartWidth"), Qt::Key_Right);
    tab(5);
    type("txtNumberCarts", "100000");
    choose("comboPictureType", 1);
    press("chkUseLevelTrigger");
    type("txtRecordTriggerLevel", "55");
    type("txtFadeSeconds", "8");
    press("OKB");
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(prompts.texts(), QStringList{"You cannot have more than 99999 carts on your Audiowall.\n\nIt "
                                           "has been changed to 99999 for you."});
    const struct {
        const char* section;
        const char* key;
        const char* stored;
    } all[] = {{"AudioWall", "ShowICAtLogin", "2"},       {"AudioWall", "AutoUpdateInterval", "44"},
               {"AudioWall", "SearchCartNotes", "1"},     {"Carts", "HighlightPlayedCarts", "2"},
               {"Audio", "EmptyCartBackColor", "66051"},  {"Carts", "HighlightPLayedCartsInterval", "3"},
               {"AudioWall", "CartBevelWidth", "7"},      {"AudioWall", "CartMinimumWidth", "2560"},
               {"AudioWall", "CartMinimumHeight", "950"}, {"AudioWall", "LevelTrigger", "55"},
               {"Audio", "PlayerFadeSeconds", "8"}};
    for (const auto& [section, key, stored] : all)
        EXPECT_EQ(value(section, key), stored) << key;
    EXPECT_EQ(value("Audiowall", "NoCarts", "D:\\WALL\\Audwall.ini"), "99999");
    EXPECT_EQ(value("Audiowall", "PictureFileExtension", "D:\\WALL\\Audwall.ini"), "BMP");
}

TEST_F(AudiowallWindow, ShowsEachChangeOnTheSamplesAtOnce) {
    open();
    tab(3);
    const QPoint ground(cart(1)->width() / 2, cart(1)->height() / 2 + 12);
    EXPECT_EQ(painted(1, ground), QColor(0, 0, 0xC0));
    prompts.colours = {0x00FF00, 0x0000C0};
    press("cmdChangeSelectedCartColor");
    EXPECT_EQ(painted(1, ground), QColor(0, 0xFF, 0));
    press("chkSelectedCartPushIn"); // sunken, in the usual colours
    EXPECT_EQ(painted(1, ground), painted(0, ground));
    EXPECT_LT(painted(1, {0, 40}).lightness(), painted(0, {0, 40}).lightness());
    press("cmdSelectTimesBarColor");
    EXPECT_EQ(painted(0, cart(0)->timesBar().topLeft() + QPoint(2, 2)), QColor(0xC0, 0, 0));
    press("chkDisplayTimesBarColor");
    EXPECT_NE(painted(0, cart(0)->timesBar().topLeft() + QPoint(2, 2)), QColor(0xC0, 0, 0));
    EXPECT_FALSE(enabled("cmdSelectTimesBarColor"));
    // The mark of audio: a circle leaves its corners free.
    const QImage circle = cart(0)->grab().toImage();
    press("chkDisplayCartHasAudioAsSquare");
    EXPECT_NE(cart(0)->grab().toImage(), circle);
    EXPECT_TRUE(on<QLabel>("lblContrast")->isVisible());
    const int left = cart(2)->timesBar().left();
    choose("comboBevelWidth", 0);
    EXPECT_EQ(cart(2)->timesBar().left(), left - 3);
    EXPECT_EQ(settings.SelectedCartColor, 0xC00000); // until OK
}

TEST_F(AudiowallWindow, TakesATextColourThatCanBeReadOnTheTimesBar) {
    open();
    tab(3);
    prompts.colours = {0x808080, 0xFFFFFF};
    press("cmdSelectTimesBarColor"); // white can be read on it
    press("cmdSelectTimesBarColor"); // not on white
    press("OKB");
    EXPECT_EQ(value("Audio", "TimesBarColor"), "16777215");
    EXPECT_EQ(value("Audio", "TimesBarColorText"), "0");
}

TEST(CartContrast, NotesThePairsThatAreSeen) {
    CartLooks looks; // red numbers, white on blue when selected
    looks.emptyBack = 0xFFFFFF;
    looks.emptyNumber = 0;
    QPalette palette;
    palette.setColor(QPalette::Button, Qt::white);
    bool played = false;
    const auto hard = [&] { return ColoursHardToRead(looks, played, palette).join(u'|'); };
    EXPECT_EQ(hard(), "the number of the highlighted cart (2.9 to 1)"); // 2.98
    looks.selectedText = looks.selectedBack;
    EXPECT_TRUE(hard().startsWith("the highlighted text (1.0 to 1)|"));
    looks.selectedPushedIn = true;
    EXPECT_EQ(hard(), "");
    looks.timesBarText = looks.timesBar;
    EXPECT_EQ(hard(), "the times bar (1.0 to 1)");
    looks.timesBarInColour = false;
    looks.playedRecently = 0xFFFFFF;
    EXPECT_EQ(hard(), "");
    played = true;
    EXPECT_EQ(hard(), "the highlight of played carts (1.0 to 1)");
    played = false;
    looks.number = looks.emptyNumber = looks.emptyFore = 0xFFFFFF;
    EXPECT_EQ(hard(), "the number of a usual cart (1.0 to 1)|the text of an empty cart (1.0 to 1)|"
                      "the number of an empty cart (1.0 to 1)");
}

TEST_F(AudiowallWindow, SizesTheSmallestCart) {
    open();
    tab(4);
    EXPECT_EQ(cart(3)->size(), QSize(2500 / 15, 950 / 15)); // the stored height of 935 is below the limit
    EXPECT_EQ(label("lblEstGrid"), "This will give an estimated grid of carts of: 6 x 7");
    auto* slider = on<QSlider>("sldCartWidth");
    slider->setFocus();
    QTest::keyClick(slider, Qt::Key_Home);
    EXPECT_EQ(slider->value(), 1900);
    QTest::keyClick(slider, Qt::Key_Left); // one step below the limit
    EXPECT_EQ(slider->value(), 1900);
    EXPECT_EQ(cart(3)->width(), 1900 / 15);
    EXPECT_EQ(label("lblEstGrid"), "This will give an estimated grid of carts of: 8 x 7");
    QTest::keyClick(slider, Qt::Key_End);
    EXPECT_EQ(cart(3)->timesBar().width(), cart(3)->width() - 2 * cart(3)->timesBar().left());
}

TEST_F(AudiowallWindow, EditsJumpButtonsInTheGrid) {
    settings.JumpCartButtons = {{10, "Ten"}, {-1, "never"}};
    open();
    tab(2);
    EXPECT_EQ(cell(2, 1), "");
    type("txtNumberCartGroups", "11");
    press("cmdUpdateNumberButtons");
    EXPECT_EQ(prompts.texts(), QStringList{"You can only have up to 10 Jump Buttons"});
    EXPECT_EQ(text("txtNumberCartGroups"), "10");
    type("txtNumberCartGroups", "3");
    press("cmdUpdateNumberButtons");
    EXPECT_EQ(grid()->rowCount(), 3);

    clickCell(2, 0);
    EXPECT_TRUE(entry()->isVisible() && entry()->hasFocus());
    QTest::keyClicks(entry(), "2x0");
    key(Qt::Key_Tab); // stores and moves on
    EXPECT_EQ(cell(2, 0), "20");
    QTest::keyClicks(entry(), QString(30, u'd'));
    key(Qt::Key_Return);
    EXPECT_EQ(cell(2, 1), QString(25, u'd'));
    QTest::keyClicks(entry(), "7");
    key(Qt::Key_Escape); // not stored; the window stays
    EXPECT_EQ(cell(3, 0), "");
    EXPECT_TRUE(form->isVisible() && !entry()->isVisible() && grid()->hasFocus());
    QTest::keyClick(grid(), Qt::Key_9); // typing opens the box
    QTest::keyClicks(entry(), "9999");
    EXPECT_EQ(entry()->text(), "99999");
    press("OKB"); // what stands in the box counts
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(value("AudioWall", "JumpCartNumber1"), "10");
    EXPECT_EQ(value("AudioWall", "JumpCartNumber2"), "20");
    EXPECT_EQ(value("AudioWall", "JumpCartNumber3"), "0"); // beyond the 9999 carts
    EXPECT_EQ(value("AudioWall", "NumberCartJumpButtons"), "3");
}

TEST_F(AudiowallWindow, BlanksACartNumberThatIsNone) {
    settings.JumpCartButtons = {{10, "Ten"}};
    open();
    tab(2);
    clickCell(1, 0);
    QTest::keyClicks(entry(), "0");
    key(Qt::Key_Return);
    EXPECT_EQ(cell(1, 0), "");
    clickCell(1, 0);
    QTest::keyClicks(entry(), "12000");
    key(Qt::Key_Tab);
    EXPECT_EQ(label("lblJumpHint"), "OK clears jump button 1: the audiowall has 9999 carts.");
}

TEST_F(AudiowallWindow, KeepsAFontThatIsNotInstalledAndTakesAnother) {
    settings.CartFontName = "No Such Font";
    open();
    tab(3);
    EXPECT_EQ(label("lblFontName"), "No Such Font, 8 pt");
    QTimer::singleShot(50, form.get(), [] {
        auto* chooser = qobject_cast<QFontDialog*>(QApplication::activeModalWidget());
        ASSERT_TRUE(chooser);
        QFont font = chooser->currentFont(); // another one stands in for it
        font.setPointSize(9);
        chooser->setCurrentFont(font);
        chooser->accept();
    });
    press("cmdChangeFont");
    EXPECT_EQ(label("lblFontName"), "No Such Font, 9 pt");
    QTimer::singleShot(50, form.get(), [] {
        auto* chooser = qobject_cast<QFontDialog*>(QApplication::activeModalWidget());
        ASSERT_TRUE(chooser);
        QFont font("DejaVu Sans", 14);
        font.setBold(true);
        chooser->setCurrentFont(font);
        chooser->accept();
    });
    press("cmdChangeFont");
    EXPECT_EQ(label("lblFontName"), "DejaVu Sans, 14 pt, bold");
    QTimer::singleShot(50, form.get(),
                       [] { QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Escape); });
    press("cmdChangeFont");
    press("OKB");
    EXPECT_EQ(value("Audio", "CartFontName"), "DejaVu Sans");
    EXPECT_EQ(value("Audio", "CartFontSize"), "14");
}

TEST_F(AudiowallWindow, PaintsAHugeBevelAndFontSmallerAndKeepsThem) {
    settings.CartBevelWidth = 500;
    settings.CartFontSize = 300;
    open();
    tab(3);
    EXPECT_GT(cart(0)->timesBar().top(), cart(0)->height() / 3);
    EXPECT_EQ(painted(0, cart(0)->timesBar().topLeft() + QPoint(2, 2)), QColor(0, 0, 0xC0));
    press("OKB");
    EXPECT_EQ(value("AudioWall", "CartBevelWidth"), "500");
    EXPECT_EQ(value("Audio", "CartFontSize"), "300");
}

TEST_F(AudiowallWindow, EnablesWhatIsOnAndRefusesAtTheField) {
    open();
    press("chkDisplayICsAtLogon");
    EXPECT_FALSE(enabled("listInstantCarts"));
    tab(2);
    EXPECT_FALSE(enabled("optHighlightFixed") || enabled("txtHighlightFixedTime"));
    press("chkHighlightRecent");
    EXPECT_TRUE(enabled("txtHighlightFixedTime"));
    EXPECT_FALSE(enabled("txtHighlightMultiple"));
    type("txtHighlightFixedTime", "86400");
    tab(5);
    EXPECT_FALSE(enabled("txtRecordTriggerLevel"));
    press("chkMouseFade");
    EXPECT_FALSE(enabled("txtFadeSeconds"));
    press("chkKeyboardFade");
    type("txtFadeSeconds", "0");
    press("OKB");
    press("OKB");
    EXPECT_EQ(prompts.texts(), QStringList({"You must specify a number of seconds to use when fading",
                                            "You must specify a number of seconds to use when fading"}));
    EXPECT_EQ(form->focusWidget(), on<QLineEdit>("txtFadeSeconds"));
    type("txtFadeSeconds", "1");
    press("OKB");
    EXPECT_EQ(form->focusWidget(), on<QLineEdit>("txtHighlightFixedTime"));
    EXPECT_EQ(settings.HighlightPlayedCarts, 1);
    press("CancelB");
    EXPECT_EQ(value("Audio", "PlayerFadeSeconds"), "<none>");
}

TEST_F(AudiowallWindow, HasNoLimitsToSetWithoutALocation) {
    settings.CartPartTable[1].Location.clear();
    open();
    tab(5);
    EXPECT_FALSE(enabled("txtNumberCarts") || enabled("lblNoCartsDesc") || enabled("comboPictureType"));
    EXPECT_EQ(label("lblNoCartsDesc"), "(You cannot have more than 99,999) carts.");
    press("OKB");
    EXPECT_EQ(value("Audio", "PlayerFadeSeconds"), "2");
}
