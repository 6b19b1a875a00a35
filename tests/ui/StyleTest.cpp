// Everything is visible and distinct in light and dark, and the wheel changes nothing in passing.
#include "support/Wheel.h"

#include "ui/style/Colours.h"
#include "ui/style/Style.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSlider>
#include <QSpinBox>
#include <QTabBar>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

using namespace tolvex;
using namespace tolvex::tests;

namespace {

class Drawn : public testing::TestWithParam<Scheme> {
protected:
    void SetUp() override { ApplyStyle(*qApp, GetParam()); }
    void TearDown() override { ApplyStyle(*qApp, Scheme::Light); }
};

} // namespace

TEST_P(Drawn, BoxesAndFieldsAreSeenAndShowTheirState) {
    QWidget form;
    QList<QWidget*> kinds;
    for (const bool ticked : {false, true})
        for (QAbstractButton* button : {static_cast<QAbstractButton*>(new QCheckBox(&form)),
                                        static_cast<QAbstractButton*>(new QRadioButton(&form))}) {
            button->setChecked(ticked);
            kinds += button;
        }
    kinds += new QLineEdit("1F", &form);
    kinds += new QComboBox(&form);
    static_cast<QComboBox*>(kinds.last())->addItem("1F");
    for (QWidget* kind : kinds)
        kind->resize(kind->sizeHint());
    const QColor ground = form.grab().toImage().pixelColor(form.width() - 1, form.height() - 1);
    QList<QImage> seen;
    for (QWidget* kind : kinds) {
        for (const bool enabled : {true, false}) {
            kind->setEnabled(enabled);
            const QImage image = kind->grab().toImage();
            EXPECT_FALSE(seen.contains(image)) << kind->metaObject()->className() << enabled;
            seen += image;
            double best = 1;
            for (int y = 0; y < image.height(); ++y)
                for (int x = 0; x < image.width(); ++x)
                    best = std::max(best, Contrast(image.pixelColor(x, y), ground));
            EXPECT_GE(best, 3) << kind->metaObject()->className() << enabled;
        }
    }
    for (const QColor& text : {tokens().text, tokens().quiet, tokens().warningText})
        EXPECT_GE(Contrast(text, ground), 4.5);
}

INSTANTIATE_TEST_SUITE_P(Schemes, Drawn, testing::Values(Scheme::Light, Scheme::Dark),
                         [](const auto& scheme) { return scheme.param == Scheme::Light ? "Light" : "Dark"; });

TEST(WheelGuard, AFieldWithoutTheFocusKeepsItsValueAndItsFormScrolls) {
    ApplyStyle(*qApp, Scheme::Light); // as a change of the scheme does: still one guard
    QScrollArea area;
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    auto* list = new QComboBox;
    list->addItems({"1", "2", "3"});
    list->setCurrentIndex(1);
    auto* number = new QSpinBox;
    number->setValue(1);
    auto* slider = new QSlider(Qt::Horizontal);
    slider->setValue(1);
    auto* tabs = new QTabBar;
    for (const char* tab : {"1", "2", "3"})
        tabs->addTab(tab);
    tabs->setCurrentIndex(1);
    for (QWidget* field : {static_cast<QWidget*>(list), static_cast<QWidget*>(number),
                           static_cast<QWidget*>(slider), static_cast<QWidget*>(tabs)})
        layout->addWidget(field);
    for (int i = 0; i < 60; ++i)
        layout->addWidget(new QPushButton);
    area.setWidget(page);
    area.resize(300, 200);
    area.show();
    area.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&area));
    page->findChild<QPushButton*>()->setFocus();
    const auto roll = [&area](QWidget* over) {
        RollWheel(over);
        const int scrolled = area.verticalScrollBar()->value();
        area.verticalScrollBar()->setValue(0);
        return scrolled;
    };
    const QList<QWidget*> parts = {list, number, number->findChild<QLineEdit*>(), slider, tabs};
    for (QWidget* part : parts)
        EXPECT_GT(roll(part), 0) << part->metaObject()->className();
    EXPECT_EQ(list->currentIndex(), 1);
    EXPECT_EQ(number->value(), 1);
    EXPECT_EQ(slider->value(), 1);
    EXPECT_EQ(tabs->currentIndex(), 1);
    // With the focus the wheel turns each as usual.
    list->setFocus();
    EXPECT_EQ(roll(list), 0);
    EXPECT_EQ(list->currentIndex(), 2);
    number->setFocus();
    roll(number->findChild<QLineEdit*>());
    EXPECT_EQ(number->value(), 0);
    slider->setFocus();
    roll(slider);
    EXPECT_NE(slider->value(), 1);
    tabs->setFocus();
    roll(tabs);
    EXPECT_EQ(tabs->currentIndex(), 2);
    // A scroll bar is not a field.
    EXPECT_GT(roll(area.verticalScrollBar()), 0);
}
