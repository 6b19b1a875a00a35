// The remote control socket: a listener on TCP port 6950 that serves one peer at a time. It is safe to leave
// running among hostile peers: what a peer can make it keep is bounded, a peer that goes too far is closed,
// and it listens again by itself after a failure.
#pragma once

#include "network/server/RemoteAccess.h"
#include "network/server/ServerEvent.h"

#include <QHostAddress>
#include <QTcpServer>

#include <memory>

class QTcpSocket;

namespace tolvex {

inline constexpr quint16 RemoteControlPort = 6950;

struct RemoteControlSetup {
    QHostAddress address = QHostAddress::Any; // both kinds of addresses
    quint16 port = RemoteControlPort;         // 0: any that is free
    // Asked for each connection, so that a change counts at once.
    std::function<RemoteAccess()> access = ReadRemoteAccess;
};

class RemoteControl {
public:
    // A peer that does not read is closed when more bytes than this wait for it.
    static constexpr qint64 LongestBacklog = 1 << 20;

    explicit RemoteControl(RemoteControlSetup setup, ServerEvents events = {});
    ~RemoteControl();
    RemoteControl(const RemoteControl&) = delete;
    RemoteControl& operator=(const RemoteControl&) = delete;

    // Hooks for a build with a player; empty here. The reply is sent all the same.
    std::function<void(qint32 cart)> playCart;
    std::function<void()> automationGo;
    std::function<void()> onStatus; // the status text changed

    // Starts to listen. A port that is taken is tried again every five seconds.
    void listen();
    void close();

    bool isListening() const { return server_.isListening(); }
    quint16 port() const { return server_.serverPort(); }
    // Why it does not listen and which program has the port, or the last fault of a peer; otherwise empty.
    const QString& listenError() const { return listenError_; }
    // " Winsock Control listening", " Winsock Control Error: ...", or who is connected.
    QString status() const;
    bool isConnected() const { return peer_ != nullptr; }

    // SendWinSockMessage: a line to the peer, with date and time in front. Dropped while nobody is connected.
    void send(const QString& text);

private:
    struct Release {
        void operator()(QTcpSocket* socket) const;
    };

    void acceptAll();
    void accept(QTcpSocket* socket);
    void receive();
    void warnOnce(bool& warned, const QString& what);
    void perform(const RemoteCommand& command);
    void dropPeer(const QString& why);
    void listenAgain();
    void listenLater();
    void failed(const QString& what);
    void lookUpName();
    void tell(ServerEvent event);
    void statusChanged();

    RemoteControlSetup setup_;
    ServerEvents events_;
    QTcpServer server_;
    bool wanted_ = false;   // between listen and close
    bool retrying_ = false; // another attempt is due
    std::unique_ptr<QTcpSocket, Release> peer_;
    RemoteCommands commands_;
    QString listenError_;
    QString address_;        // of the peer
    QString name_;           // of its host; the address until the name is known
    bool lookingUp_ = false; // a look-up of a name is under way
    // What this peer was warned of already.
    bool losesBytes_ = false;    // an arrival is longer than what is read of it
    bool losesCommands_ = false; // no room is left for the commands that wait
};

} // namespace tolvex
