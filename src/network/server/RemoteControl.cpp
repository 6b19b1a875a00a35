#include "network/server/RemoteControl.h"

#include "core/report/DebugLog.h"
#include "platform/Clock.h"
#include "platform/process/Holders.h"

#include <QHostInfo>
#include <QPointer>
#include <QTcpSocket>

namespace tolvex {

namespace {

constexpr int retryMilliseconds = 5000;
// Connections that wait to be accepted. When there are more, the system makes each wait a second.
constexpr int Backlog = 1024;

// As people write it: an IPv4 peer of a socket for both kinds comes in the longer form.
QString addressText(const QHostAddress& address) {
    bool isIPv4 = false;
    const quint32 short4 = address.toIPv4Address(&isIPv4);
    return isIPv4 ? QHostAddress(short4).toString() : address.toString();
}

} // namespace

// A socket cannot be destroyed inside one of its own signals. What it still reports is ignored.
void RemoteControl::Release::operator()(QTcpSocket* socket) const {
    socket->disconnect();
    socket->abort();
    socket->deleteLater();
}

RemoteControl::RemoteControl(RemoteControlSetup setup, ServerEvents events)
    : setup_(std::move(setup))
    , events_(std::move(events)) {
    QObject::connect(&server_, &QTcpServer::newConnection, &server_, [this] { acceptAll(); });
    // The listener stops by itself when it cannot accept, for want of file numbers for example.
    QObject::connect(&server_, &QTcpServer::acceptError, &server_, [this] {
        failed(server_.errorString());
        server_.close();
        listenLater();
    });
}

RemoteControl::~RemoteControl() {
    events_ = {};
    onStatus = {};
    close();
}

void RemoteControl::tell(ServerEvent event) {
    if (event.peer.isEmpty())
        event.peer = address_;
    if (events_)
        events_(event);
}

void RemoteControl::statusChanged() {
    if (onStatus)
        onStatus();
}

// ---- Listening

void RemoteControl::listen() {
    wanted_ = true;
    server_.setListenBacklogSize(Backlog);
    listenAgain();
    statusChanged();
}

void RemoteControl::listenAgain() {
    if (server_.isListening())
        return;
    if (server_.listen(setup_.address, setup_.port)) {
        listenError_.clear();
        ServerEvent event(ServerEvent::Kind::Listening);
        event.port = server_.serverPort();
        tell(event);
    } else {
        const auto holder = platform::HolderOfTcpPort(setup_.port);
        const QString error = server_.errorString() +
                              (holder ? QStringLiteral("; it is in use by ") + holder->text() : QString());
        if (error != listenError_)
            failed(error);
        listenLater();
    }
    if (!peer_)
        statusChanged();
}

void RemoteControl::listenLater() {
    if (std::exchange(retrying_, true))
        return;
    platform::clock().after(retryMilliseconds, &server_, [this] {
        retrying_ = false;
        if (wanted_)
            listenAgain();
    });
}

// Keeps an error for the status and reports it.
void RemoteControl::failed(const QString& what) {
    listenError_ = what;
    DebugLog(QStringLiteral("REMOTECONTROL: ") + what);
    tell(ServerEvent(ServerEvent::Kind::Error, what));
}

void RemoteControl::close() {
    wanted_ = false;
    server_.close();
    dropPeer({});
}

QString RemoteControl::status() const {
    if (peer_)
        return QStringLiteral("%1 (%2) connected to Winsock port").arg(name_, address_);
    return listenError_.isEmpty() ? QStringLiteral(" Winsock Control listening")
                                  : QStringLiteral(" Winsock Control Error: ") + listenError_;
}

// ---- The peer

void RemoteControl::acceptAll() {
    while (QTcpSocket* socket = server_.nextPendingConnection())
        accept(socket);
}

// A second connection closes the first one.
void RemoteControl::accept(QTcpSocket* socket) {
    std::unique_ptr<QTcpSocket, Release> next(socket);
    const QString address = addressText(socket->peerAddress());
    if (setup_.access && !setup_.access().allows(socket->peerAddress())) {
        ServerEvent event(ServerEvent::Kind::Error);
        event.peer = address;
        event.text = QStringLiteral("may not connect");
        DebugLog(QStringLiteral("REMOTECONTROL: %1 may not connect").arg(address));
        return tell(event);
    }
    dropPeer(QStringLiteral("another one connected"));
    peer_ = std::move(next);
    address_ = name_ = address;
    losesBytes_ = losesCommands_ = false;
    listenError_.clear();
    socket->setReadBufferSize(RemoteCommands::LongestBuffer);
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    socket->setSocketOption(QAbstractSocket::KeepAliveOption, 1);
    QObject::connect(socket, &QTcpSocket::readyRead, socket, [this] { receive(); });
    QObject::connect(socket, &QTcpSocket::disconnected, socket, [this] { dropPeer({}); });
    QObject::connect(socket, &QTcpSocket::errorOccurred, socket,
                     [this, socket](QAbstractSocket::SocketError error) {
                         if (error == QAbstractSocket::RemoteHostClosedError)
                             return; // `disconnected` follows
                         const QString what = socket->errorString();
                         dropPeer(what);
                         failed(what);
                         statusChanged();
                     });
    tell(ServerEvent(ServerEvent::Kind::Connected));
    send(QStringLiteral("Connected"));
    statusChanged();
    lookUpName();
    if (peer_.get() == socket && socket->bytesAvailable() > 0)
        receive();
}

void RemoteControl::lookUpName() {
    if (!peer_ || std::exchange(lookingUp_, true))
        return;
    // Qt 6.4 leaks the function of a look-up that is aborted or whose receiver goes first: the receiver
    // stays, and a look-up that nobody waits for any more runs to its end before the next one begins.
    static auto* const receiver = new QObject;
    QHostInfo::lookupHost(address_, receiver,
                          [this, server = QPointer(&server_), address = address_](const QHostInfo& host) {
                              if (!server)
                                  return;
                              lookingUp_ = false;
                              if (address != address_)
                                  return lookUpName();
                              if (!host.hostName().isEmpty())
                                  name_ = host.hostName();
                              statusChanged();
                          });
}

// Drops the peer, and with it what it sent and nobody performed.
void RemoteControl::dropPeer(const QString& why) {
    if (!peer_)
        return;
    peer_.reset();
    commands_.clear();
    tell(ServerEvent(ServerEvent::Kind::Closed, why));
    address_.clear();
    name_.clear();
    statusChanged();
}

void RemoteControl::receive() {
    const QByteArray arrival = peer_->readAll();
    const std::optional<RemoteCommand> command = commands_.take(arrival);
    if (arrival.size() > RemoteCommands::LongestArrival)
        warnOnce(losesBytes_, QStringLiteral("sends more than %1 characters at once; the rest is lost")
                                  .arg(RemoteCommands::LongestArrival));
    if (commands_.hasLost())
        warnOnce(losesCommands_, QStringLiteral("sends several commands at once too often; %1 kB of them "
                                                "wait, and some are lost")
                                     .arg(RemoteCommands::LongestBuffer / 1024));
    if (commands_.isEndless()) {
        const QString why = QStringLiteral("it sent %1 kB without a carriage return")
                                .arg(RemoteCommands::LongestBuffer / 1024);
        DebugLog(QStringLiteral("REMOTECONTROL: %1 closed: %2").arg(address_, why));
        return dropPeer(why);
    }
    if (command)
        perform(*command);
}

void RemoteControl::warnOnce(bool& warned, const QString& what) {
    if (!std::exchange(warned, true))
        tell(ServerEvent(ServerEvent::Kind::Error, what));
}

void RemoteControl::perform(const RemoteCommand& command) {
    ServerEvent event(ServerEvent::Kind::Command);
    event.command = command;
    tell(event);
    if (command.effect == RemoteCommand::Effect::Cart && playCart)
        playCart(command.cart);
    if (command.effect == RemoteCommand::Effect::Go && automationGo)
        automationGo();
    if (const QString reply = command.reply(); !reply.isEmpty())
        send(reply);
}

void RemoteControl::send(const QString& text) {
    if (!peer_ || peer_->state() != QAbstractSocket::ConnectedState)
        return;
    peer_->write(RemoteReplyLine(platform::clock().now(), text));
    if (peer_->bytesToWrite() > LongestBacklog) {
        const QString why = QStringLiteral("it does not read what is sent to it");
        DebugLog(QStringLiteral("REMOTECONTROL: %1 closed: %2").arg(address_, why));
        return dropPeer(why);
    }
    tell(ServerEvent(ServerEvent::Kind::Reply, text));
}

} // namespace tolvex
