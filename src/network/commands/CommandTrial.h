// Tries a command that need not be stored: sends it once, over a port or connection of its own, and reports
// what happens until three seconds have passed since the last byte was sent.
#pragma once

#include "network/commands/CommandEvents.h"
#include "network/commands/CommandRecord.h"
#include "network/commands/CommandSocket.h"
#include "platform/devices/SerialPort.h"

#include <QTimer>

namespace tolvex {

class CommandTrial {
public:
    // The last event is Closed or Failed; every trial that is not stopped ends with one of them.
    explicit CommandTrial(CommandEvents events);
    ~CommandTrial();

    // Ends a running trial without an event and starts another. `name` appears in the events.
    void start(const QString& name, const CommandRecord& command);
    // Ends it without an event.
    void stop();
    bool running() const { return running_; }

private:
    void sendSerial(const CommandRecord& command);
    void sendTcpIp(const CommandRecord& command);
    void sendExternal(const CommandRecord& command);
    void sent();
    void tell(CommandEvent::Kind kind, const QByteArray& bytes = {}, const QString& text = {});
    void end(CommandEvent::Kind kind, const QString& text = {});

    CommandEvents events_;
    platform::SerialPort port_;
    CommandSocket socket_;
    QTimer patience_; // for an answer
    QString name_;
    QString peer_;
    QByteArray text_;
    bool running_ = false;
};

} // namespace tolvex
