#include "console/forms/frmDisplayOptions.h"

#include "core/settings/SaveLocalSettings.h"
#include "core/settings/Settings.h"
#include "platform/Prompts.h"
#include "ui/style/Colours.h"
#include "ui/style/OpenForms.h"
#include "ui_frmDisplayOptions.h"

#include <cstdlib>

namespace tolvex {

namespace {

// A flag that comes from a check box is held as -1 or 0.
qint16 flagOf(const QCheckBox* box) {
    return box->isChecked() ? -1 : 0;
}

} // namespace

frmDisplayOptions::frmDisplayOptions(Settings& settings, QWidget* parent)
    : QDialog(parent)
    , settings_(settings)
    , ui_(std::make_unique<Ui::frmDisplayOptions>()) {
    ui_->setupUi(this);
    EnterForm(this);
    const Settings& s = settings_;
    connect(ui_->chkAdjustSystemColors, &QCheckBox::toggled, this, &frmDisplayOptions::enableColours);
    connect(ui_->cmdChangeForegroundColor, &QPushButton::clicked, this,
            [this] { change(settings_.FormForeColor); });
    connect(ui_->cmdChangeBackgroundColor, &QPushButton::clicked, this,
            [this] { change(settings_.FormBackcolor); });
    connect(ui_->cmdOK, &QPushButton::clicked, this, &frmDisplayOptions::store);
    connect(ui_->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);

    applyColours();
    ui_->chkAdjustSystemColors->setChecked(s.AdjustTheSystemColors != 0);
    enableColours(s.AdjustTheSystemColors != 0);
    ui_->chkUseSingleClick->setChecked(s.SingleClickPlayCarts != 0);
    QRadioButton* const places[] = {ui_->optNoDisplayInfoWindow, ui_->optInfoWindowAtTop,
                                    ui_->optInfoWindowAtBottom};
    if (s.UseInformationWindow >= 0 && s.UseInformationWindow <= 2)
        places[s.UseInformationWindow]->setChecked(true);
    ui_->chkInfoWindowDisplayClock->setChecked(std::abs(s.ShowClock) != 0);
}

frmDisplayOptions::~frmDisplayOptions() = default;

void frmDisplayOptions::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    platform::prompts().setPointer(platform::Pointer::Default);
}

// The form and everything on it; where the stored colours are the system's own, the program's style stays as
// it is.
void frmDisplayOptions::applyColours() {
    setStyleSheet({});
    QString rules;
    if (settings_.FormBackcolor != SystemButtonFace)
        rules +=
            QStringLiteral("background-color: %1;").arg(ToColor(settings_.FormBackcolor, palette()).name());
    if (settings_.FormForeColor != SystemButtonText)
        rules += QStringLiteral("color: %1;").arg(ToColor(settings_.FormForeColor, palette()).name());
    if (!rules.isEmpty())
        setStyleSheet(QStringLiteral("* { %1 }").arg(rules));
}

void frmDisplayOptions::enableColours(bool on) {
    const QString reason =
        on ? QString() : QStringLiteral("Tick \"Adjust the system colors\" to change the colors.");
    for (QWidget* part :
         {static_cast<QWidget*>(ui_->fraColorOptions), static_cast<QWidget*>(ui_->lblColorNote1),
          static_cast<QWidget*>(ui_->lblColorNote2), static_cast<QWidget*>(ui_->cmdChangeForegroundColor),
          static_cast<QWidget*>(ui_->cmdChangeBackgroundColor)})
        part->setEnabled(on);
    ui_->fraColorOptions->setToolTip(reason);
}

// Taken at once, whatever becomes of the form afterwards.
void frmDisplayOptions::change(qint32& colour) {
    if (const std::optional<qint32> chosen = platform::prompts().pickColour(colour)) {
        colour = *chosen;
        applyColours();
    }
}

void frmDisplayOptions::store() {
    Settings& s = settings_;
    s.UseInformationWindow = ui_->optInfoWindowAtTop->isChecked()      ? 1
                             : ui_->optInfoWindowAtBottom->isChecked() ? 2
                                                                       : 0;
    s.ShowClock = flagOf(ui_->chkInfoWindowDisplayClock);
    s.SingleClickPlayCarts = flagOf(ui_->chkUseSingleClick);
    s.AdjustTheSystemColors = flagOf(ui_->chkAdjustSystemColors);
    SaveLocalSettings(s, s.LocalIniFile);
    accept();
}

} // namespace tolvex
