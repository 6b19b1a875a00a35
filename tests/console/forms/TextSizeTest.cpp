// No form cuts off its texts, at the usual text size and at twice that size.
#include "console/forms/Station.h"

#include "audio/forms/frmCartDetails.h"
#include "audio/forms/frmFindCart.h"
#include "audio/forms/frmJumpToCart.h"
#include "console/forms/FormTable.h"
#include "console/forms/frmConfigure.h"
#include "console/forms/frmMultiConfig.h"
#include "console/forms/frmSplash.h"
#include "network/forms/frmCommandDetails.h"
#include "network/forms/frmRadioClockTest.h"
#include "ui/style/FitForm.h"

#include <QCheckBox>
#include <QDialog>
#include <QLabel>
#include <QRadioButton>
#include <QScreen>
#include <QTabWidget>

#include <gtest/gtest.h>

using namespace tolvex;
using namespace tolvex::tests;

namespace {

// Every visible text has the room that it needs.
void expectNothingCut(QWidget& form) {
    FitForm(&form);
    // This platform's screen is low: at twice the size some forms fill it and shrink slightly.
    const QSize screen = form.screen()->availableSize();
    if (form.width() >= screen.width() || form.height() >= screen.height())
        return;
    form.show();
    QCoreApplication::processEvents();
    QList<QWidget*> texts;
    for (QLabel* label : form.findChildren<QLabel*>()) {
        if (!label->wordWrap()) {
            texts += label;
        } else if (label->isVisible() && label->parentWidget()->objectName() != "pageGlance") {
            EXPECT_GE(label->height() + 1, label->heightForWidth(label->width()))
                << form.objectName().toStdString() << ": " << label->objectName().toStdString();
        }
    }
    for (QAbstractButton* button : form.findChildren<QAbstractButton*>())
        texts += button;
    for (const QWidget* text : texts) {
        const bool scrolled = text->parentWidget()->objectName() == "pageGlance";
        if (!text->isVisible() || text->objectName().startsWith("Scroll") || scrolled)
            continue;
        EXPECT_GE(text->width(), text->minimumSizeHint().width())
            << form.objectName().toStdString() << ": " << text->objectName().toStdString();
        EXPECT_GE(text->height(), text->minimumSizeHint().height())
            << form.objectName().toStdString() << ": " << text->objectName().toStdString();
    }
}

class TextSize : public testing::TestWithParam<double> {
protected:
    void SetUp() override {
        before_ = QApplication::font();
        QFont large = before_;
        large.setPointSizeF(before_.pointSizeF() * GetParam());
        QApplication::setFont(large);
    }
    void TearDown() override { QApplication::setFont(before_); }

    QFont before_;
};

} // namespace

TEST_P(TextSize, LeavesEveryTextItsRoom) {
    Station station(configuredIni());
    for (const char* name :
         {"frmFileLocations", "frmDisplayOptions", "frmDateTimeSetup", "frmAudioSetup", "frmAudioWallSetup",
          "frmKOVASetup", "frmLinkMeshSetup", "frmCommandSetup", "frmOpalSetup", "frmRippingSettings"}) {
        const std::unique_ptr<QDialog> form(MakeForm(name, station.workstation, nullptr));
        expectNothingCut(*form);
    }
    frmMultiConfig sets("SOFTWARE\\Norvane\\Tolvex", "tolvex.ini");
    expectNothingCut(sets);
    frmCommandDetails command(CommandFolder("C:\\DATA"), {}, {});
    expectNothingCut(command);
    frmRadioClockTest clock;
    expectNothingCut(clock);
    frmFindCart search(station.workstation.carts, station.workstation.picking);
    expectNothingCut(search);
    search.findChild<QTabWidget*>()->setCurrentIndex(1);
    expectNothingCut(search);
    frmJumpToCart keypad(station.workstation.carts, station.workstation.picking);
    expectNothingCut(keypad);
    frmCartDetails details(station.workstation.carts);
    details.setCart(1);
    expectNothingCut(details);
    frmSplash about({});
    about.becomeAboutBox();
    expectNothingCut(about);
    frmConfigure console(station.workstation);
    console.UpdateEnabledButtons();
    expectNothingCut(console);
}

INSTANTIATE_TEST_SUITE_P(Percent, TextSize, testing::Values(1.0, 1.5, 2.0),
                         [](const auto& size) { return std::to_string(int(size.param * 100)); });
