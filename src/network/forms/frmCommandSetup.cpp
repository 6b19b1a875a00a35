#include "network/forms/frmCommandSetup.h"

#include "network/forms/CommandModel.h"
#include "network/forms/frmCommandDetails.h"
#include "platform/Clock.h"
#include "platform/Prompts.h"
#include "ui/style/FitForm.h"
#include "ui/style/OpenForms.h"
#include "ui/style/Style.h"
#include "ui_frmCommandSetup.h"

#include <QKeyEvent>

namespace tolvex {

frmCommandSetup::frmCommandSetup(const LinkMeshServerSetup& setup, CommandUseSource uses, QWidget* parent)
    : QDialog(parent)
    , ui_(std::make_unique<Ui::frmCommandSetup>())
    , folder_(setup.dataLocation)
    , uses_(std::move(uses))
    , model_(new CommandModel(this))
    , server_(std::make_unique<frmLinkMeshServer>(setup)) {
    ui_->setupUi(this);
    KeepFitted(this);
    EnterForm(this);
    RowTable* grid = ui_->grdCommands;
    grid->setModel(model_);
    grid->setEmptyText(
        QStringLiteral("There are no commands yet. \"Add a new Command\" makes one: bytes for a "
                       "serial port or a network address, or a program to start."));
    grid->installEventFilter(this);
    connect(grid, &QTableView::doubleClicked, this, &frmCommandSetup::editSelected);
    connect(grid->selectionModel(), &QItemSelectionModel::currentRowChanged, this, &frmCommandSetup::showRow);
    connect(ui_->cmdAddCommand, &QPushButton::clicked, this, [this] { edit({}); });
    connect(ui_->cmdEdit, &QPushButton::clicked, this, &frmCommandSetup::editSelected);
    connect(ui_->cmdRunNow, &QPushButton::clicked, this, &frmCommandSetup::runSelected);
    connect(ui_->cmdServer, &QPushButton::clicked, this, [this] { server_->restore(); });
    connect(ui_->cmdClose, &QPushButton::clicked, this, &QDialog::accept);
    server_->onEvent = [this](const ServerEvent& event) { showOutcome(event); };
    fill();
    grid->fitColumns(CommandModel::Name);
    platform::prompts().setPointer(platform::Pointer::Default);
}

frmCommandSetup::~frmCommandSetup() {
    ui_->grdCommands->removeEventFilter(this);
}

void frmCommandSetup::fill(const QString& selected) {
    model_->show(folder_.list());
    const int row = model_->rowOf(selected);
    if (model_->rowCount() > 0)
        ui_->grdCommands->selectRow(qMax(row, 0));
    ui_->grdCommands->fitColumns(CommandModel::Name);
    showRow();
}

void frmCommandSetup::showRow() {
    const bool any = model_->rowCount() > 0;
    for (QPushButton* button : {ui_->cmdRunNow, ui_->cmdEdit}) {
        button->setEnabled(any);
        button->setToolTip(any ? QString() : QStringLiteral("There is no command in the list."));
    }
}

void frmCommandSetup::edit(const QString& name) {
    frmCommandDetails editor(folder_, name, uses_, this);
    FitForm(&editor);
    editor.exec();
    if (editor.needsRefresh())
        fill(editor.commandName());
    ui_->grdCommands->setFocus();
}

void frmCommandSetup::editSelected() {
    const int row = ui_->grdCommands->row();
    if (row >= 0)
        edit(model_->command(row).name);
}

void frmCommandSetup::runSelected() {
    const int row = ui_->grdCommands->row();
    if (row < 0)
        return;
    ui_->lblOutcome->clear();
    sent_ = model_->command(row).name;
    server_->server().PerformCommand(sent_, false);
}

void frmCommandSetup::showOutcome(const ServerEvent& event) {
    if (sent_.isEmpty() || event.sender != sent_)
        return;
    const bool isFault = event.kind == ServerEvent::Kind::Error;
    ui_->lblOutcome->setText(platform::clock().now().toString(QStringLiteral("HH:mm:ss  ")) +
                             event.sentence());
    ui_->lblOutcome->setStyleSheet(
        QStringLiteral("color: %1;").arg((isFault ? tokens().error : tokens().quiet).name()));
}

bool frmCommandSetup::eventFilter(QObject* watched, QEvent* event) {
    if (watched == ui_->grdCommands && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_F2) {
            editSelected();
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

} // namespace tolvex
