// Decoder of the remote control protocol: bytes in, commands out, no socket. A command is text that ends in a
// carriage return:
//
//     1234 CR     play that cart
//     kgo CR      the automation's go, in any case
//
// Any other command is ignored.
#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <optional>

namespace tolvex {

struct RemoteCommand {
    enum class Effect { Cart, Go, Ignored };
    QString text; // as sent, without its carriage return
    Effect effect = Effect::Ignored;
    qint32 cart = 0;

    // The text of the reply; empty if there is none.
    QString reply() const;
};

// The receive buffer. An arrival gives at most one command; a second one waits for the next arrival.
class RemoteCommands {
public:
    // Characters of an arrival that are read; the rest of it is lost.
    static constexpr qsizetype LongestArrival = 200;
    // Bytes without a carriage return, and bytes of commands that wait for their turn.
    static constexpr qsizetype LongestBuffer = 64 * 1024;

    std::optional<RemoteCommand> take(const QByteArray& arrival);
    // True when more bytes than LongestBuffer came without a carriage return.
    bool isEndless() const { return sinceReturn_ > LongestBuffer; }
    // True once a command found no room behind those that wait. It is dropped whole.
    bool hasLost() const { return hasLost_; }
    void clear() { *this = {}; }

private:
    void keep(QByteArray bytes);

    QByteArray buffer_;         // without line feeds
    qsizetype sinceReturn_ = 0; // bytes since the last carriage return, kept or not
    bool skipping_ = false;     // the rest of a command that found no room is dropped
    bool hasLost_ = false;
};

// A line to the peer: short date, time, text, carriage return and line feed.
QByteArray RemoteReplyLine(const QDateTime& time, const QString& text);

} // namespace tolvex
