#include "network/forms/frmLinkMeshServer.h"

#include "network/forms/EventModel.h"
#include "platform/Prompts.h"
#include "ui/style/FitForm.h"
#include "ui/style/Style.h"
#include "ui_frmLinkMeshServer.h"

#include <QAction>
#include <QClipboard>
#include <QCloseEvent>
#include <QScrollBar>
#include <QTimer>

namespace tolvex {

namespace {

constexpr int iconSize = 24; // pixels

QString timeOf(const QDateTime& time) {
    return time.toString(QStringLiteral("HH:mm:ss"));
}

// What the clock does, in words.
QString describe(const RadioClock& clock) {
    const RadioClock::Counts& counts = clock.counts();
    if (counts.requests == 0)
        return QStringLiteral("The receiver has not been asked yet.");
    if (!clock.lastTimeCame().isValid())
        return QStringLiteral("No answer yet; asked %1 times.").arg(counts.requests);
    const QString moved =
        clock.difference()
            ? QStringLiteral(" It moved the clock by %1 s.").arg(*clock.difference(), 0, 'f', 1)
            : QString();
    return QStringLiteral("Last answer at %1: %2.%3 Good %4, unusable %5, other %6.")
        .arg(timeOf(clock.lastTimeCame()), clock.lastTime().text(), moved)
        .arg(counts.good)
        .arg(counts.unusable)
        .arg(counts.dropped);
}

} // namespace

frmLinkMeshServer::frmLinkMeshServer(LinkMeshServerSetup setup, bool hasTray)
    : ui_(std::make_unique<Ui::frmLinkMeshServer>())
    , events_(new EventModel(this))
    , hasTray_(hasTray)
    , server_(std::move(setup), [this](const ServerEvent& event) { takeEvent(event); }) {
    ui_->setupUi(this);
    KeepFitted(this);
    setWindowFlag(Qt::WindowMinimizeButtonHint, true);
    setWindowIcon(LineIcon(QStringLiteral("network")));
    ui_->imgClock->setPixmap(LineIcon(QStringLiteral("clock")).pixmap(iconSize));
    ui_->Image1->setPixmap(LineIcon(QStringLiteral("network")).pixmap(iconSize));
    ui_->picLowBattery->setPixmap(LineIcon(QStringLiteral("exclamation"), &Tokens::warning).pixmap(iconSize));
    ui_->lblLowBattery->setText(QStringLiteral(
        "The batteries in your radio clock are running low - you should change them as soon as possible."));
    ui_->lstEvents->setModel(events_);
    ui_->lstEvents->setEmptyText(
        QStringLiteral("Connections, commands and the clock's answers appear here."));
    connect(ui_->cmdTestClock, &QPushButton::clicked, this, [this] { server_.clock().pressButton(); });
    connect(ui_->cmdAccess, &QPushButton::clicked, this, &frmLinkMeshServer::changeAccess);
    connect(ui_->cmdCopy, &QPushButton::clicked, this,
            [this] { QApplication::clipboard()->setText(events_->text()); });
    connect(ui_->cmdMinimise, &QPushButton::clicked, this, &frmLinkMeshServer::minimise);

    const QString unset = server_.network().description();
    ui_->lblNetworkControlDesc->setText(unset.isEmpty() ? QStringLiteral("Network control client installed.")
                                                        : unset);
    server_.remote().onStatus = [this] { showStatus(); };
    server_.clock().onChanged = [this] { showClock(); };
    addTrayIcon();
    minimise();
    server_.start();
    showStatus();
    showClock();
    showAccess();
    ui_->lstEvents->fitColumns(EventModel::Event);
}

frmLinkMeshServer::~frmLinkMeshServer() {
    server_.remote().onStatus = nullptr;
    server_.clock().onChanged = nullptr;
    onEvent = nullptr;
    server_.close();
}

void frmLinkMeshServer::addTrayIcon() {
    mPopupSys_.setObjectName(QStringLiteral("mPopupSys"));
    QAction* restoring = mPopupSys_.addAction(QStringLiteral("&Restore"));
    restoring->setObjectName(QStringLiteral("mPopRestore"));
    connect(restoring, &QAction::triggered, this, &frmLinkMeshServer::restore);
    tray_.setIcon(LineIcon(QStringLiteral("network")));
    tray_.setToolTip(QStringLiteral("Norvane LinkMesh Server"));
    tray_.setContextMenu(&mPopupSys_);
    connect(&tray_, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
        if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick)
            restore();
    });
    if (hasTray_)
        tray_.show();
}

void frmLinkMeshServer::restore() {
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

void frmLinkMeshServer::minimise() {
    server_.clock().endTest();
    if (hasTray_)
        hide();
    else if (!isMinimized() || !isVisible())
        showMinimized();
}

void frmLinkMeshServer::closeEvent(QCloseEvent* event) {
    event->ignore();
    minimise();
}

void frmLinkMeshServer::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    // Hiding a window while it is being minimised would be undone.
    if (event->type() == QEvent::WindowStateChange && isMinimized() && isVisible())
        QTimer::singleShot(0, this, &frmLinkMeshServer::minimise);
}

void frmLinkMeshServer::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    showStatus();
    showAccess();
    ui_->lstEvents->scrollToBottom();
}

void frmLinkMeshServer::takeEvent(const ServerEvent& event) {
    const QScrollBar* bar = ui_->lstEvents->verticalScrollBar();
    const bool follows = bar->value() == bar->maximum();
    events_->add(event.sentence(), event.kind == ServerEvent::Kind::Error);
    if (follows)
        ui_->lstEvents->scrollToBottom();
    // Each answer of a receiver whose battery is low brings the form forward.
    if (event.kind == ServerEvent::Kind::Clock && event.line.lowBattery)
        restore();
    if (onEvent)
        onEvent(event);
}

void frmLinkMeshServer::showStatus() {
    const RemoteControl& remote = server_.remote();
    ui_->lblRemoteControlStatus->setText(remote.status());
    const QColor colour = remote.listenError().isEmpty() ? tokens().text : tokens().error;
    ui_->lblRemoteControlStatus->setStyleSheet(QStringLiteral("color: %1;").arg(colour.name()));
}

void frmLinkMeshServer::showClock() {
    const RadioClock& clock = server_.clock();
    ui_->lblRadioClockStatus->setText(clock.status());
    ui_->lblClockState->setText(describe(clock));
    ui_->lblClockState->setVisible(clock.buttonEnabled());
    showButton();
    ui_->pnlStrength->setVisible(clock.buttonEnabled());
    if (clock.testing())
        ui_->pnlStrength->show(clock.strength());
    else
        ui_->pnlStrength->clear();
    ui_->picLowBattery->setVisible(clock.lowBattery());
    ui_->lblLowBattery->setVisible(clock.lowBattery());
}

void frmLinkMeshServer::showButton() {
    const RadioClock& clock = server_.clock();
    ui_->cmdTestClock->setText(u'&' + clock.buttonCaption());
    ui_->cmdTestClock->setEnabled(clock.buttonEnabled());
    ui_->cmdTestClock->setToolTip(
        clock.buttonEnabled()
            ? QString()
            : QStringLiteral("No radio clock is fitted. Date/Time Setup says on which port it is."));
    ui_->cmdTestClock->setStyleSheet(
        clock.testing() ? QStringLiteral("QPushButton { background: #00ff00; color: #000000; }") : QString());
}

void frmLinkMeshServer::showAccess() {
    ui_->lblAccess->setText(ReadRemoteAccess().text());
}

void frmLinkMeshServer::changeAccess() {
    const RemoteAccess now = ReadRemoteAccess();
    const QString words = now.who == RemoteAccess::Who::Everyone ? QStringLiteral("all") : now.text();
    const std::optional<QString> typed = platform::prompts().askText(
        QStringLiteral(
            "Who may connect to the remote control?\n\n\"all\", \"this computer\", or addresses and "
            "networks with commas between, such as 192.168.1.0/24"),
        windowTitle(), words);
    if (!typed)
        return;
    QStringList list = typed->split(u',', Qt::SkipEmptyParts);
    for (QString& word : list)
        word = word.trimmed();
    QString why;
    const std::optional<RemoteAccess> wanted = ParseRemoteAccess(list, &why);
    if (wanted && WriteRemoteAccess(*wanted) != 0)
        why = QStringLiteral("The setting could not be written.");
    if (!why.isEmpty())
        platform::prompts().ask({why, platform::Icon::Exclamation, platform::Buttons::Ok});
    showAccess();
}

} // namespace tolvex
