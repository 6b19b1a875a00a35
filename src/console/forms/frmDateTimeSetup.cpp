#include "console/forms/frmDateTimeSetup.h"

#include "core/settings/SettingText.h"
#include "network/forms/frmRadioClockTest.h"
#include "platform/Prompts.h"
#include "ui/binding/SettingBinding.h"
#include "ui/style/FitForm.h"
#include "ui/style/OpenForms.h"
#include "ui_frmDateTimeSetup.h"

namespace tolvex {

frmDateTimeSetup::frmDateTimeSetup(Settings& settings, QWidget* parent)
    : QDialog(parent)
    , settings_(settings)
    , ui_(std::make_unique<Ui::frmDateTimeSetup>()) {
    ui_->setupUi(this);
    EnterForm(this);
    ui_->comboRadioClock->addItems({QStringLiteral("Not fitted"), QStringLiteral("Com Port 1"),
                                    QStringLiteral("Com Port 2"), QStringLiteral("Com Port 3"),
                                    QStringLiteral("Com Port 4")});
    // A port outside the list, from a hand-edited file, selects nothing and stays.
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
    frmRadioClockTest test(this);
    test.setPort(port);
    FitForm(&test);
    test.exec();
}

void frmDateTimeSetup::store() {
    binding_.take();
    WriteSettingText(RowOf<&Settings::RadioClockComPort>(), QString::number(settings_.RadioClockComPort),
                     settings_.LocalIniFile);
    accept();
}

} // namespace tolvex
