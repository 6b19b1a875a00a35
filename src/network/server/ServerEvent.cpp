#include "network/server/ServerEvent.h"

namespace tolvex {

namespace {

QString effectOf(const RemoteCommand& command) {
    switch (command.effect) {
    case RemoteCommand::Effect::Cart:
        return QStringLiteral("plays cart %1").arg(command.cart);
    case RemoteCommand::Effect::Go:
        return QStringLiteral("automation go");
    case RemoteCommand::Effect::Ignored:
        break;
    }
    return QStringLiteral("ignored");
}

// In the order of the kinds.
constexpr const char* kindWords[] = {"listening", "connected", "closed", "command", "reply",
                                     "clock",     "network",   "sent",   "error"};

} // namespace

const char* ServerEventWord(ServerEvent::Kind kind) {
    return kindWords[static_cast<int>(kind)];
}

QString ServerEvent::sentence() const {
    switch (kind) {
    case Kind::Listening:
        return QStringLiteral("Listening on port %1").arg(port);
    case Kind::Connected:
        return QStringLiteral("%1 connected").arg(peer);
    case Kind::Closed:
        return text.isEmpty() ? QStringLiteral("%1 closed").arg(peer)
                              : QStringLiteral("%1 closed: %2").arg(peer, text);
    case Kind::Command:
        return QStringLiteral("%1 sent \"%2\": %3").arg(peer, command.text, effectOf(command));
    case Kind::Reply:
        return QStringLiteral("Replied \"%1\"").arg(text);
    case Kind::Clock:
        return QStringLiteral("Radio clock: ") + line.text();
    case Kind::Network:
        return message.isEmpty() ? QStringLiteral("Network control: %1").arg(text)
                                 : QStringLiteral("Network control: %1 \"%2\"").arg(text, message);
    case Kind::Sent:
        return text;
    case Kind::Error:
        return peer.isEmpty() ? text : QStringLiteral("%1: %2").arg(peer, text);
    }
    return {};
}

} // namespace tolvex
