#include "network/server/LinkMeshServer.h"

#include "hardware/OutputLines.h"

namespace tolvex {

namespace {

constexpr qint32 stationControl = 80; // the action of a line
constexpr qint32 hasControl = 1;      // its parameter

} // namespace

void StationControlOutputs(HardwareCardTable& cards, bool on) {
    SetLinesForAction(cards, stationControl, on ? OutputLineState::On : OutputLineState::Off, hasControl,
                      AnyData, AnyData, AnyData, false);
}

LinkMeshServer::LinkMeshServer(LinkMeshServerSetup setup, ServerEvents events)
    : setup_(std::move(setup))
    , events_(std::move(events))
    , remote_(setup_.remote, [this](const ServerEvent& event) { tell(event); })
    , commands_(setup_.dataLocation, [this](const CommandEvent& event) { tellCommand(event); })
    , network_(setup_.setControlOutputs, [this](const NetControlEventRow& row, const NetControlEvent& given) {
        ServerEvent event(ServerEvent::Kind::Network, QLatin1String(row.name));
        event.value1 = given.value1;
        event.value2 = given.value2;
        event.message = given.text;
        tell(event);
    }) {
    clock_.onLine = [this](const ClockLine& line) {
        ServerEvent event(ServerEvent::Kind::Clock);
        event.line = line;
        tell(event);
    };
    clock_.onError = [this](const QString& sentence) {
        tell(ServerEvent(ServerEvent::Kind::Error, sentence));
    };
}

LinkMeshServer::~LinkMeshServer() {
    events_ = {};
    close();
}

void LinkMeshServer::tell(const ServerEvent& event) {
    if (events_)
        events_(event);
}

void LinkMeshServer::tellCommand(const CommandEvent& event) {
    const QString what = QStringLiteral("Command \"%1\"").arg(event.command);
    ServerEvent told(ServerEvent::Kind::Sent);
    told.peer = event.peer;
    told.sender = event.command;
    if (event.kind == CommandEvent::Kind::Failed) {
        told.kind = ServerEvent::Kind::Error;
        told.text = QStringLiteral("%1: %2").arg(what, event.text);
    } else if (event.kind == CommandEvent::Kind::Sent) {
        told.text =
            QStringLiteral("%1: %2 bytes sent to %3").arg(what).arg(event.bytes.size()).arg(event.peer);
    } else if (event.kind == CommandEvent::Kind::Started) {
        told.text = QStringLiteral("%1: started %2").arg(what, event.peer);
    } else {
        return;
    }
    tell(told);
}

void LinkMeshServer::start() {
    remote_.listen();
    clock_.connectTo(setup_.radioClockPort);
    if (setup_.stampTerminal)
        setup_.stampTerminal();
}

void LinkMeshServer::close() {
    if (closed_)
        return;
    closed_ = true;
    clock_.close();
    network_.stop();
    remote_.close();
    commands_.closeAll();
}

} // namespace tolvex
