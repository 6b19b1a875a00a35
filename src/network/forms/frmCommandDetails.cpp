#include "network/forms/frmCommandDetails.h"

#include "network/forms/EventModel.h"
#include "network/forms/TrialLines.h"
#include "platform/CodePage.h"
#include "platform/Prompts.h"
#include "platform/devices/SerialPorts.h"
#include "ui/binding/EnableRules.h"
#include "ui/binding/FieldError.h"
#include "ui/binding/FormChanges.h"
#include "ui/style/FitForm.h"
#include "ui/style/OpenForms.h"
#include "ui/style/Style.h"
#include "ui/style/TextBoxes.h"
#include "ui_frmCommandDetails.h"

#include <QFocusEvent>
#include <QTextCursor>

#include <array>

namespace tolvex {

namespace {

using platform::Answer;
using platform::Buttons;
using platform::Icon;

constexpr qsizetype mostUsesShown = 4;
constexpr int digitsOfPort = 5;
const QString unreadableHint = QStringLiteral(
    "This command could not be read, so it is not replaced. Choose another name, or delete it.");

const BoundField<CommandFields> boundFields[] = {
    Bound<&CommandFields::name>("txtCommandFile").help("Digits, letters and blanks"),
    Bound<&CommandFields::type>("comboCommandType"),
    Bound<&CommandFields::useExisting>("chkUseExisting"),
    Bound<&CommandFields::leaveOpen>("chkLeaveOpen"),
    Bound<&CommandFields::serialPort>("comboSerialPort"),
    Bound<&CommandFields::handshaking>("comboSerialHandshaking"),
    Bound<&CommandFields::settings>("txtSerialSettings")
        .help("Speed, parity (n, e, o, m, s), data bits and stop bits: 9600,n,8,1"),
    Bound<&CommandFields::address>("txtTCPIPAddress"),
    Bound<&CommandFields::port>("txtTCPIPPort"),
    Bound<&CommandFields::protocol>("comboTCPIPProtocol"),
    Bound<&CommandFields::windowStyle>("comboExternalWindowStyle"),
};

void fill(QComboBox* list, std::span<const NamedValue> values) {
    for (const NamedValue& row : values)
        list->addItem(QLatin1String(row.text), row.value);
}

bool hasText(qint32 type) {
    return type >= SerialCommand && type <= ExternalCommand;
}

// A program's command line holds backslashes of its own: it is typed as it stands.
TextForm formOf(qint32 type) {
    return type == ExternalCommand ? TextForm::AsItStands : TextForm::Escaped;
}

void colour(QLabel* label, const QColor& colour) {
    label->setStyleSheet(QStringLiteral("color: %1;").arg(colour.name()));
}

} // namespace

frmCommandDetails::frmCommandDetails(const CommandFolder& folder, const QString& name, CommandUseSource uses,
                                     QWidget* parent)
    : QDialog(parent)
    , folder_(folder)
    , name_(name.trimmed())
    , uses_(std::move(uses))
    , ui_(std::make_unique<Ui::frmCommandDetails>())
    , events_(new EventModel(this))
    , trial_([this](const CommandEvent& event) { showTrial(event); }) {
    ui_->setupUi(this);
    KeepFitted(this);
    EnterForm(this);
    fillLists();
    colour(ui_->lblEscapes, tokens().quiet);
    ui_->lstTrial->setModel(events_);
    ui_->lstTrial->setEmptyText(
        QStringLiteral("Test sends what stands above, without storing it, and shows here what happens."));
    ui_->lstTrial->fitColumns(EventModel::Event);
    for (QLineEdit* box :
         {ui_->txtCommandFile, ui_->txtSerialSettings, ui_->txtTCPIPAddress, ui_->txtExternalCommand})
        SelectAllOnFocus(box);
    TakeDigits(ui_->txtTCPIPPort, digitsOfPort);
    for (QPlainTextEdit* box : {ui_->txtSerialCommand, ui_->txtTCPIPCommand}) {
        box->installEventFilter(this);
        connect(box, &QPlainTextEdit::textChanged, this, &frmCommandDetails::showText);
    }
    connect(ui_->txtExternalCommand, &QLineEdit::textChanged, this, &frmCommandDetails::showText);
    connect(ui_->txtSerialSettings, &QLineEdit::textChanged, this, &frmCommandDetails::showPort);
    connect(ui_->comboSerialPort, &QComboBox::currentIndexChanged, this, &frmCommandDetails::showPort);
    connect(ui_->comboCommandType, &QComboBox::currentIndexChanged, this, &frmCommandDetails::showType);
    connect(ui_->txtCommandFile, &QLineEdit::textChanged, this, &frmCommandDetails::showName);
    connect(ui_->cmdDelete, &QPushButton::clicked, this, &frmCommandDetails::remove);
    connect(ui_->cmdTest, &QPushButton::clicked, this, &frmCommandDetails::test);
    connect(ui_->cmdUses, &QPushButton::clicked, this, &frmCommandDetails::showUses);
    connect(ui_->cmdOK, &QPushButton::clicked, this, &frmCommandDetails::store);
    connect(ui_->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);

    binding_.bind(fields_, boundFields);
    load();
    // showName looks at each name before the rules do.
    const auto mayStore = [this](const FormView&) { return !isUnreadable(); };
    const auto exists = [this](const FormView& form) { return folder_.has(form.text("txtCommandFile")); };
    new EnableRules(this, {{QStringLiteral("chkUseExisting chkLeaveOpen"),
                            QStringLiteral("Only serial and TCP/IP commands have a connection."),
                            [](const FormView& form) {
                                const qint32 chosen = form.number("comboCommandType");
                                return chosen == SerialCommand || chosen == TcpIpCommand;
                            }},
                           {QStringLiteral("cmdDelete cmdUses"),
                            QStringLiteral("No command of this name is stored."), exists},
                           {QStringLiteral("cmdOK"), unreadableHint, mayStore}});
    changes_ = new FormChanges(this);
    showType();
    showName();
    platform::prompts().setPointer(platform::Pointer::Default);
}

frmCommandDetails::~frmCommandDetails() {
    for (QPlainTextEdit* box : {ui_->txtSerialCommand, ui_->txtTCPIPCommand})
        box->removeEventFilter(this);
}

// ---- Filling and reading

void frmCommandDetails::fillLists() {
    fill(ui_->comboCommandType, CommandTypes().subspan(1));
    fill(ui_->comboSerialPort, CommandSerialPorts());
    fill(ui_->comboSerialHandshaking, CommandHandshakings());
    fill(ui_->comboTCPIPProtocol, CommandProtocols());
    fill(ui_->comboExternalWindowStyle, CommandWindowStyles());
}

void frmCommandDetails::load() {
    fields_.name = name_;
    QString why;
    if (!name_.isEmpty()) {
        const std::optional<CommandRecord> command = folder_.read(name_, &why);
        if (command)
            why = UnknownTypeMessage(command->Type);
        if (command && why.isEmpty()) {
            opened_ = before_ = *command;
            fields_ = FieldsOf(name_, before_);
        }
    }
    binding_.fill();
    if (!why.isEmpty())
        platform::prompts().ask({why, Icon::Exclamation, Buttons::Ok});
    shownText_ = formOf(before_.Type) == TextForm::Escaped ? ShowCommandText(before_.Text, true)
                                                           : platform::FromCodePage(before_.Text);
    if (QWidget* box = textBox()) {
        SetValueOf(box, shownText_);
        shownText_ = std::get<QString>(ValueOf(box));
    }
    loaded_ = true;
}

void frmCommandDetails::look() {
    const QString typed = ui_->txtCommandFile->text().trimmed();
    replaced_ = folder_.read(typed);
    const bool isRead = replaced_ && UnknownTypeMessage(replaced_->Type).isEmpty();
    seen_ = isRead ? Seen::Readable : folder_.has(typed) ? Seen::Unreadable : Seen::Missing;
    if (typed.compare(name_, Qt::CaseInsensitive) == 0)
        replaced_ = opened_;
}

bool frmCommandDetails::mayReplace(const QString& name) {
    const std::optional<CommandRecord> now = folder_.read(name);
    if (now == replaced_)
        return true;
    const QString what =
        now ? QStringLiteral("The command \"%1\" has been changed elsewhere since you opened "
                             "it. Do you want to replace it?")
            : QStringLiteral("The command \"%1\" has been deleted elsewhere since you opened "
                             "it. Do you want to store it again?");
    return platform::prompts().ask({.text = what.arg(name.trimmed()),
                                    .icon = Icon::Question,
                                    .buttons = Buttons::YesNo,
                                    .defaultAnswer = Answer::No}) == Answer::Yes;
}

qint32 frmCommandDetails::type() const {
    const QVariant chosen = ui_->comboCommandType->currentData();
    return chosen.isValid() ? chosen.toInt() : fields_.type;
}

QWidget* frmCommandDetails::textBox() const {
    switch (type()) {
    case SerialCommand:
        return ui_->txtSerialCommand;
    case TcpIpCommand:
        return ui_->txtTCPIPCommand;
    case ExternalCommand:
        return ui_->txtExternalCommand;
    default:
        return nullptr;
    }
}

CommandFields frmCommandDetails::fields() {
    binding_.take();
    CommandFields now = fields_;
    now.storedText = before_.Text;
    now.typedText.reset();
    const QWidget* box = textBox();
    const QString text = box ? std::get<QString>(ValueOf(box)) : QString();
    if (box && (now.type != before_.Type || text != shownText_)) {
        now.typedText = text;
        now.textForm = formOf(now.type);
    }
    return now;
}

// ---- What stands beside the fields

void frmCommandDetails::showType() {
    if (!loaded_)
        return;
    const qint32 chosen = type();
    QWidget* const pages[] = {ui_->pageSuite, ui_->pageSerial, ui_->pageTCPIP, ui_->pageExternal};
    ui_->pages->setCurrentWidget(pages[hasText(chosen) ? chosen : SuiteCommand]);
    ui_->lblEscapes->setVisible(formOf(chosen) == TextForm::Escaped && hasText(chosen));
    showText();
    showPort();
}

void frmCommandDetails::showText() {
    if (!loaded_)
        return;
    const QWidget* box = textBox();
    ui_->lblBytes->setVisible(box != nullptr);
    if (!box)
        return;
    TextFault fault;
    const CommandFields now = fields();
    const std::optional<QByteArray> bytes =
        now.typedText ? ReadCommandText(*now.typedText, now.textForm, &fault) : now.storedText;
    colour(ui_->lblBytes, bytes ? tokens().quiet : tokens().error);
    ui_->lblBytes->setText(bytes ? BytesLine(*bytes) : fault.sentence);
}

void frmCommandDetails::showPort() {
    if (!loaded_)
        return;
    const platform::SerialPortFacts facts =
        platform::FactsOfSerialPort(ui_->comboSerialPort->currentData().toInt());
    const QString hint = type() == SerialCommand ? CommandHint(fields()) : QString();
    QString text = !hint.isEmpty()          ? hint
                   : facts.device.isEmpty() ? QStringLiteral("This computer has no such port.")
                   : !facts.present         ? facts.device + QStringLiteral(" is not there now.")
                                            : facts.device;
    if (hint.isEmpty() && facts.present && !facts.description.isEmpty())
        text += QStringLiteral(", ") + facts.description;
    if (hint.isEmpty() && !facts.holder.isEmpty())
        text += QStringLiteral(", in use by ") + facts.holder;
    ui_->lblPort->setText(text);
    colour(ui_->lblPort, hint.isEmpty() && facts.present ? tokens().quiet : tokens().warningText);
}

void frmCommandDetails::showName() {
    const QString typed = ui_->txtCommandFile->text().trimmed();
    look();
    const QString other = folder_.otherSpelling(typed);
    const bool isSame = typed.compare(name_, Qt::CaseInsensitive) == 0;
    QString hint;
    if (isUnreadable())
        hint = unreadableHint;
    else if (isSame && !other.isEmpty() && typed != name_)
        hint = QStringLiteral("The command keeps its spelling, \"%1\".").arg(other);
    else if (!isSame && folder_.has(typed))
        hint = QStringLiteral("OK replaces the command \"%1\".").arg(other.isEmpty() ? typed : other);
    else if (!isSame && !typed.isEmpty() && !name_.isEmpty())
        hint = QStringLiteral("OK makes a new command; \"%1\" stays.").arg(name_);
    ui_->lblNameHint->setText(hint);
    ui_->lblNameHint->setVisible(!hint.isEmpty());
    colour(ui_->lblNameHint, tokens().warningText);
    ui_->lblUses->hide();
}

void frmCommandDetails::showUses() {
    const platform::PointerKeeper pointer(platform::Pointer::Wait);
    const QString typed = ui_->txtCommandFile->text().trimmed();
    const QList<CommandUse> uses = uses_ ? uses_(typed) : QList<CommandUse>();
    QStringList places;
    for (const CommandUse& use : uses.first(qMin(uses.size(), mostUsesShown)))
        places += QStringLiteral("%1: %2").arg(use.where, use.text);
    if (uses.size() > mostUsesShown)
        places += QStringLiteral("and %1 more").arg(uses.size() - mostUsesShown);
    ui_->lblUses->setText(
        places.isEmpty() ? QStringLiteral("No hardware line and no entry of the automation log names it.")
                         : QStringLiteral("Used by\n") + places.join(u'\n'));
    ui_->lblUses->show();
}

// ---- OK, Delete, Cancel

bool frmCommandDetails::showFault(const CommandFault& fault) {
    QWidget* field = nullptr;
    switch (fault.field) {
    case CommandField::Name:
        field = ui_->txtCommandFile;
        break;
    case CommandField::SerialPort:
        field = ui_->comboSerialPort;
        break;
    case CommandField::SerialHandshaking:
        field = ui_->comboSerialHandshaking;
        break;
    case CommandField::SerialSettings:
        field = ui_->txtSerialSettings;
        break;
    case CommandField::TcpIpAddress:
        field = ui_->txtTCPIPAddress;
        break;
    case CommandField::TcpIpPort:
        field = ui_->txtTCPIPPort;
        break;
    case CommandField::TcpIpProtocol:
        field = ui_->comboTCPIPProtocol;
        break;
    case CommandField::WindowStyle:
        field = ui_->comboExternalWindowStyle;
        break;
    case CommandField::Text:
        field = textBox();
        break;
    }
    ShowFieldError(field, fault.message, Icon::Information);
    if (auto* text = qobject_cast<QPlainTextEdit*>(field); text && fault.place >= 0) {
        QTextCursor cursor = text->textCursor();
        cursor.setPosition(static_cast<int>(fault.place));
        cursor.movePosition(QTextCursor::NextCharacter, QTextCursor::KeepAnchor);
        text->setTextCursor(cursor);
    }
    return false;
}

bool frmCommandDetails::isRight(const CommandFields& fields, bool emptyIsRight) {
    while (const std::optional<CommandFault> fault = CheckCommand(fields, emptyIsRight)) {
        if (!fault->isQuestion)
            return showFault(*fault);
        if (platform::prompts().ask({fault->message, Icon::Question, Buttons::YesNo}) != Answer::Yes) {
            if (QWidget* box = textBox())
                box->setFocus();
            return false;
        }
        emptyIsRight = true;
    }
    return true;
}

void frmCommandDetails::store() {
    const CommandFields now = fields();
    if (!isRight(now, !hasText(now.type)) || !mayReplace(now.name))
        return;
    const platform::PointerKeeper pointer(platform::Pointer::Wait);
    if (!folder_.save(now.name, CommandOf(now, before_)))
        return;
    name_ = now.name.trimmed();
    needsRefresh_ = true;
    accept();
}

void frmCommandDetails::remove() {
    showUses();
    if (platform::prompts().ask({.text = QStringLiteral("Are you sure you want to delete this command?"),
                                 .icon = Icon::Question,
                                 .buttons = Buttons::YesNo,
                                 .defaultAnswer = Answer::No}) != Answer::Yes)
        return;
    if (!folder_.remove(ui_->txtCommandFile->text()))
        return;
    needsRefresh_ = true;
    accept();
}

void frmCommandDetails::reject() {
    if (changes_->any() &&
        !AskToLoseChanges(QStringLiteral("The changes to the command have not been stored.")))
        return;
    trial_.stop();
    QDialog::reject();
}

// Enter types a line break in a text of several lines.
bool frmCommandDetails::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn)
        ui_->cmdOK->setDefault(false);
    // The box's own menu takes the focus for a while.
    if (event->type() == QEvent::FocusOut &&
        static_cast<QFocusEvent*>(event)->reason() != Qt::PopupFocusReason)
        ui_->cmdOK->setDefault(true);
    return QDialog::eventFilter(watched, event);
}

// ---- Test

void frmCommandDetails::test() {
    if (trial_.running()) {
        trial_.stop();
        events_->add(QStringLiteral("Stopped."));
        ui_->cmdTest->setText(QStringLiteral("&Test"));
        return;
    }
    CommandFields now = fields();
    if (now.name.trimmed().isEmpty())
        now.name = QStringLiteral("Test"); // it is not stored
    if (!isRight(now, true))
        return;
    answered_ = false;
    ui_->cmdTest->setText(QStringLiteral("S&top"));
    trial_.start(now.name.trimmed(), CommandOf(now, before_));
}

void frmCommandDetails::showTrial(const CommandEvent& event) {
    const bool isFault = event.kind == CommandEvent::Kind::Failed;
    // A program sends nothing back.
    answered_ =
        answered_ || event.kind == CommandEvent::Kind::Answer || event.kind == CommandEvent::Kind::Started;
    events_->add(TrialLine(event, answered_), isFault);
    ui_->lstTrial->scrollToBottom();
    if (isFault || event.kind == CommandEvent::Kind::Closed)
        ui_->cmdTest->setText(QStringLiteral("&Test"));
}

} // namespace tolvex
