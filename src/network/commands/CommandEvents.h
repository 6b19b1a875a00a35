// What happens while commands are sent, for whoever shows or logs it.
#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

namespace tolvex {

struct CommandEvent {
    enum class Kind {
        Connecting, // to a network peer
        Open,       // the port or connection is open
        Sent,       // all bytes have left
        Answer,     // bytes came back
        Started,    // a program
        Closed,
        Failed
    };
    Kind kind = Kind::Failed;
    QString command;  // its name
    QString peer;     // "COM2", "host:port", or the program
    QByteArray bytes; // of Sent and Answer
    QString text;     // of Failed, a sentence
};
using CommandEvents = std::function<void(const CommandEvent&)>;

} // namespace tolvex
