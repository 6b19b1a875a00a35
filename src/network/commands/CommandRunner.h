// Running commands. It owns what they are sent over: four serial ports, five sockets. A connection that a
// command leaves open stays until another command closes it or the runner goes.
//
// PerformCommand only starts a command: its bytes leave on the event loop, and later faults come as events.
#pragma once

#include "network/commands/CommandEvents.h"
#include "network/commands/CommandFolder.h"
#include "network/commands/CommandSocket.h"
#include "platform/devices/SerialPort.h"

#include <array>

namespace tolvex {

inline constexpr int CommandPortCount = 4;
inline constexpr int CommandSlotCount = 5;

class CommandRunner {
public:
    explicit CommandRunner(const QString& dataLocation, CommandEvents events = {});
    ~CommandRunner();

    // Runs the command of that name. True when it was started or sent. A failure shows a message unless
    // `quiet`; a name without a file shows none. A connection that fails later shows a box in any case, as
    // nobody waits for it.
    bool PerformCommand(const QString& name, bool quiet);

    // Whether bytes are on their way, or a connection is being made.
    bool busy() const;
    // Ports and slots that are open, in words: "COM1", "10.0.0.7:4001".
    QStringList connections() const;
    // Closes every port and slot. What serial ports still have to send gets its time.
    void closeAll();

private:
    struct Port {
        std::unique_ptr<platform::SerialPort> port;
        QString settings; // as the command that opened it spelled them
        QString command;
        QByteArray sending;
        bool quiet = false;
    };
    struct Slot {
        CommandSocket socket;
        QString address;
        qint32 port = 0;
        qint32 protocol = ProtocolTcp;
        QByteArray pending; // what is sent on connecting, or is on its way
        bool leaveOpen = false;
        QString command;

        QString peer() const;
    };

    bool runSerial(const QString& name, const CommandRecord& command, bool quiet);
    bool runTcpIp(const QString& name, const CommandRecord& command, bool quiet);
    bool runExternal(const QString& name, const CommandRecord& command, bool quiet);
    void connectPort(Port& port);
    void connectSlot(Slot& slot);
    Slot& freeSlot();
    void sendOn(Slot& slot, const QByteArray& bytes);
    void fail(Slot& slot, const SocketFault& fault);
    bool refuse(const QString& name, const QString& why, bool quiet);
    void tell(CommandEvent::Kind kind, const QString& command, const QString& peer,
              const QByteArray& bytes = {}, const QString& text = {});

    CommandFolder folder_;
    CommandEvents events_;
    std::array<Port, CommandPortCount> ports_;
    std::array<Slot, CommandSlotCount> slots_;
};

} // namespace tolvex
