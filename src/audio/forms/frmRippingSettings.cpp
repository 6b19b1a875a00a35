#include "audio/forms/frmRippingSettings.h"

#include "core/text/Numbers.h"
#include "platform/Prompts.h"
#include "ui/binding/EnableRules.h"
#include "ui/binding/FieldError.h"
#include "ui/style/FitForm.h"
#include "ui/style/OpenForms.h"
#include "ui/style/Style.h"
#include "ui/style/TextBoxes.h"
#include "ui_frmRippingSettings.h"

namespace tolvex {

namespace {

constexpr int longestNumber = 9; // digits
constexpr qint32 highestPort = 65535;

const BoundField<RippingSetup> fields[] = {
    Bound<&RippingSetup::askFirst>("chkAskFirst"),
    Bound<&RippingSetup::autoTop>("chkAutoTopAudio"),
    Bound<&RippingSetup::normalise>("chkNormalise"),
    Bound<&RippingSetup::level>("txtNormaliseLevel"),
    Bound<&RippingSetup::allowCddb>("chkAllowCDDB"),
    Bound<&RippingSetup::server>("comboCDDBServer"),
    Bound<&RippingSetup::port>("txtCDDBPort").help("Only tested, never stored: it is 8880 each time."),
    Bound<&RippingSetup::email>("txtCDDBEmailAddress").help("The server of CD titles is told this address."),
    Bound<&RippingSetup::allowSubmissions>("chkAllowSubmissions"),
};

} // namespace

frmRippingSettings::frmRippingSettings(Settings& settings, QWidget* parent)
    : QDialog(parent)
    , settings_(settings)
    , shown_(LoadRippingSetup(settings))
    , setup_(shown_)
    , ui_(std::make_unique<Ui::frmRippingSettings>())
    , binding_(this)
    , test_([this](const ServerAnswer& answer) { showServerState(answer.text, answer.ready); }) {
    ui_->setupUi(this);
    EnterForm(this);
    for (const char* server : CddbServers)
        ui_->comboCDDBServer->addItem(QLatin1String(server));
    for (QLineEdit* box : {ui_->txtCDDBPort, ui_->txtNormaliseLevel}) {
        TakeDigits(box, longestNumber);
        SetWidthInDigits(box, 5);
    }
    SelectAllOnFocus(ui_->txtCDDBEmailAddress);
    KeepFitted(this);
    binding_.bind(setup_, fields);
    binding_.fill();
    addRules();
    showLevel();
    showHint();
    connect(ui_->txtNormaliseLevel, &QLineEdit::textChanged, this, &frmRippingSettings::showLevel);
    connect(ui_->comboCDDBServer, &QComboBox::editTextChanged, this, &frmRippingSettings::showHint);
    connect(ui_->txtCDDBPort, &QLineEdit::textChanged, this, &frmRippingSettings::showHint);
    connect(ui_->cmdTestServer, &QPushButton::clicked, this, &frmRippingSettings::testServer);
    connect(ui_->Command1, &QPushButton::clicked, this, &frmRippingSettings::ok);
    connect(ui_->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

frmRippingSettings::~frmRippingSettings() = default;

void frmRippingSettings::setReadOnly(bool readOnly) {
    readOnly_ = readOnly;
    rules_->apply();
}

void frmRippingSettings::addRules() {
    const QString titles =
        QStringLiteral("lblCDDBServerDesc comboCDDBServer cmdTestServer lblCDDBPort txtCDDBPort "
                       "lblServerState lblCDDBEmailAddress txtCDDBEmailAddress "
                       "chkAllowSubmissions fraCDDB ");
    const QString level = QStringLiteral("txtNormaliseLevel lblNormalisePercent lblDecibels ");
    rules_ = new EnableRules(
        this,
        {{titles + level +
              QStringLiteral("fraProcessing chkAskFirst chkAutoTopAudio chkNormalise chkAllowCDDB"),
          QStringLiteral("These settings can only be looked at here."),
          [this](const FormView&) { return !readOnly_; }},
         {titles, QStringLiteral("Tick \"Allow the internet to be queried for CD Titles\" first."),
          IsOn("chkAllowCDDB")},
         {level, QStringLiteral("Tick \"Normalise the ripped audio to\" first."), IsOn("chkNormalise")}});
}

void frmRippingSettings::showLevel() {
    ui_->lblDecibels->setText(LevelInDecibels(ToLong(LeadingNumber(ui_->txtNormaliseLevel->text()))));
}

void frmRippingSettings::testServer() {
    binding_.take();
    for (const SetupOutcome& outcome : {CheckCddbServer(setup_.server), CheckCddbPort(setup_.port)})
        if (!outcome.stored())
            return void(ShowFieldError(ControlNamed(this, outcome.field), outcome.message));
    if (setup_.port > highestPort)
        return void(ShowFieldError(ui_->txtCDDBPort,
                                   QStringLiteral("A port is a number from 1 to %1.").arg(highestPort)));
    const QString server = setup_.server.trimmed();
    showServerState(QStringLiteral("Asking %1...").arg(server), true);
    test_.start(server, setup_.port);
}

// What was found out about another server or port counts for nothing.
void frmRippingSettings::showHint() {
    test_.stop();
    showServerState(CddbServerHint(ui_->comboCDDBServer->currentText()), false);
}

void frmRippingSettings::showServerState(const QString& text, bool good) {
    ui_->lblServerState->setText(text);
    ui_->lblServerState->setStyleSheet(
        QStringLiteral("color: %1;").arg((good ? tokens().quiet : tokens().warningText).name()));
}

void frmRippingSettings::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    platform::prompts().setPointer(platform::Pointer::Default);
}

void frmRippingSettings::ok() {
    if (readOnly_)
        return accept();
    binding_.take();
    const SetupOutcome outcome = StoreRippingSetup(setup_, shown_, settings_);
    if (outcome.stored())
        return accept();
    binding_.fill(); // where another workstation stored something
    ShowFieldError(outcome.field.isEmpty() ? ui_->Command1 : ControlNamed(this, outcome.field),
                   outcome.message);
}

} // namespace tolvex
