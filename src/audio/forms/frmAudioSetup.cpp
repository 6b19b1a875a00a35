#include "audio/forms/frmAudioSetup.h"

#include "audio/CheckFileCache.h"
#include "audio/LoadAudioSettings.h"
#include "audio/forms/CartContrast.h"
#include "core/report/Folders.h"
#include "core/settings/SettingsTable.h"
#include "core/system/Programs.h"
#include "core/text/Numbers.h"
#include "core/text/PathNames.h"
#include "platform/Prompts.h"
#include "platform/devices/AudioFormats.h"
#include "ui/binding/ColourButton.h"
#include "ui/binding/EnableRules.h"
#include "ui/binding/FieldError.h"
#include "ui/style/Colours.h"
#include "ui/style/FitForm.h"
#include "ui/style/OpenForms.h"
#include "ui/style/Style.h"
#include "ui/style/TextBoxes.h"
#include "ui_frmAudioSetup.h"

#include <QKeyEvent>

namespace tolvex {

namespace {

const QString loadedTag = QStringLiteral("LOADED");

const BoundField<AudioSetup> fields[] = {
    Bound<&AudioSetup::automatic>("optCartPlayerManualMode optCartPlayerAutoMode"),
    Bound<&AudioSetup::players>("txtNumberCartPlayers"),
    Bound<&AudioSetup::instant>("listICPlayer"),
    Bound<&AudioSetup::recordInto>("listRecordPlayer"),
    Bound<&AudioSetup::playersAsToolbars>("chkPlayersAsToolbars"),
    Bound<&AudioSetup::onlyEjectStopped>("chkOnlyAllowEjectStoppedCarts"),
    Bound<&AudioSetup::firstInOrder>("listFirstPlayerOrder"),
    Bound<&AudioSetup::lastInOrder>("listLastPlayerOrder"),
    Bound<&AudioSetup::playInstantly>("chkPlayInstant"),
    Bound<&AudioSetup::fadePercent>("txtFadePercent"),
    Bound<&AudioSetup::ducking>("optSweeper optDucking"),
    Bound<&AudioSetup::generalVolume>("txtGeneralVolume"),
    Bound<&AudioSetup::duckVolume>("txtDuckVolume"),
    Bound<&AudioSetup::sweeperVolume>("txtSweeperVol"),
    Bound<&AudioSetup::cartVolume>("txtCartVolume"),
    Bound<&AudioSetup::cartGroupVolume>("txtCartGroupVolume"),
    Bound<&AudioSetup::advertVolume>("txtAdvertVolume"),
    Bound<&AudioSetup::allowDifferentFormat>("chkAllowDifferentFormat"),
    Bound<&AudioSetup::recordLocal>("chkRecordLocal"),
    Bound<&AudioSetup::audioEditor>("txtAudioEditor"),
    Bound<&AudioSetup::editPlayer>("listEditPlayer"),
    Bound<&AudioSetup::editorPriority>("sldEditPriority"),
    Bound<&AudioSetup::editorAtIdleSpeed>("chkRunEditorIdleSpeed"),
    Bound<&AudioSetup::individualCartFiles>("chkUseIndividualCartFiles"),
    Bound<&AudioSetup::maintainLegacy>("chkMaintainLegacy"),
    Bound<&AudioSetup::lockPlayer>("chkLockPlayerWhenRecording"),
    Bound<&AudioSetup::lockedPlayer>("comboRecordingLockPlayer"),
    Bound<&AudioSetup::allowAudioFileLinking>("chkAllowAudioFileLinking"),
    Bound<&AudioSetup::useLargeBuffers>("chkUseLargeWLBuffers"),
    Bound<&AudioSetup::debugMode>("comboDebug"),
    Bound<&AudioSetup::useLegacyCopyMode>("chkUseLegacyCopyMode"),
    Bound<&AudioSetup::useCopyright>("chkUseCopyrightInCartChunk"),
};

struct PlayerControls {
    const char* device;
    const char* back;
    const char* fore;
};
constexpr PlayerControls playerControls[] = {
    {"listCartPlayer_1", "cmdPlayerBackGround_1", "cmdPlayerForeground_1"},
    {"listCartPlayer_2", "cmdPlayerBackGround_2", "cmdPlayerForeground_2"},
    {"listCartPlayer_3", "cmdPlayerBackGround_3", "cmdPlayerForeground_3"},
    {"listCartPlayer_4", "cmdPlayerBackGround_4", "cmdPlayerForeground_4"},
    {"listCartPlayer_5", "cmdPlayerBackGround_5", "cmdPlayerForeground_5"},
    {"listCartPlayer_6", "cmdPlayerBackGround_6", "cmdPlayerForeground_6"},
};

// Controls of the ordinary product alone, and of the one for split transmissions alone.
const QString ordinaryOnly =
    QStringLiteral("lblInstantCart listICPlayer chkPlayersAsToolbars lblFadePercentDesc_0 "
                   "lblFadePercentDesc_1 txtFadePercent chkPlayInstant fraPlaybackVolumes");
const QString zqsOnly = QStringLiteral("fraZQSCartVolumes");

QString numbered(const char* name, int number) {
    return QStringLiteral("%1_%2").arg(QLatin1String(name)).arg(number);
}

} // namespace

frmAudioSetup::frmAudioSetup(Settings& settings, QWidget* parent)
    : QDialog(parent)
    , settings_(settings)
    , setup_(LoadAudioSetup(settings))
    , ui_(std::make_unique<Ui::frmAudioSetup>())
    , binding_(this)
    , watch_([this] { refreshDevices(); }) {
    ui_->setupUi(this);
    EnterForm(this);
    KeepFitted(this);
    ui_->tbsAudio->setCurrentIndex(0);
    fillLists();
    bindFields();
    binding_.fill();
    addFilters();
    addRules();
    connectColours();
    setZqsMode(false);
    showFormat();
    addTools();
    ui_->cmdTunelane->setEnabled(FileLength(TunelaneProgram()) > 0);
    if (!ui_->cmdTunelane->isEnabled())
        ui_->cmdTunelane->setToolTip(QStringLiteral("%1 is not there.").arg(TunelaneProgram()));

    connect(ui_->cmdSelectAudioFormat, &QPushButton::clicked, this, &frmAudioSetup::chooseFormat);
    connect(ui_->cmdSelectAudioEditor, &QPushButton::clicked, this, &frmAudioSetup::chooseEditor);
    connect(ui_->cmdCheckVCACHE, &QPushButton::clicked, this,
            [this] { CheckFileCache(settings_, QLatin1String(AudioRegistryRoot), true); });
    connect(ui_->cmdTunelane, &QPushButton::clicked, this, &frmAudioSetup::startTunelane);
    connect(ui_->cmdOK, &QPushButton::clicked, this, &frmAudioSetup::store);
    connect(ui_->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

frmAudioSetup::~frmAudioSetup() = default;

void frmAudioSetup::fillLists() {
    for (int n = 1; n <= CartPlayerCount; ++n) {
        ui_->listICPlayer->addItem(QStringLiteral("Player %1").arg(n));
        ui_->comboRecordingLockPlayer->addItem(QStringLiteral("Cart Player %1").arg(n));
    }
    ui_->listEditPlayer->addItem(QStringLiteral("the last player"));
    for (int n = 1; n <= CartPlayerCount; ++n)
        ui_->listEditPlayer->addItem(QStringLiteral("Player %1").arg(n));
    for (QComboBox* list : {ui_->listFirstPlayerOrder, ui_->listLastPlayerOrder}) {
        for (int n = 1; n < CartPlayerCount; ++n)
            list->addItem(QStringLiteral("Cart Player %1").arg(n));
        list->addItem(QStringLiteral("the last Cart Player!"));
    }
    ui_->comboDebug->addItems({QStringLiteral("Play Normally"), QStringLiteral("Use Basic Debugging"),
                               QStringLiteral("Use Medium Debugging"),
                               QStringLiteral("Use Full Debugging!")});
    ui_->sldEditPriority->setRange(qMin(0, setup_.editorPriority),
                                   qMax(HighestEditorPriority, setup_.editorPriority));
    ui_->sldEditPriority->setTickInterval(HighestEditorPriority / 10);
    fillDevices();
}

void frmAudioSetup::bindFields() {
    binding_.bind(setup_, fields);
    for (int n = 1; n <= CartPlayerCount; ++n) {
        AudioSetup::Player& player = setup_.player[n];
        const PlayerControls& controls = playerControls[n - 1];
        const auto bind = [this](const char* control, qint32& value) {
            FieldLook look;
            look.control = control;
            binding_.bind(look, [&value] { return FieldRef(&value); });
        };
        bind(controls.device, player.device);
        bind(controls.back, player.backColor);
        bind(controls.fore, player.foreColor);
    }
}

void frmAudioSetup::addRules() {
    std::vector<EnableRule> rules;
    for (int n = 1; n <= CartPlayerCount; ++n) {
        rules.push_back({numbered("cmdTest", n), QStringLiteral("Only players that are in use."),
                         [n](const FormView& form) { return n <= form.number("txtNumberCartPlayers"); }});
        rules.push_back(
            {numbered("listCartPlayer", n) + u' ' + numbered("lblCartPlayer", n),
             QStringLiteral("Only players that are in use, and only with soundcards assigned manually."),
             [n](const FormView& form) {
                 return form.on("optCartPlayerManualMode") && n <= form.number("txtNumberCartPlayers");
             }});
    }
    const auto somePlayer = [](const FormView& form) { return form.number("txtNumberCartPlayers") != 0; };
    const QString noPlayer = QStringLiteral("There are no cart players.");
    rules.push_back({QStringLiteral("framePlayoutOrder listFirstPlayerOrder listLastPlayerOrder "
                                    "lblFirstPlayerOrder lblLastPlayerOrder"),
                     noPlayer, somePlayer});
    rules.push_back({QStringLiteral("listICPlayer lblInstantCart"), noPlayer,
                     [this, somePlayer](const FormView& form) { return somePlayer(form) && !setup_.zqs; }});
    rules.push_back({QStringLiteral("txtDuckVolume lblDuckVolumePerc"),
                     QStringLiteral("Only while the other cart is ducked."), IsOn("optDucking")});
    rules.push_back({QStringLiteral("txtSweeperVol lblSweepVolumePerc"),
                     QStringLiteral("Only while the sweeper has a volume of its own."), IsOn("optSweeper")});
    rules.push_back({QStringLiteral("comboRecordingLockPlayer"),
                     QStringLiteral("Tick \"When recording, lock\" to choose the player."),
                     IsOn("chkLockPlayerWhenRecording")});
    rules_ = new EnableRules(this, std::move(rules));
    // In the colour 0xFF0000 while it can be used.
    ui_->listICPlayer->setStyleSheet(
        QStringLiteral("QComboBox:enabled { background: #0000ff; color: #ffffff; }"));
}

void frmAudioSetup::addFilters() {
    for (QLineEdit* box :
         {ui_->txtNumberCartPlayers, ui_->txtFadePercent, ui_->txtGeneralVolume, ui_->txtDuckVolume,
          ui_->txtSweeperVol, ui_->txtCartVolume, ui_->txtCartGroupVolume, ui_->txtAdvertVolume})
        SetWidthInDigits(box, 3);
    for (QLineEdit* box : {ui_->txtGeneralVolume, ui_->txtSweeperVol, ui_->txtFadePercent}) {
        TakeDigits(box, 0, QStringLiteral("."));
        ClampOnLeaving(box, 0, 100);
    }
    for (QLineEdit* box : {ui_->txtCartVolume, ui_->txtCartGroupVolume, ui_->txtAdvertVolume})
        TakeDigits(box);
    SelectAllOnFocus(ui_->txtDuckVolume);
    // Its usual value lies 10 below the volume of carts, so it can be below 0.
    const SettingRow& duck = RowOf<&Settings::DuckAudioVolume>();
    ClampOnLeaving(ui_->txtDuckVolume, duck.lowest, duck.highest);
    TypeInUpperCase(ui_->txtAudioEditor);
    TakeDigits(ui_->txtNumberCartPlayers);
    ui_->txtNumberCartPlayers->installEventFilter(this);
    connect(ui_->txtNumberCartPlayers, &QLineEdit::textEdited, this, &frmAudioSetup::limitPlayers);
    for (QWidget* part : ControlsNamed(this, QStringLiteral("txtNumberCartPlayers optCartPlayerManualMode")))
        WhenChanged(part, this, [this] { showDevices(); });
    for (int n = 1; n <= CartPlayerCount; ++n)
        WhenChanged(deviceList(n), this, [this] { showDevices(); });
    connect(ui_->listRecordPlayer, &QComboBox::activated, this, [this] { setup_.chosen.set(0); });
    for (int n = 1; n <= CartPlayerCount; ++n)
        connect(deviceList(n), &QComboBox::activated, this, [this, n] { setup_.chosen.set(size_t(n)); });
    showDevices();
}

// A pasted number stays; OK refuses it.
void frmAudioSetup::limitPlayers() {
    if (typed_ && players() > CartPlayerCount)
        ui_->txtNumberCartPlayers->setText(QString::number(CartPlayerCount));
}

bool frmAudioSetup::eventFilter(QObject* watched, QEvent* event) {
    if (watched == ui_->txtNumberCartPlayers && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        typed_ = !(key->modifiers() & (Qt::ControlModifier | Qt::MetaModifier)) && !key->text().isEmpty();
    }
    return QDialog::eventFilter(watched, event);
}

void frmAudioSetup::connectColours() {
    for (int n = 1; n <= CartPlayerCount; ++n) {
        auto* back = findChild<ColourButton*>(numbered("cmdPlayerBackGround", n));
        auto* fore = findChild<ColourButton*>(numbered("cmdPlayerForeground", n));
        auto* hint = findChild<QLabel*>(numbered("lblContrast", n));
        ShowColoursOn(findChild<QLabel*>(numbered("pnlPlayerDisplay", n)), back, fore);
        const auto show = [this, back, fore, hint] {
            const double contrast =
                Contrast(ToColor(back->colour(), palette()), ToColor(fore->colour(), palette()));
            hint->setText(contrast < ReadableContrast
                              ? QStringLiteral("hard to read: ") + ContrastText(contrast)
                              : QString());
            hint->setStyleSheet(QStringLiteral("color: %1;").arg(tokens().warningText.name()));
        };
        for (ColourButton* button : {back, fore})
            connect(button, &ColourButton::colourChanged, this, show);
        show();
    }
}

void frmAudioSetup::setZqsMode(bool on) {
    setup_.zqs = on;
    for (QWidget* control : ControlsNamed(this, ordinaryOnly))
        control->setVisible(!on);
    for (QWidget* control : ControlsNamed(this, zqsOnly))
        control->setVisible(on);
    for (int n = 1; n <= CartPlayerCount; ++n)
        for (const char* name :
             {"pnlPlayerDisplay", "cmdPlayerBackGround", "cmdPlayerForeground", "lblContrast"})
            ControlNamed(this, numbered(name, n))->setVisible(!on);
    rules_->apply();
}

void frmAudioSetup::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    platform::prompts().setPointer(platform::Pointer::Default);
    if (property("tag").toString() == loadedTag)
        return;
    setProperty("tag", loadedTag);
    if (ui_->txtNumberCartPlayers->isEnabled())
        ui_->txtNumberCartPlayers->setFocus();
}

void frmAudioSetup::showFormat() {
    ui_->lblAudioFormat->setText(u' ' +
                                 platform::DescribeAudioFormat(setup_.format, setup_.channels, setup_.rate));
}

void frmAudioSetup::chooseFormat() {
    const std::optional<platform::WaveFormat> chosen =
        platform::prompts().pickWaveFormat({qint16(setup_.format), qint16(setup_.channels), setup_.rate});
    if (!chosen)
        return;
    setup_.format = quint16(chosen->tag);
    setup_.channels = chosen->channels;
    setup_.rate = chosen->rate;
    showFormat();
}

void frmAudioSetup::chooseEditor() {
    platform::FileQuestion question;
    question.title = QStringLiteral("Select Sample Editor Program");
    question.filter = QStringLiteral("Programs|*.EXE;*.COM;*.BAT;*.PIF");
    question.defaultExtension = QStringLiteral("EXE");
    question.folder = FolderOf(ui_->txtAudioEditor->text().trimmed());
    if (const std::optional<QString> file = platform::prompts().pickFile(question))
        ui_->txtAudioEditor->setText(file->trimmed().toUpper());
}

void frmAudioSetup::startTunelane() {
    QString why;
    if (!StartProgram(TunelaneProgram(), {}, NoWait, 100, &why))
        ui_->lblStatus->setText(why);
}

void frmAudioSetup::store() {
    // A button that is pressed by its access key does not take the focus, and a box clamps its number only
    // when it is left.
    ui_->cmdOK->setFocus();
    binding_.take();
    const SetupOutcome outcome = StoreAudioSetup(setup_, settings_);
    if (!outcome.stored()) {
        QWidget* field = outcome.field.isEmpty() ? ui_->cmdOK : ControlNamed(this, outcome.field);
        ShowFieldError(field, outcome.message);
        return;
    }
    setProperty("tag", QString());
    accept();
}

} // namespace tolvex
