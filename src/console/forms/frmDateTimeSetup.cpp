#include "console/forms/frmDateTimeSetup.h"

#include "core/settings/Settings.h"
#include "platform/Prompts.h"
#include "platform/profile/ProfileFile.h"
#include "ui/style/OpenForms.h"
#include "ui_frmDateTimeSetup.h"

namespace tolvex {

frmDateTimeSetup::frmDateTimeSetup(Settings& settings, ClockTest test, QWidget* parent)
    : QDialog(parent)
    , settings_(settings)
    , ui_(std::make_unique<Ui::frmDateTimeSetup>())
    , test_(std::move(test)) {
    ui_->setupUi(this);
    EnterForm(this);
    ui_->comboRadioClock->addItems({QStringLiteral("Not fitted"), QStringLiteral("Com Port 1"),
                                    QStringLiteral("Com Port 2"), QStringLiteral("Com Port 3"),
                                    QStringLiteral("Com Port 4")});
    // A port beyond the list, from a hand-edited file, selects nothing.
    ui_->comboRadioClock->setCurrentIndex(
        settings_.RadioClockComPort < ui_->comboRadioClock->count() ? settings_.RadioClockComPort : -1);
    ui_->cmdTestRadioClock->setEnabled(bool(test_));
    if (!test_)
        ui_->cmdTestRadioClock->setToolTip(
            QStringLiteral("The test of the radio clock is not part of this version yet."));
    connect(ui_->cmdTestRadioClock, &QPushButton::clicked, this, &frmDateTimeSetup::testClock);
    connect(ui_->Command1, &QPushButton::clicked, this, &frmDateTimeSetup::store);
    connect(ui_->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
    platform::prompts().setPointer(platform::Pointer::Default);
}

frmDateTimeSetup::~frmDateTimeSetup() = default;

void frmDateTimeSetup::testClock() {
    const int port = ui_->comboRadioClock->currentIndex();
    if (port < 1) {
        platform::prompts().ask({QStringLiteral("You must choose a valid Com Port"),
                                 platform::Icon::Exclamation, platform::Buttons::Ok});
        return;
    }
    const platform::PointerKeeper pointer(platform::Pointer::Wait);
    test_(port, this);
}

void frmDateTimeSetup::store() {
    // With nothing selected the port that a hand-edited file held stays.
    if (ui_->comboRadioClock->currentIndex() >= 0)
        settings_.RadioClockComPort = static_cast<qint16>(ui_->comboRadioClock->currentIndex());
    platform::WriteProfileText(QStringLiteral("DateTimeSettings"), QStringLiteral("RadioClockComPort"),
                               QString::number(settings_.RadioClockComPort), settings_.LocalIniFile);
    accept();
}

} // namespace tolvex
