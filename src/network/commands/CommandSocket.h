// One connection that a command sends over, TCP or UDP. It works on the event loop; what happens comes as
// calls, inside which the socket may be closed or opened again but not destroyed.
#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <memory>

class QAbstractSocket;

namespace tolvex {

// A fault with the number that the suite's socket control has for it (10061: refused), and words.
struct SocketFault {
    int number = 0;
    QString text;
    explicit operator bool() const { return number != 0; }
};
// By the error that a socket reports (QAbstractSocket::SocketError).
SocketFault SocketFaultOf(int socketError, const QString& description);

class CommandSocket {
public:
    CommandSocket();
    ~CommandSocket();
    CommandSocket(const CommandSocket&) = delete;
    CommandSocket& operator=(const CommandSocket&) = delete;

    std::function<void()> onConnected;
    std::function<void()> onSent; // everything written so far has gone to the system
    std::function<void(const QByteArray&)> onReceived;
    std::function<void()> onClosed;                   // by the peer, or after finish
    std::function<void(const SocketFault&)> onFailed; // the socket is closed

    // Begins to connect; one that is open is closed first. A fault where it fails at once: no address, no
    // such port.
    SocketFault open(const QString& address, int port, bool udp);
    bool isClosed() const;
    bool isConnected() const;
    // Only while connected. A UDP text goes out as one datagram.
    SocketFault write(const QByteArray& bytes);
    // Closes once everything has gone; at once where nothing waits.
    void finish();
    // Closes now; what waits is lost.
    void abort();

private:
    void connectSignals();
    void checkSent();

    std::unique_ptr<QAbstractSocket> socket_;
};

} // namespace tolvex
