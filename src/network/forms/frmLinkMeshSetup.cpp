#include "network/forms/frmLinkMeshSetup.h"

#include "network/WorkstationSetup.h"
#include "network/forms/TerminalModel.h"
#include "platform/Clock.h"
#include "platform/Machine.h"
#include "platform/Prompts.h"
#include "ui/binding/FormChanges.h"
#include "ui/style/FitForm.h"
#include "ui/style/OpenForms.h"
#include "ui/style/Style.h"
#include "ui/style/TextBoxes.h"
#include "ui_frmLinkMeshSetup.h"

#include <QHeaderView>
#include <QKeyEvent>

namespace tolvex {

namespace {

using Column = TerminalModel::Column;

// Other workstations come and go, and stamp their records, while the form is open.
constexpr int refreshMilliseconds = 5000;

QString fittingName(const QString& text) {
    QString fitting;
    for (const QChar character : text)
        if (FitsTerminalName(character))
            fitting += character;
    return fitting;
}

bool isTyping(const QKeyEvent* key) {
    return !key->text().isEmpty() && key->text()[0].isPrint() && key->key() != Qt::Key_Space &&
           !(key->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
}

} // namespace

frmLinkMeshSetup::frmLinkMeshSetup(TerminalList& terminals, Settings& settings, QWidget* parent)
    : QDialog(parent)
    , terminals_(terminals)
    , settings_(settings)
    , ui_(std::make_unique<Ui::frmLinkMeshSetup>())
    , model_(new TerminalModel(this)) {
    ui_->setupUi(this);
    KeepFitted(this);
    EnterForm(this);
    RowTable* grid = ui_->grdTerminals;
    grid->setModel(model_);
    grid->setSelectionBehavior(QAbstractItemView::SelectItems);
    grid->setEmptyText(QStringLiteral("No workstations are set up for this station, or its system settings "
                                      "cannot be reached. Check the Data Location."));
    editor_ = std::make_unique<InCellEditor>(grid);
    txtName_ = editor_->addTextBox("txtName", "Tolvex ID Name");
    txtName_->setMaxLength(TerminalNameLength);
    RestrictTo(txtName_, fittingName, QStringLiteral("The file cannot hold this character."));
    // The text goes into the cell as it is typed: however the box is left, it stays.
    connect(txtName_, &QLineEdit::textChanged, this, [this] {
        if (edited_ > 0)
            model_->setName(edited_, txtName_->text());
    });
    connect(editor_.get(), &InCellEditor::committed, this, [this] { edited_ = 0; });
    connect(editor_.get(), &InCellEditor::dropped, this, [this] { edited_ = 0; });
    connect(grid, &QTableView::clicked, this, [this](const QModelIndex& cell) {
        if (cell.column() == Column::Marker)
            choose(cell.row() + 1);
        else if (cell.column() == Column::IdName)
            editName(cell.row() + 1);
    });
    grid->installEventFilter(this);
    connect(ui_->cmdOK, &QPushButton::clicked, this, &frmLinkMeshSetup::store);
    connect(ui_->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);

    OpenTerminalList(terminals_);
    model_->choose(settings_.LinkMeshId);
    refresh();
    grid->fitColumns(Column::IdName);
    if (model_->rowCount() > 0)
        grid->setCurrentIndex(
            model_->index(qBound(1, model_->chosenId(), model_->rowCount()) - 1, Column::IdName));
    connect(&refresh_, &QTimer::timeout, this, &frmLinkMeshSetup::refresh);
    refresh_.start(refreshMilliseconds);
    platform::prompts().setPointer(platform::Pointer::Default);
}

frmLinkMeshSetup::~frmLinkMeshSetup() {
    ui_->grdTerminals->removeEventFilter(this);
    editor_.reset();
}

void frmLinkMeshSetup::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!std::exchange(shown_, true))
        ui_->grdTerminals->setFocus();
}

void frmLinkMeshSetup::refresh() {
    const std::optional<QList<TerminalRecord>> records = ReadTerminalsAnew(terminals_);
    readable_ = records.has_value();
    // What cannot be read now stays as it was shown; before that there are blank rows.
    if (records || model_->rowCount() == 0)
        model_->show(TerminalRows(records ? *records : ReadTerminals(terminals_), platform::ComputerName(),
                                  platform::clock().now()));
    showNotice();
}

void frmLinkMeshSetup::choose(int id) {
    model_->choose(id);
    showNotice();
}

void frmLinkMeshSetup::showNotice() {
    const TerminalRow chosen = model_->terminal(model_->chosenId());
    QString notice = TakeoverNotice(chosen);
    if (!readable_ && model_->rowCount() > 0)
        notice = QStringLiteral("%1 cannot be read now. The rows show what was last read from it.")
                     .arg(TerminalListPath(terminals_));
    QColor colour = tokens().warningText;
    if (notice.isEmpty()) {
        colour = tokens().quiet;
        notice = chosen.id == 0 ? QStringLiteral("Click in the \"?\" column to choose the number of this "
                                                 "workstation, and on a name to change it.")
                                : QStringLiteral("This workstation uses number %1.").arg(chosen.id);
    }
    ui_->lblNotice->setText(notice);
    ui_->lblNotice->setStyleSheet(QStringLiteral("color: %1;").arg(colour.name()));
}

void frmLinkMeshSetup::editName(int id, const QKeyEvent* key) {
    editor_->commit();
    const QModelIndex cell = model_->index(id - 1, Column::IdName);
    ui_->grdTerminals->setCurrentIndex(cell);
    ui_->grdTerminals->scrollTo(cell);
    const QString name = model_->name(id);
    // While the box is filled its changes are no changes of the name; what a key types is one.
    editor_->openText(txtName_, cell, name, name.size());
    edited_ = id;
    if (key)
        txtName_->setText(key->text());
}

bool frmLinkMeshSetup::eventFilter(QObject* watched, QEvent* event) {
    if (watched != ui_->grdTerminals || event->type() != QEvent::KeyPress)
        return QDialog::eventFilter(watched, event);
    const auto* key = static_cast<QKeyEvent*>(event);
    const QModelIndex cell = ui_->grdTerminals->currentIndex();
    if (!cell.isValid())
        return false;
    if (key->key() == Qt::Key_Space) {
        choose(cell.row() + 1);
        return true;
    }
    if (key->key() == Qt::Key_F2 || isTyping(key)) {
        editName(cell.row() + 1, isTyping(key) ? key : nullptr);
        return true;
    }
    return false;
}

void frmLinkMeshSetup::store() {
    editor_->commit();
    const int id = model_->chosenId();
    const WorkstationResult result =
        StoreWorkstations({id, model_->typedNames(), model_->terminal(id).networkName},
                          platform::ComputerName(), terminals_, settings_);
    if (result.outcome == WorkstationResult::Outcome::Stored)
        return accept();
    platform::prompts().ask({result.message, platform::Icon::Exclamation, platform::Buttons::Ok});
    refresh();
}

void frmLinkMeshSetup::reject() {
    editor_->commit();
    bool changed = false;
    for (auto name = model_->typedNames().begin(); name != model_->typedNames().end(); ++name)
        changed = changed || name.value().trimmed() != model_->terminal(name.key()).idName;
    if (!changed || AskToLoseChanges(QStringLiteral("The names that you typed have not been stored.")))
        QDialog::reject();
}

} // namespace tolvex
