#include "console/forms/frmDisplayOptions.h"

#include "core/settings/SaveLocalSettings.h"
#include "core/settings/Settings.h"
#include "platform/Prompts.h"
#include "ui/binding/EnableRules.h"
#include "ui/binding/SettingBinding.h"
#include "ui/style/Colours.h"
#include "ui/style/OpenForms.h"
#include "ui_frmDisplayOptions.h"

namespace tolvex {

frmDisplayOptions::frmDisplayOptions(Settings& settings, QWidget* parent)
    : QDialog(parent)
    , settings_(settings)
    , ui_(std::make_unique<Ui::frmDisplayOptions>()) {
    ui_->setupUi(this);
    EnterForm(this);
    new EnableRules(this,
                    {{QStringLiteral("fraColorOptions lblColorNote1 lblColorNote2 cmdChangeForegroundColor "
                                     "cmdChangeBackgroundColor"),
                      QStringLiteral("Tick \"Adjust the system colors\" to change the colors."),
                      IsOn("chkAdjustSystemColors")}});
    BindSettings(binding_, this, settings_);
    binding_.fill();
    applyColours();
    // Stored at once, even if the form is cancelled afterwards.
    const auto change = [this](ColourButton* button, qint32 Settings::*colour) {
        connect(button, &ColourButton::colourChanged, this, [this, colour](qint32 chosen) {
            settings_.*colour = chosen;
            applyColours();
        });
    };
    change(ui_->cmdChangeForegroundColor, &Settings::FormForeColor);
    change(ui_->cmdChangeBackgroundColor, &Settings::FormBackcolor);
    connect(ui_->cmdOK, &QPushButton::clicked, this, &frmDisplayOptions::store);
    connect(ui_->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

frmDisplayOptions::~frmDisplayOptions() = default;

void frmDisplayOptions::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    platform::prompts().setPointer(platform::Pointer::Default);
}

// The form and everything on it; if the stored colours are the system's own, the program's style stays as it
// is.
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

void frmDisplayOptions::store() {
    binding_.take();
    SaveLocalSettings(settings_, settings_.LocalIniFile);
    accept();
}

} // namespace tolvex
