#include "automation/forms/frmKOVASetup.h"

#include "automation/AutomationSchema.h"
#include "automation/AutomationSetup.h"
#include "automation/forms/ControlVariants.h"
#include "automation/forms/frmKOVADatabaseSettings.h"
#include "core/report/Folders.h"
#include "core/report/ProblemReport.h"
#include "core/settings/Settings.h"
#include "core/settings/StoredSettings.h"
#include "databases/suite/DatabaseInformation.h"
#include "databases/suite/DatabaseKinds.h"
#include "platform/Prompts.h"
#include "platform/profile/ProfileFile.h"
#include "ui/binding/EnableRules.h"
#include "ui/binding/FieldError.h"
#include "ui/binding/FormChanges.h"
#include "ui/binding/ShowControl.h"
#include "ui/style/FitForm.h"
#include "ui/style/Monitors.h"
#include "ui/style/OpenForms.h"
#include "ui/style/Style.h"
#include "ui/style/TextBoxes.h"
#include "ui_frmKOVASetup.h"

namespace tolvex {

namespace {

constexpr int LongestTime = 5; // digits

const QString NoControl = QStringLiteral("Tick \"Allow this computer to take control\" first.");

} // namespace

frmKOVASetup::frmKOVASetup(Settings& settings, KOVADatabaseSettings& automation, UsersState& users,
                           QWidget* parent)
    : QDialog(parent)
    , settings_(settings)
    , automation_(automation)
    , users_(users)
    , ui_(std::make_unique<Ui::frmKOVASetup>()) {
    ui_->setupUi(this);
    EnterForm(this);
    TakeDigits(ui_->txtReleaseTime, LongestTime);
    SetWidthInDigits(ui_->txtReleaseTime, LongestTime);
    ui_->lblKOVADatabaseFault->setStyleSheet(QStringLiteral("color: %1;").arg(tokens().warningText.name()));
    showSettings();
    connect(ui_->cmdClearKOVADatabase, &QPushButton::clicked, this, [this] { setFileName({}); });
    connect(ui_->cmdSelectKOVADatabase, &QPushButton::clicked, this, &frmKOVASetup::choose);
    connect(ui_->cmdKOVADBSettings, &QPushButton::clicked, this, [this] { openSettings(); });
    connect(ui_->cmdOK, &QPushButton::clicked, this, &frmKOVASetup::ok);
    connect(ui_->cmdCancel, &QPushButton::clicked, this, &frmKOVASetup::reject);
    new EnableRules(
        this, {{"frameControl frameHasControl lblOtherreqControl comboReleaseControl frameRequestControl "
                "comboRequestMode lblRequestMode chkGetControlKLogStart",
                NoControl, IsOn("chkAllowControl")},
               {"lblReleaseTimeout txtReleaseTime", NoControl, IsOn("chkAllowControl")},
               {"lblReleaseTimeout txtReleaseTime", "Control is not released after a wait.",
                [](const FormView& form) { return form.number("comboReleaseControl") == 0; }}});
    ui_->tbsSettings->setCurrentIndex(0);
    changes_ = new FormChanges(this);
    platform::prompts().setPointer(platform::Pointer::Default);
}

frmKOVASetup::~frmKOVASetup() = default;

void frmKOVASetup::showSettings() {
    for (const AutomationKey& key : AutomationKeys()) {
        QWidget* control = ControlNamed(this, QLatin1String(key.control));
        if (auto* list = qobject_cast<QComboBox*>(control))
            for (const char* word : key.words)
                list->addItem(QString::fromUtf8(word));
        if (control != ui_->lblKOVADatabaseFName)
            SetValueOf(control, ToControl(AutomationKeyValue(settings_, key)));
    }
    setFileName(settings_.DefaultDatabase);
}

QString frmKOVASetup::databasePath() const {
    return AutomationFolder(settings_) + u'\\' + ui_->lblKOVADatabaseFName->text();
}

void frmKOVASetup::setFileName(const QString& name) {
    ui_->lblKOVADatabaseFName->setText(name);
    const bool isMissing = !name.trimmed().isEmpty() && FileLength(databasePath()) <= 0;
    ui_->lblKOVADatabaseFault->setVisible(isMissing);
    ui_->lblKOVADatabaseFault->setText(
        isMissing ? QStringLiteral("This file is not in %1.").arg(AutomationFolder(settings_)) : QString());
    if (name.trimmed().isEmpty()) {
        showDescription({});
        return;
    }
    DatabaseInformation information;
    GetDatabaseInformation(databasePath(), &information, true);
    showDescription(information.Description + u' ');
}

// A database with a description can be configured. The description of one that cannot be read is a blank, so
// that Settings can be pressed and says what is wrong.
void frmKOVASetup::showDescription(const QString& text) {
    ui_->lblKOVADatabaseDescription->setText(text);
    ui_->cmdKOVADBSettings->setEnabled(!text.isEmpty());
    ui_->cmdKOVADBSettings->setToolTip(text.isEmpty() ? QStringLiteral("Choose a database first.")
                                                      : QString());
}

void frmKOVASetup::choose() {
    const QString name = ChooseDatabase(this, AutomationFolder(settings_), KOVAType, this);
    if (name.isEmpty())
        return;
    setFileName(name);
    ValidateKOVADatabaseTables(databasePath());
}

bool frmKOVASetup::isOwn(const QString& fileName) const {
    return fileName.compare(ui_->lblKOVADatabaseFName->text(), Qt::CaseInsensitive) == 0;
}

void frmKOVASetup::DatabaseDeleted(const QString& fileName, qint32 /*type*/) {
    if (!isOwn(fileName))
        return;
    setFileName({});
    ShowExclamation(
        QStringLiteral("%1 was the automation database of this workstation. Choose another one and "
                       "press OK in K-OVA Setup, or the player finds none.")
            .arg(fileName));
}

void frmKOVASetup::DatabaseRenamed(const QString& from, const QString& to, qint32 /*type*/) {
    if (!isOwn(from))
        return;
    setFileName(to);
    ShowExclamation(
        QStringLiteral("%1 was the automation database of this workstation. Press OK in K-OVA Setup "
                       "to store its new name, %2, or the player does not find it.")
            .arg(from, to));
}

void frmKOVASetup::showPlace(const QString& place) {
    openSettings(place.section(u'/', 1));
}

void frmKOVASetup::openSettings(const QString& control) {
    if (ui_->lblKOVADatabaseFName->text().isEmpty())
        return;
    frmKOVADatabaseSettings form(automation_, settings_, users_, this);
    form.setDatabase(databasePath());
    FitForm(&form);
    clsMonitors().CenterFormOnMonitor(&form, this);
    if (!control.isEmpty())
        ShowControl(&form, control);
    form.exec();
}

void frmKOVASetup::ok() {
    if (ui_->txtReleaseTime->isEnabled() && ui_->txtReleaseTime->text().toInt() > INT16_MAX) {
        ShowFieldError(ui_->txtReleaseTime,
                       QStringLiteral("This number has to lie between 0 and %1.").arg(INT16_MAX));
        return;
    }
    Settings next = settings_;
    for (const AutomationKey& key : AutomationKeys())
        SetAutomationKeyValue(next, key,
                              FromControl(ValueOf(ControlNamed(this, QLatin1String(key.control)))));
    // What is not in the file must not be in memory: the next save would bring it there.
    if (const int error = StoreAutomationSetup(next)) {
        ShowExclamation(ProfileErrorText(error, platform::ProfilePath(settings_.LocalIniFile)));
        return;
    }
    settings_ = next;
    accept();
}

void frmKOVASetup::reject() {
    const bool changed = changes_->any() || ui_->lblKOVADatabaseFName->text() != settings_.DefaultDatabase;
    if (!changed || AskToLoseChanges(QStringLiteral("The changes to the K-OVA setup have not been stored.")))
        QDialog::reject();
}

} // namespace tolvex
