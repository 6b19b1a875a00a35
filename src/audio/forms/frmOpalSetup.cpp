#include "audio/forms/frmOpalSetup.h"

#include "audio/transfers/TransportLists.h"
#include "core/report/Folders.h"
#include "core/report/ProblemReport.h"
#include "platform/Prompts.h"
#include "platform/SteadyTime.h"
#include "ui/binding/EnableRules.h"
#include "ui/binding/FieldError.h"
#include "ui/forms/frmGoodInputBox.h"
#include "ui/style/FitForm.h"
#include "ui/style/OpenForms.h"
#include "ui/style/Style.h"
#include "ui_frmOpalSetup.h"

#include <QKeyEvent>

#include <algorithm>

namespace tolvex {

namespace {

// Other programs make and delete lists while the form is open.
constexpr std::chrono::milliseconds usualRefresh{2000};
// A share that answers late holds the window up for at most a tenth of the time.
constexpr int restAfterALook = 10;

const BoundField<TransferSetup> fields[] = {
    Bound<&TransferSetup::allow>("chkAllowOPAL"),
    Bound<&TransferSetup::directory>("lblDirectory"),
    Bound<&TransferSetup::askDelete>("chkDeleteAfterSend"),
    Bound<&TransferSetup::askDestination>("chkPromptForDestinationCart"),
};

} // namespace

frmOpalSetup::frmOpalSetup(QWidget* parent)
    : QDialog(parent)
    , ui_(std::make_unique<Ui::frmOpalSetup>())
    , binding_(this) {
    ui_->setupUi(this);
    EnterForm(this);
    ui_->listFiles->setStyleSheet(
        QStringLiteral("QListWidget:disabled { background: %1; color: %2; selection-background-color: %3; "
                       "selection-color: %2; }")
            .arg(tokens().background.name(), tokens().quiet.name(), tokens().line.name()));
    ui_->listFiles->installEventFilter(this);
    binding_.bind(setup_, fields);
    addRules();
    KeepFitted(this);
    connect(ui_->lblDirectory, &QLineEdit::textChanged, this, &frmOpalSetup::refresh);
    connect(ui_->listFiles, &QListWidget::itemSelectionChanged, this, [this] { rules_->apply(); });
    connect(ui_->cmdBrowse, &QPushButton::clicked, this, &frmOpalSetup::browse);
    connect(ui_->cmdAdd, &QPushButton::clicked, this, &frmOpalSetup::add);
    connect(ui_->cmdDelete, &QPushButton::clicked, this, &frmOpalSetup::remove);
    connect(ui_->cmdDefault, &QPushButton::clicked, this, &frmOpalSetup::makeDefault);
    connect(ui_->cmdOK, &QPushButton::clicked, this, &frmOpalSetup::ok);
    connect(ui_->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(&refresh_, &QTimer::timeout, this, &frmOpalSetup::refresh);
    refresh_.start(usualRefresh);
    showSetup();
}

frmOpalSetup::~frmOpalSetup() {
    ui_->listFiles->removeEventFilter(this);
}

void frmOpalSetup::setIniFile(const QString& file) {
    store_.iniFile = file;
    setup_ = shown_ = LoadTransfersFromIni(file);
    showSetup();
}

void frmOpalSetup::setRegistryKey(const QString& key) {
    store_.registryKey = key;
    setup_ = LoadTransfersFromRegistry(store_.registryRoot, key);
    showSetup();
}

void frmOpalSetup::addRules() {
    const auto folderExists = [this](const FormView&) { return folderExists_; };
    rules_ = new EnableRules(
        this, {{QStringLiteral(
                    "fraOpalSettings lblDescription lblDirectory lblDirectoryDesc cmdBrowse listFiles cmdAdd "
                    "cmdDelete cmdDefault lblDefault lblDefaultDesc chkDeleteAfterSend "
                    "chkPromptForDestinationCart"),
                QStringLiteral("Tick \"Transfer items to other systems\" first."), IsOn("chkAllowOPAL")},
               {QStringLiteral("cmdAdd listFiles lblDefault lblDefaultDesc cmdDelete cmdDefault"),
                QStringLiteral("Choose a folder that is there first."), folderExists},
               {QStringLiteral("lblDirectory"), QStringLiteral("\"Browse...\" chooses the folder."),
                [](const FormView&) { return false; }, EnableRule::Effect::Locks},
               {QStringLiteral("cmdDelete cmdDefault"), QStringLiteral("Select a transport list first."),
                [this](const FormView&) { return !selected().isEmpty(); }}});
}

void frmOpalSetup::showSetup() {
    binding_.fill();
    refresh();
}

// Looks at the folder again: lists come and go, and so does the folder.
void frmOpalSetup::refresh() {
    const auto begun = platform::SteadyTime();
    if (setup_.directory = ui_->lblDirectory->text(); setup_.directory != listed_)
        listNames({});
    listed_ = setup_.directory;
    folderExists_ = DirectoryExists(listed_);
    listNames(folderExists_ ? TransportLists(listed_, names_) : QStringList());
    showDefault();
    rules_->apply();
    refresh_.setInterval(std::max(usualRefresh, restAfterALook * (platform::SteadyTime() - begun)));
}

// The selection stays on its list; where that is gone, it stays at its place.
void frmOpalSetup::listNames(const QStringList& names) {
    if (names == names_)
        return;
    const QString before = selected();
    const int row = ui_->listFiles->currentRow();
    names_ = names;
    ui_->listFiles->clear();
    ui_->listFiles->addItems(names);
    const qsizetype found = names.indexOf(before);
    if (!names.isEmpty())
        ui_->listFiles->setCurrentRow(
            int(found >= 0 ? found : std::clamp<qsizetype>(row, 0, names.size() - 1)));
}

void frmOpalSetup::select(const QString& name) {
    for (qsizetype row = 0; row < names_.size(); ++row)
        if (names_[row].compare(name, Qt::CaseInsensitive) == 0)
            ui_->listFiles->setCurrentRow(int(row));
}

void frmOpalSetup::showDefault() {
    const QString name = ShownDefault(setup_);
    ui_->lblDefault->setText(name);
    QString state;
    if (!setup_.directory.isEmpty() && !folderExists_)
        state = QStringLiteral("This folder is not there, or cannot be reached.");
    else if (folderExists_ && name.isEmpty() && !setup_.defaultList.isEmpty())
        state = QStringLiteral("The default list \"%1\" is not in this folder.").arg(setup_.defaultList);
    else if (folderExists_)
        state = names_.isEmpty()     ? QStringLiteral("There is no transport list in this folder yet.")
                : names_.size() == 1 ? QStringLiteral("1 transport list")
                                     : QStringLiteral("%1 transport lists").arg(names_.size());
    const bool fault = state.endsWith(u'.') && !(folderExists_ && names_.isEmpty());
    ui_->lblListState->setText(state);
    ui_->lblListState->setStyleSheet(
        QStringLiteral("color: %1;").arg((fault ? tokens().warningText : tokens().quiet).name()));
}

QString frmOpalSetup::selected() const {
    const QListWidgetItem* item = ui_->listFiles->currentItem();
    return item && item->isSelected() ? item->text() : QString();
}

void frmOpalSetup::browse() {
    const QString chosen =
        BrowseForFolder(QStringLiteral("Select the folder that contains the Opal Transport Lists"),
                        ui_->lblDirectory->text());
    if (!chosen.isEmpty())
        ui_->lblDirectory->setText(chosen);
}

void frmOpalSetup::add() {
    QString name;
    if (GoodInputBox(QStringLiteral("Enter the name that you want to call the new Opal Transport List:"),
                     QStringLiteral("Add Opal Transport List"), {}, 0, name, this))
        return;
    const SetupOutcome outcome = AddTransportList(setup_.directory, name);
    if (!outcome.stored())
        ShowExclamation(outcome.message);
    refresh();
    if (outcome.stored())
        select(name.trimmed());
}

void frmOpalSetup::remove() {
    const QString name = selected(); // it may go while the question stands
    if (platform::prompts().ask(DeletionQuestion(name)) != platform::Answer::Yes)
        return;
    const SetupOutcome outcome = DeleteTransportList(setup_.directory, name);
    if (!outcome.stored())
        ShowExclamation(outcome.message);
    else if (setup_.defaultList.compare(name, Qt::CaseInsensitive) == 0)
        setup_.defaultList.clear();
    refresh();
}

void frmOpalSetup::makeDefault() {
    setup_.defaultList = selected();
    showDefault();
}

void frmOpalSetup::ok() {
    binding_.take();
    const SetupOutcome outcome = StoreTransferSetup(setup_, shown_, store_);
    if (outcome.stored())
        return accept();
    showSetup(); // where another workstation stored something
    ShowFieldError(outcome.field.isEmpty() ? ui_->cmdOK : ControlNamed(this, outcome.field), outcome.message);
}

// Somebody who comes back from another program sees at once what became of the folder.
void frmOpalSetup::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        refresh();
}

bool frmOpalSetup::eventFilter(QObject* watched, QEvent* event) {
    if (watched == ui_->listFiles && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Delete) {
        ui_->cmdDelete->click();
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

} // namespace tolvex
