#include "console/forms/frmDateTimeSetup.h"

#include "core/settings/Settings.h"
#include "platform/Prompts.h"
#include "platform/profile/ProfileFile.h"
#include "ui/binding/EnableRules.h"
#include "ui/binding/SettingBinding.h"
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
    new EnableRules(this, {{QStringLiteral("cmdTestRadioClock"),
                            QStringLiteral("The test of the radio clock is not part of this version yet."),
                            [this](const FormView&) { return bool(test_); }}});
    // A port beyond the list, from a hand-edited file, selects nothing and stays.
    BindSettings(binding_, this, settings_);
    binding_.fill();
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
    binding_.take();
    platform::WriteProfileText(QStringLiteral("DateTimeSettings"), QStringLiteral("RadioClockComPort"),
                               QString::number(settings_.RadioClockComPort), settings_.LocalIniFile);
    accept();
}

} // namespace tolvex
