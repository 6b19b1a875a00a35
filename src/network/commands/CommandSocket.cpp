#include "network/commands/CommandSocket.h"

#include <QTcpSocket>
#include <QUdpSocket>

namespace tolvex {

namespace {

constexpr int highestPort = 65535;

struct FaultRow {
    QAbstractSocket::SocketError error;
    int number;
    const char* text;
};
// The numbers are those of the platform's sockets.
constexpr FaultRow faults[] = {
    {QAbstractSocket::ConnectionRefusedError, 10061, "Connection refused"},
    {QAbstractSocket::RemoteHostClosedError, 10054, "The connection was closed by the other end"},
    {QAbstractSocket::HostNotFoundError, 11001, "Host not found"},
    {QAbstractSocket::SocketAccessError, 10013, "Permission denied"},
    {QAbstractSocket::SocketResourceError, 10055, "No more connections are available"},
    {QAbstractSocket::SocketTimeoutError, 10060, "The connection timed out"},
    {QAbstractSocket::DatagramTooLargeError, 10040, "The text is too long for one datagram"},
    {QAbstractSocket::NetworkError, 10051, "The network cannot be reached"},
    {QAbstractSocket::AddressInUseError, 10048, "The address is in use"},
    {QAbstractSocket::SocketAddressNotAvailableError, 10049, "The address is not available"},
    {QAbstractSocket::UnsupportedSocketOperationError, 10045, "The operation is not supported"},
    {QAbstractSocket::TemporaryError, 10035, "The operation would block"},
};
constexpr int otherFault = 10022;

} // namespace

SocketFault SocketFaultOf(int socketError, const QString& description) {
    for (const FaultRow& row : faults)
        if (row.error == socketError)
            return {row.number, QLatin1String(row.text)};
    return {otherFault, description};
}

CommandSocket::CommandSocket() = default;

CommandSocket::~CommandSocket() {
    abort();
}

SocketFault CommandSocket::open(const QString& address, int port, bool udp) {
    abort();
    if (address.isEmpty() || port < 1 || port > highestPort)
        return {10049,
                QStringLiteral("\"%1\" port %2 is not an address to connect to").arg(address).arg(port)};
    // A socket is used once, so that a late signal of its last use reaches nobody.
    if (udp)
        socket_ = std::make_unique<QUdpSocket>();
    else
        socket_ = std::make_unique<QTcpSocket>();
    connectSignals();
    socket_->connectToHost(address, static_cast<quint16>(port));
    return {};
}

void CommandSocket::connectSignals() {
    QAbstractSocket* socket = socket_.get();
    QObject::connect(socket, &QAbstractSocket::connected, socket, [this] {
        if (onConnected)
            onConnected();
    });
    QObject::connect(socket, &QAbstractSocket::bytesWritten, socket, [this] { checkSent(); });
    QObject::connect(socket, &QAbstractSocket::readyRead, socket, [this, socket] {
        const QByteArray bytes = socket->readAll();
        if (!bytes.isEmpty() && onReceived)
            onReceived(bytes);
    });
    QObject::connect(socket, &QAbstractSocket::disconnected, socket, [this] {
        if (onClosed)
            onClosed();
    });
    QObject::connect(socket, &QAbstractSocket::errorOccurred, socket,
                     [this, socket](QAbstractSocket::SocketError error) {
                         if (error == QAbstractSocket::RemoteHostClosedError)
                             return; // `disconnected` follows
                         const SocketFault fault = SocketFaultOf(error, socket->errorString());
                         abort();
                         if (onFailed)
                             onFailed(fault);
                     });
}

bool CommandSocket::isClosed() const {
    return !socket_ || socket_->state() == QAbstractSocket::UnconnectedState;
}

bool CommandSocket::isConnected() const {
    return socket_ && socket_->state() == QAbstractSocket::ConnectedState;
}

SocketFault CommandSocket::write(const QByteArray& given) {
    const QByteArray bytes = given; // onSent may run before the end and change what was given
    if (!isConnected())
        return {10057, QStringLiteral("The socket is not connected")};
    if (bytes.isEmpty())
        return {};
    if (socket_->write(bytes) == bytes.size())
        return {};
    return socket_->socketType() == QAbstractSocket::UdpSocket
               ? SocketFaultOf(QAbstractSocket::DatagramTooLargeError, {})
               : SocketFaultOf(socket_->error(), socket_->errorString());
}

void CommandSocket::checkSent() {
    if (socket_->bytesToWrite() == 0 && onSent)
        onSent();
}

void CommandSocket::finish() {
    if (!isClosed())
        socket_->disconnectFromHost();
}

void CommandSocket::abort() {
    if (!socket_)
        return;
    // Inside one of its own signals a socket cannot be destroyed.
    QAbstractSocket* old = socket_.release();
    old->disconnect();
    old->abort();
    old->deleteLater();
}

} // namespace tolvex
