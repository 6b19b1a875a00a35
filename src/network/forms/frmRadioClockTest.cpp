#include "network/forms/frmRadioClockTest.h"

#include "platform/Prompts.h"
#include "platform/devices/SerialPorts.h"
#include "ui/style/FitForm.h"
#include "ui/style/OpenForms.h"
#include "ui/style/Style.h"
#include "ui_frmRadioClockTest.h"

namespace tolvex {

frmRadioClockTest::frmRadioClockTest(QWidget* parent)
    : QDialog(parent)
    , ui_(std::make_unique<Ui::frmRadioClockTest>())
    , test_(ReceiverTest::Scope::Strength) {
    ui_->setupUi(this);
    KeepFitted(this);
    EnterForm(this);
    connect(ui_->Command1, &QPushButton::clicked, this, &QDialog::accept);
    test_.onChanged = [this] {
        if (test_.isOpen())
            ui_->pnlSignalStrength->show(test_.strength());
    };
    test_.onLine = [this](const ClockLine& line) {
        if (line.kind == ClockLine::Kind::Strength && line.level >= 0)
            showState(QStringLiteral("The receiver answers."));
    };
    test_.onError = [this](const QString& what) {
        if (!test_.isOpen())
            ui_->pnlSignalStrength->clear();
        showState(what, true);
    };
    platform::prompts().setPointer(platform::Pointer::Default);
}

frmRadioClockTest::~frmRadioClockTest() = default;

void frmRadioClockTest::setPort(int number) {
    const QString device = platform::FactsOfSerialPort(number).device;
    ui_->lblComPortNo->setText(device.isEmpty() ? QString::number(number)
                                                : QStringLiteral("%1 (%2)").arg(number).arg(device));
    ui_->pnlSignalStrength->clear();
    const platform::SerialFault fault = test_.setPort(number);
    if (!fault)
        return showState(number < 1 ? QString() : QStringLiteral("Waiting for the receiver to answer..."));
    const QString text = QStringLiteral("Error opening Com Port : ") + fault.text;
    showState(text, true);
    platform::prompts().ask({text, platform::Icon::Exclamation, platform::Buttons::Ok});
}

void frmRadioClockTest::showState(const QString& state, bool isFault) {
    ui_->lblState->setText(state);
    ui_->lblState->setStyleSheet(
        QStringLiteral("color: %1;").arg((isFault ? tokens().error : tokens().quiet).name()));
}

} // namespace tolvex
