#include "network/commands/CommandRunner.h"

#include "core/report/ProblemReport.h"
#include "platform/CodePage.h"
#include "platform/files/Files.h"
#include "platform/process/Processes.h"

#include <QTimer>

#include <algorithm>

namespace tolvex {

using platform::Handshaking;

namespace {

// Opens a box from the event loop, after the caller has returned.
template<typename Show>
void showLater(Show show) {
    QTimer::singleShot(0, show);
}

platform::SerialFault openPort(platform::SerialPort& port, const CommandRecord& command) {
    QString why;
    const auto line = platform::ParseSerialSettings(command.settingsText(), &why);
    if (!line)
        return {platform::SerialLineRefused, why};
    if (!FindValue(CommandHandshakings(), command.Handshaking))
        return {platform::SerialLineRefused,
                QStringLiteral("Handshaking %1 is not known.").arg(command.Handshaking)};
    return port.open(command.SerialPort, *line, static_cast<Handshaking>(command.Handshaking));
}

} // namespace

QString CommandRunner::Slot::peer() const {
    return QStringLiteral("%1:%2").arg(address).arg(port);
}

CommandRunner::CommandRunner(const QString& dataLocation, CommandEvents events)
    : folder_(dataLocation)
    , events_(std::move(events)) {
    for (Port& port : ports_)
        connectPort(port);
    for (Slot& slot : slots_)
        connectSlot(slot);
}

CommandRunner::~CommandRunner() {
    events_ = {};
    closeAll();
}

void CommandRunner::tell(CommandEvent::Kind kind, const QString& command, const QString& peer,
                         const QByteArray& bytes, const QString& text) {
    if (events_)
        events_({kind, command, peer, bytes, text});
}

bool CommandRunner::PerformCommand(const QString& name, bool quiet) {
    const QString trimmed = name.trimmed();
    if (trimmed.isEmpty() || platform::FileSize(folder_.fileOf(trimmed)) <= 0)
        return false;
    QString why;
    const std::optional<CommandRecord> command = folder_.read(trimmed, &why);
    if (!command)
        return refuse(trimmed, why, quiet);
    switch (command->Type) {
    case SuiteCommand:
        return true;
    case SerialCommand:
        return runSerial(trimmed, *command, quiet);
    case TcpIpCommand:
        return runTcpIp(trimmed, *command, quiet);
    case ExternalCommand:
        return runExternal(trimmed, *command, quiet);
    default:
        return refuse(
            trimmed,
            QStringLiteral("The Command %1 contained Command Type %2 which is not recognised. Please "
                           "contact Norvane Ltd.")
                .arg(trimmed)
                .arg(command->Type),
            quiet);
    }
}

// A command that cannot be started.
bool CommandRunner::refuse(const QString& name, const QString& why, bool quiet) {
    tell(CommandEvent::Kind::Failed, name, {}, {}, why);
    if (!quiet)
        ShowExclamation(why);
    return false;
}

// ---- Serial ports

void CommandRunner::connectPort(Port& port) {
    port.port = std::make_unique<platform::SerialPort>(QStringLiteral("a command"));
    platform::SerialPort& serial = *port.port;
    const auto peer = [&serial] { return QStringLiteral("COM%1").arg(serial.number()); };
    serial.onSent = [this, &port, peer] {
        tell(CommandEvent::Kind::Sent, port.command, peer(), std::exchange(port.sending, {}));
        if (!port.port->isOpen())
            tell(CommandEvent::Kind::Closed, port.command, peer());
    };
    serial.onReceived = [this, &port, peer](const QByteArray& bytes) {
        tell(CommandEvent::Kind::Answer, port.command, peer(), bytes);
    };
    serial.onFailed = [this, &port, peer](const QString& what) {
        port.sending.clear();
        tell(CommandEvent::Kind::Failed, port.command, peer(), {}, what);
        showLater([what, command = port.command, quiet = port.quiet] {
            ProblemReport(QStringLiteral("sending the Command: ") + command, platform::SerialPortFailed,
                          quiet, what);
        });
    };
}

bool CommandRunner::runSerial(const QString& name, const CommandRecord& command, bool quiet) {
    if (command.SerialPort < 1 || command.SerialPort > CommandPortCount)
        return refuse(
            name, QStringLiteral("The Serial Port specified in Command: %1 is not valid.").arg(name), quiet);
    Port& port = ports_.at(static_cast<std::size_t>(command.SerialPort - 1));
    platform::SerialPort& serial = *port.port;
    const auto handshaking = static_cast<Handshaking>(command.Handshaking);
    const bool same = serial.handshaking() == handshaking && port.settings == command.Settings;
    if (serial.isOpen() && !(command.useExisting() && same))
        serial.close();
    port.command = name;
    port.quiet = quiet;
    if (!serial.isOpen()) {
        if (const platform::SerialFault fault = openPort(serial, command)) {
            tell(CommandEvent::Kind::Failed, name, QStringLiteral("COM%1").arg(command.SerialPort), {},
                 fault.text);
            ProblemReport(QStringLiteral("opening the Serial Port for Command: ") + name, fault.number, quiet,
                          fault.text);
            return false;
        }
        port.settings = command.Settings;
        port.sending.clear();
        tell(CommandEvent::Kind::Open, name, QStringLiteral("COM%1").arg(command.SerialPort));
    }
    port.sending += command.Text;
    serial.write(command.Text);
    if (command.leaveOpen())
        serial.keepOpen();
    else
        serial.closeWhenSent();
    return true;
}

// ---- Sockets

void CommandRunner::connectSlot(Slot& slot) {
    slot.socket.onConnected = [this, &slot] {
        tell(CommandEvent::Kind::Open, slot.command, slot.peer());
        sendOn(slot, slot.pending);
    };
    slot.socket.onSent = [this, &slot] {
        tell(CommandEvent::Kind::Sent, slot.command, slot.peer(), std::exchange(slot.pending, {}));
        if (!slot.leaveOpen)
            slot.socket.finish();
    };
    slot.socket.onReceived = [this, &slot](const QByteArray& bytes) {
        tell(CommandEvent::Kind::Answer, slot.command, slot.peer(), bytes);
    };
    slot.socket.onClosed = [this, &slot] {
        slot.pending.clear();
        tell(CommandEvent::Kind::Closed, slot.command, slot.peer());
    };
    slot.socket.onFailed = [this, &slot](const SocketFault& fault) { fail(slot, fault); };
}

void CommandRunner::fail(Slot& slot, const SocketFault& fault) {
    slot.pending.clear();
    tell(CommandEvent::Kind::Failed, slot.command, slot.peer(), {}, fault.text);
    showLater([fault] {
        ShowExclamation(QStringLiteral("There was a problem with a TCP/IP Command, \n\n%1(%2)")
                            .arg(fault.text)
                            .arg(fault.number));
    });
}

// Sends on the slot's open connection.
void CommandRunner::sendOn(Slot& slot, const QByteArray& bytes) {
    if (const SocketFault fault = slot.socket.write(bytes)) {
        slot.socket.abort();
        fail(slot, fault);
    } else if (slot.pending.isEmpty() && !slot.leaveOpen) {
        slot.socket.finish(); // an empty write gets no signal
    }
}

CommandRunner::Slot& CommandRunner::freeSlot() {
    const auto closed =
        std::find_if(slots_.begin(), slots_.end(), [](const Slot& slot) { return slot.socket.isClosed(); });
    Slot& slot = closed != slots_.end() ? *closed : slots_.back();
    slot.socket.abort();
    slot.address.clear();
    slot.pending.clear();
    return slot;
}

bool CommandRunner::runTcpIp(const QString& name, const CommandRecord& command, bool quiet) {
    const QString address = command.addressText().trimmed();
    if (command.useExisting()) {
        const auto open = std::find_if(slots_.begin(), slots_.end(), [&](const Slot& slot) {
            return slot.socket.isConnected() && slot.address == address && slot.port == command.IpPort &&
                   slot.protocol == command.Protocol;
        });
        if (open != slots_.end()) {
            open->command = name;
            open->pending += command.Text;
            sendOn(*open, command.Text);
            return true;
        }
    }
    Slot& slot = freeSlot();
    slot.command = name;
    slot.address = address;
    slot.port = command.IpPort;
    slot.protocol = command.Protocol;
    slot.pending = command.Text;
    slot.leaveOpen = command.leaveOpen();
    tell(CommandEvent::Kind::Connecting, name, slot.peer());
    const SocketFault fault = slot.socket.open(address, command.IpPort, command.Protocol == ProtocolUdp);
    if (!fault)
        return true;
    tell(CommandEvent::Kind::Failed, name, slot.peer(), {}, fault.text);
    ProblemReport(QStringLiteral("opening the TCP/IP Port for Command: ") + name, fault.number, quiet,
                  fault.text);
    return false;
}

// ---- Programs

bool CommandRunner::runExternal(const QString& name, const CommandRecord& command, bool quiet) {
    const QString line = platform::FromCodePage(command.Text);
    QString why;
    if (platform::StartCommandLine(line, command.WindowStyle, &why)) {
        tell(CommandEvent::Kind::Started, name, line);
        return true;
    }
    tell(CommandEvent::Kind::Failed, name, line, {}, why);
    if (!quiet)
        ShowExclamation(QStringLiteral("The file specified in Command: %1 could not be executed.").arg(name));
    return false;
}

// ---- All of them

bool CommandRunner::busy() const {
    return std::any_of(ports_.begin(), ports_.end(), [](const Port& port) { return port.port->sending(); }) ||
           std::any_of(slots_.begin(), slots_.end(), [](const Slot& slot) {
               return !slot.socket.isClosed() && (!slot.socket.isConnected() || !slot.pending.isEmpty());
           });
}

QStringList CommandRunner::connections() const {
    QStringList open;
    for (const Port& port : ports_)
        if (port.port->isOpen())
            open += QStringLiteral("COM%1").arg(port.port->number());
    for (const Slot& slot : slots_)
        if (slot.socket.isConnected())
            open += slot.peer();
    return open;
}

void CommandRunner::closeAll() {
    for (Port& port : ports_)
        port.port->close();
    for (Slot& slot : slots_)
        slot.socket.abort();
}

} // namespace tolvex
