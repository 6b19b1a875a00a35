// The LinkMesh server: the one place that holds the workstation's connections while it runs: the remote
// control socket, the ports and sockets of commands, the radio clock and the network control client. It needs
// no window; the form and the shell show its events.
#pragma once

#include "hardware/HardwareCards.h"
#include "network/clock/RadioClock.h"
#include "network/commands/CommandRunner.h"
#include "network/server/NetworkControl.h"
#include "network/server/RemoteControl.h"

namespace tolvex {

struct LinkMeshServerSetup {
    QString dataLocation;
    int radioClockPort = 0; // below 1: there is none
    RemoteControlSetup remote;
    // Sets every line marked "Has Control"; see StationControlOutputs.
    std::function<void(bool on)> setControlOutputs;
    // Puts this computer and the time on the workstation's record. Called once, after the start.
    std::function<void()> stampTerminal;
};

class LinkMeshServer {
public:
    explicit LinkMeshServer(LinkMeshServerSetup setup, ServerEvents events = {});
    ~LinkMeshServer();
    LinkMeshServer(const LinkMeshServer&) = delete;
    LinkMeshServer& operator=(const LinkMeshServer&) = delete;

    // Listens, connects the radio clock, and stamps the workstation's record.
    void start();
    // Closes everything for good: the clock, the client, the subscribers, the listener, ports and slots.
    void close();
    bool isClosed() const { return closed_; }

    bool PerformCommand(const QString& name, bool quiet) { return commands_.PerformCommand(name, quiet); }
    void SendWinSockMessage(const QString& text) { remote_.send(text); }

    RemoteControl& remote() { return remote_; }
    CommandRunner& commands() { return commands_; }
    RadioClock& clock() { return clock_; }
    NetworkControl& network() { return network_; }

private:
    void tellCommand(const CommandEvent& event);
    void tell(const ServerEvent& event);

    LinkMeshServerSetup setup_;
    ServerEvents events_;
    RemoteControl remote_;
    CommandRunner commands_;
    RadioClock clock_;
    NetworkControl network_;
    bool closed_ = false;
};

// Sets the outputs of a card table for control that was taken, or has ended.
void StationControlOutputs(HardwareCardTable& cards, bool on);

} // namespace tolvex
