// An event of the server, for whoever shows or logs it.
#pragma once

#include "network/clock/ClockLines.h"
#include "network/server/RemoteCommands.h"

#include <functional>

namespace tolvex {

struct ServerEvent {
    enum class Kind {
        Listening, // on `port`
        Connected, // `peer`
        Closed,    // `peer`; `text` says why if the server closed it
        Command,   // `peer` sent `command`
        Reply,     // `text` went to `peer`
        Clock,     // `line` came from the radio clock
        Network,   // the network master: `text` is the name of the event
        Sent,      // a command of the station: `text` says which, and where it went
        Error      // `text`, a sentence; `peer` or `sender` if it is about one
    };
    explicit ServerEvent(Kind what, const QString& words = {})
        : kind(what)
        , text(words) {}

    Kind kind;
    QString peer;
    QString sender; // name of the station's command that it is about
    QString text;
    int port = 0;
    RemoteCommand command;
    ClockLine line;
    qint32 value1 = 0; // of Network, as the client gave them
    qint32 value2 = 0;
    QString message;

    // The event as a line for people, without the time.
    QString sentence() const;
};
// "listening", "command", ...: a kind's name in records.
const char* ServerEventWord(ServerEvent::Kind kind);
using ServerEvents = std::function<void(const ServerEvent&)>;

} // namespace tolvex
