#include "automation/forms/frmKOVADatabaseSettings.h"

#include "automation/forms/ControlVariants.h"
#include "core/report/Folders.h"
#include "core/settings/Settings.h"
#include "core/time/Dates.h"
#include "databases/forms/frmChooseDatabase.h"
#include "databases/suite/DatabaseInformation.h"
#include "databases/suite/DatabaseKinds.h"
#include "platform/Clock.h"
#include "platform/Prompts.h"
#include "platform/devices/AudioFormats.h"
#include "ui/binding/ColourButton.h"
#include "ui/binding/EnableRules.h"
#include "ui/binding/FieldError.h"
#include "ui/binding/FormChanges.h"
#include "ui/style/ChooseFont.h"
#include "ui/style/Colours.h"
#include "ui/style/OpenForms.h"
#include "ui/style/Style.h"
#include "ui/style/TextBoxes.h"
#include "ui_frmKOVADatabaseSettings.h"

#include <QFontDatabase>
#include <QLocale>
#include <QTabBar>
#include <QToolButton>

namespace tolvex {

namespace {

using Kind = AutomationField::Kind;

constexpr int LongestNumber = 10; // digits
constexpr int ShownDigits = 5;    // of a box for a number that is not longer as a rule
constexpr int StationPorts = 20;
constexpr qint32 Black = 0;
constexpr qint32 White = 0xFFFFFF;

QFont fontOf(const KOVADatabaseSettings& record) {
    QFont font(record.KOVA_LogFont_FontName, qMax<int>(record.KOVA_LogFont_FontSize, 1));
    font.setBold(record.KOVA_LogFont_FontBold);
    font.setItalic(record.KOVA_LogFont_FontItalic);
    font.setStrikeOut(record.KOVA_LogFont_FontStrikeThru);
    font.setUnderline(record.KOVA_LogFont_FontUnderLine);
    return font;
}

// Black or white, whichever is easier to read on a colour.
qint32 readableOn(const QColor& ground) {
    return Contrast(ground, Qt::black) < Contrast(ground, Qt::white) ? White : Black;
}

std::function<bool(const FormView&)> computerIs(std::initializer_list<int> choices) {
    return [choices = std::vector<int>(choices)](const FormView& form) {
        return std::find(choices.begin(), choices.end(), form.number("comboStationControl")) != choices.end();
    };
}

} // namespace

frmKOVADatabaseSettings::frmKOVADatabaseSettings(KOVADatabaseSettings& record, const Settings& settings,
                                                 UsersState& users, QWidget* parent)
    : QDialog(parent)
    , record_(record)
    , settings_(settings)
    , shown_(record)
    , editing_(shown_, settings, users)
    , ui_(std::make_unique<Ui::frmKOVADatabaseSettings>()) {
    ui_->setupUi(this);
    EnterForm(this);
    setWindowFlag(Qt::WindowStaysOnTopHint);
    fillLists();
    prepareBoxes();
    showColours();
    connectButtons();
    addRules();
    ui_->lblReadOnly->hide();
    ui_->lblReadOnly->setStyleSheet(QStringLiteral("color: %1;").arg(tokens().warningText.name()));
    ui_->tbsKOVA->setCurrentIndex(0);
    // On a small screen the tab bar has arrows. The keys need none of them.
    for (QToolButton* arrow : ui_->tbsKOVA->tabBar()->findChildren<QToolButton*>())
        arrow->setFocusPolicy(Qt::NoFocus);
    ui_->tbsKOVA->setEnabled(false);
    ui_->cmdOK->setEnabled(false);
}

frmKOVADatabaseSettings::~frmKOVADatabaseSettings() = default;

// Wide enough for all tabs; on a small screen they scroll.
QSize frmKOVADatabaseSettings::sizeHint() const {
    const QMargins margins = layout()->contentsMargins();
    const int tabs = ui_->tbsKOVA->tabBar()->sizeHint().width() + margins.left() + margins.right();
    return QDialog::sizeHint().expandedTo(QSize(tabs, 0));
}

void frmKOVADatabaseSettings::prepareBoxes() {
    for (QLineEdit* box : findChildren<QLineEdit*>())
        SelectAllOnFocus(box);
    for (const AutomationField& field : AutomationFields()) {
        auto* box = findChild<QLineEdit*>(QLatin1String(field.control));
        if (!box || field.kind == Kind::Text || field.kind == Kind::ClientDatabase ||
            field.kind == Kind::StationControl)
            continue;
        const bool isLong = field.kind == Kind::Number;
        SetWidthInDigits(box, isLong ? LongestNumber : ShownDigits);
        if (!isLong && field.kind != Kind::LevelTrigger)
            TakeDigits(box, LongestNumber);
    }
}

void frmKOVADatabaseSettings::showColours() {
    // These only paint their samples, and are not stored.
    ui_->cmdStatusback->setColour(SystemButtonFace);
    ui_->cmdStatusFore->setColour(SystemButtonText);
    for (const AutomationPanel& panel : AutomationPanels()) {
        QWidget* sample = ControlNamed(this, QLatin1String(panel.panel));
        auto* ground = findChild<ColourButton*>(QLatin1String(panel.ground));
        if (panel.text) {
            ShowColoursOn(sample, ground, findChild<ColourButton*>(QLatin1String(panel.text)));
            continue;
        }
        // The players choose the colour of the text: here it is one that can be read.
        connect(ground, &ColourButton::colourChanged, sample, [sample, ground] {
            const QColor colour = ToColor(ground->colour(), ground->palette());
            sample->setStyleSheet(
                QStringLiteral("background-color: %1; color: %2;")
                    .arg(colour.name(), ToColor(readableOn(colour), ground->palette()).name()));
        });
    }
}

void frmKOVADatabaseSettings::fillLists() {
    const auto fill = [this](const QString& control, std::span<const char* const> words) {
        if (auto* list = findChild<QComboBox*>(control))
            for (const char* word : words)
                list->addItem(QString::fromUtf8(word));
    };
    for (const AutomationField& field : AutomationFields())
        fill(QLatin1String(field.control), field.words);
    fill(QStringLiteral("comboStationControl"), StationControlWords());
    fill(QStringLiteral("comboMusicFilenameFormat"), FilenameFormats());
    fill(QStringLiteral("comboAdvertFilenameFormat"), FilenameFormats());
    for (int port = 1; port <= StationPorts; ++port)
        ui_->comboStationControlPort->addItem(QStringLiteral("Port %1").arg(port));
}

void frmKOVADatabaseSettings::connectButtons() {
    const auto onClick = [this](QPushButton* button, const std::function<void()>& then) {
        connect(button, &QPushButton::clicked, this, [then] { then(); });
    };
    onClick(ui_->cmdBrowseMusicLogsPath, [this] {
        browse(ui_->txtMusicLogPath, QStringLiteral("Select the folder to use for Songs Log files:"));
    });
    onClick(ui_->cmdBrowseAdvertsLogPath, [this] {
        browse(ui_->txtAdvertLogsPath, QStringLiteral("Select the folder to use for Adverts Log files:"));
    });
    onClick(ui_->cmdSelectClientsDB, [this] { chooseClients(); });
    onClick(ui_->cmdSelectAudioFormat, [this] { chooseFormat(); });
    onClick(ui_->cmdSelectLogFont, [this] { chooseFont(); });
    onClick(ui_->cmdOK, [this] { ok(); });
    onClick(ui_->cmdCancel, [this] { reject(); });
    for (QWidget* control :
         ControlsNamed(this, QStringLiteral("txtMusicFilenamePrefix comboMusicFilenameFormat "
                                            "txtAdvertFilenamePrefix comboAdvertFilenameFormat")))
        WhenChanged(control, this, [this] { showSamples(); });
    WhenChanged(ui_->txtAdvertClientDatabase, this, [this] { showClientsDatabase(); });
    WhenChanged(ui_->chkScheduleAds, this, [this] {
        if (!ui_->chkScheduleAds->isChecked())
            ui_->txtAdvertClientDatabase->clear();
    });
}

void frmKOVADatabaseSettings::addRules() {
    const QString noComputer = QStringLiteral("There is no computer to connect to.");
    const auto tick = [](const QCheckBox* box) {
        return QStringLiteral("Tick \"%1\" first.").arg(box->text());
    };
    new EnableRules(
        this,
        {{"lblClientDatabase txtAdvertClientDatabase cmdSelectClientsDB lblAdvertClientsDB",
          tick(ui_->chkScheduleAds), IsOn("chkScheduleAds")},
         {"txtSTTriggerLevel lblLevelTriggerPercDesc", tick(ui_->chkSTLevelTrigger),
          IsOn("chkSTLevelTrigger")},
         {"txtRestartSeconds lblRestartSeconds", tick(ui_->chkAutoRestart), IsOn("chkAutoRestart")},
         {"txtMaxFadeTime lblMaxFadeAfter", "The other way of fading is chosen.", IsOn("optFadeLast")},
         {"txtFadeEachTime lblFadeEachAfter", "The other way of fading is chosen.", IsOn("optFadeEach")},
         {"lblStationControlComputer txtStationControlComputer lblShowNextItemsCount "
          "txtShowNextItemsCount chkAllowManualZCP",
          noComputer, computerIs({1, 2})},
         {"lblStationControlPort comboStationControlPort", "Only ZCP has a port.", computerIs({1})},
         {"chkWaitSplitReturn", "Only ZQS has splits.", computerIs({2})}});
}

void frmKOVADatabaseSettings::setDatabase(const QString& name, const QString& connect) {
    ui_->lblDatabasename->setText(name);
    ui_->tbsKOVA->setEnabled(false);
    ui_->cmdOK->setEnabled(false);
    if (!editing_.open(name, connect)) {
        ui_->lblDatabasename->setText(QStringLiteral("%1 cannot be opened.").arg(name));
        return;
    }
    record_ = shown_;
    const QString why = editing_.readOnlyReason();
    ui_->lblReadOnly->setVisible(!why.isEmpty());
    ui_->lblReadOnly->setText(
        QStringLiteral("These settings can be read but not stored: the database is read-only (%1).")
            .arg(why));
    ui_->tbsKOVA->setEnabled(true);
    ui_->cmdOK->setEnabled(true);
    ui_->txtSegPreviewLength->setFocus();
    display();
}

void frmKOVADatabaseSettings::display() {
    const AutomationEntries shown = ShowAutomationSettings(shown_);
    for (auto entry = shown.begin(); entry != shown.end(); ++entry)
        SetValueOf(ControlNamed(this, entry.key()), ToControl(entry.value()));
    // Their colours are not stored either, and begin readable.
    const std::pair<ColourButton*, const ColourButton*> modes[] = {
        {ui_->cmdAutomationFore, ui_->cmdAutomationBack},
        {ui_->cmdLiveAssistFore, ui_->cmdLiveAssistBack},
        {ui_->cmdStandbyFore, ui_->cmdStandbyBack}};
    for (const auto& [text, ground] : modes)
        text->setColour(IsSystemColour(ground->colour()) ? SystemButtonText
                                                         : readableOn(ToColor(ground->colour(), palette())));
    showFont();
    showFormat();
    showSamples();
    showClientsDatabase();
    QString sent = shown_.MUSIC_SentBy;
    if (shown_.MUSIC_LastSent > 0) {
        const QDateTime time = FromSerialDate(shown_.MUSIC_LastSent);
        sent += QStringLiteral(" on ") + QLocale::system().toString(time.date(), QLocale::ShortFormat) +
                time.time().toString(QStringLiteral(" HH:mm:ss"));
    }
    ui_->lblMusicLastSent->setText(sent);
    loaded_ = entries();
}

void frmKOVADatabaseSettings::showFont() {
    ui_->pnlLogPreview->setFont(fontOf(shown_));
    QString text =
        QStringLiteral("%1, %2 points").arg(shown_.KOVA_LogFont_FontName).arg(shown_.KOVA_LogFont_FontSize);
    if (!QFontDatabase::hasFamily(shown_.KOVA_LogFont_FontName))
        text += QStringLiteral(" (not installed here, so another font stands in for it)");
    ui_->lblLogFont->setText(text);
}

void frmKOVADatabaseSettings::showFormat() {
    ui_->lblAudioFormat->setText(platform::DescribeAudioFormat(shown_.SEGUE_VoiceLinkFormat,
                                                               shown_.SEGUE_VoiceLinkChannels,
                                                               shown_.SEGUE_VoiceLinkKhz) +
                                 u' ');
}

void frmKOVADatabaseSettings::showSamples() {
    const QDateTime now = platform::clock().now();
    ui_->lblMusicSampleFilename->setText(SampleLogFilename(
        ui_->txtMusicFilenamePrefix->text(), ui_->comboMusicFilenameFormat->currentText(), now));
    ui_->lblAdvertSampleFilename->setText(SampleLogFilename(
        ui_->txtAdvertFilenamePrefix->text(), ui_->comboAdvertFilenameFormat->currentText(), now));
}

void frmKOVADatabaseSettings::showClientsDatabase() {
    const QString name = ui_->txtAdvertClientDatabase->text();
    DatabaseInformation information;
    const bool known = !name.isEmpty() && GetDatabaseInformation(settings_.DataLocation + u'\\' + name,
                                                                 &information, false) == 0;
    ui_->lblAdvertClientsDB->setText(known ? information.Description : QString());
}

AutomationEntries frmKOVADatabaseSettings::entries() const {
    AutomationEntries all;
    const QStringList controls = ShowAutomationSettings(shown_).keys();
    for (const QString& control : controls)
        all[control] = FromControl(ValueOf(ControlNamed(this, control)));
    return all;
}

bool frmKOVADatabaseSettings::isChanged() const {
    if (!editing_.isOpen())
        return false;
    if (entries() != loaded_)
        return true;
    for (const AutomationField& field : AutomationFields())
        if (const AutomationItem& item = *FindAutomationItem(QLatin1String(field.item));
            field.kind >= Kind::Font && MemberValue(item, shown_) != MemberValue(item, record_))
            return true;
    return false;
}

void frmKOVADatabaseSettings::browse(QLineEdit* box, const QString& prompt) {
    const QString folder = BrowseForFolder(prompt, box->text());
    if (!folder.isEmpty())
        box->setText(folder.trimmed());
}

void frmKOVADatabaseSettings::chooseClients() {
    const QString name = ChooseDatabase(this, settings_.DataLocation, AdvertsType);
    if (!name.isEmpty())
        ui_->txtAdvertClientDatabase->setText(name);
}

void frmKOVADatabaseSettings::chooseFormat() {
    const auto chosen = platform::prompts().pickWaveFormat(
        {shown_.SEGUE_VoiceLinkFormat, shown_.SEGUE_VoiceLinkChannels, shown_.SEGUE_VoiceLinkKhz});
    if (!chosen)
        return;
    shown_.SEGUE_VoiceLinkFormat = chosen->tag;
    shown_.SEGUE_VoiceLinkChannels = chosen->channels;
    shown_.SEGUE_VoiceLinkKhz = chosen->rate;
    showFormat();
}

void frmKOVADatabaseSettings::chooseFont() {
    const QFont before = fontOf(shown_);
    const std::optional<QFont> font = ChooseFont(before, QStringLiteral("Font"), this);
    if (!font)
        return;
    shown_.KOVA_LogFont_FontName = font->family();
    if (font->pointSize() != before.pointSize())
        shown_.KOVA_LogFont_FontSize = static_cast<qint16>(font->pointSize());
    shown_.KOVA_LogFont_FontBold = font->bold();
    shown_.KOVA_LogFont_FontItalic = font->italic();
    shown_.KOVA_LogFont_FontStrikeThru = font->strikeOut();
    shown_.KOVA_LogFont_FontUnderLine = font->underline();
    showFont();
}

void frmKOVADatabaseSettings::ok() {
    AutomationEntries given = entries();
    const auto fault = CheckAutomationSettings(given, settings_.NoCarts);
    for (QLineEdit* folder : {ui_->txtMusicLogPath, ui_->txtAdvertLogsPath})
        folder->setText(given[folder->objectName()].toString());
    if (fault) {
        ShowFieldError(ControlNamed(this, fault->control), fault->message);
        return;
    }
    TakeAutomationSettings(given, shown_);
    if (!editing_.store())
        return;
    record_ = shown_;
    editing_.close();
    accept();
}

void frmKOVADatabaseSettings::reject() {
    if (isChanged() &&
        !AskToLoseChanges(QStringLiteral("The changes to the K-OVA database settings have not been stored.")))
        return;
    editing_.close();
    QDialog::reject();
}

} // namespace tolvex
