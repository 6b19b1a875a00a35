#include "network/commands/CommandTrial.h"

#include "platform/CodePage.h"
#include "platform/process/Processes.h"

namespace tolvex {

using Kind = CommandEvent::Kind;

namespace {

constexpr int answerMilliseconds = 3000;

}

CommandTrial::CommandTrial(CommandEvents events)
    : events_(std::move(events))
    , port_(QStringLiteral("the test of a command")) {
    port_.onSent = [this] { sent(); };
    port_.onReceived = [this](const QByteArray& bytes) { tell(Kind::Answer, bytes); };
    port_.onFailed = [this](const QString& what) { end(Kind::Failed, what); };
    socket_.onConnected = [this] {
        tell(Kind::Open);
        if (text_.isEmpty())
            sent();
        else if (const SocketFault fault = socket_.write(text_))
            end(Kind::Failed, fault.text);
    };
    socket_.onSent = [this] { sent(); };
    socket_.onReceived = [this](const QByteArray& bytes) { tell(Kind::Answer, bytes); };
    socket_.onClosed = [this] { end(Kind::Closed); };
    socket_.onFailed = [this](const SocketFault& fault) {
        end(Kind::Failed, QStringLiteral("%1 (%2)").arg(fault.text).arg(fault.number));
    };
    patience_.setSingleShot(true);
    patience_.setInterval(answerMilliseconds);
    QObject::connect(&patience_, &QTimer::timeout, &patience_, [this] { end(Kind::Closed); });
}

CommandTrial::~CommandTrial() {
    stop();
}

void CommandTrial::start(const QString& name, const CommandRecord& command) {
    stop();
    name_ = name;
    peer_.clear();
    text_ = command.Text;
    running_ = true;
    switch (command.Type) {
    case SerialCommand:
        return sendSerial(command);
    case TcpIpCommand:
        return sendTcpIp(command);
    case ExternalCommand:
        return sendExternal(command);
    default:
        return end(Kind::Closed); // nothing is sent
    }
}

void CommandTrial::stop() {
    running_ = false;
    patience_.stop();
    socket_.abort();
    port_.close(0);
}

void CommandTrial::sendSerial(const CommandRecord& command) {
    peer_ = QStringLiteral("COM%1").arg(command.SerialPort);
    QString why;
    const auto line = platform::ParseSerialSettings(command.settingsText(), &why);
    if (!line)
        return end(Kind::Failed, why);
    if (const auto fault =
            port_.open(command.SerialPort, *line, static_cast<platform::Handshaking>(command.Handshaking)))
        return end(Kind::Failed, fault.text);
    tell(Kind::Open);
    port_.write(text_);
}

void CommandTrial::sendTcpIp(const CommandRecord& command) {
    const QString address = command.addressText().trimmed();
    peer_ = QStringLiteral("%1:%2").arg(address).arg(command.IpPort);
    tell(Kind::Connecting);
    if (const auto fault = socket_.open(address, command.IpPort, command.Protocol == ProtocolUdp))
        end(Kind::Failed, fault.text);
}

void CommandTrial::sendExternal(const CommandRecord& command) {
    peer_ = platform::FromCodePage(text_);
    QString why;
    if (!platform::StartCommandLine(peer_, command.WindowStyle, &why))
        return end(Kind::Failed, why);
    tell(Kind::Started);
    end(Kind::Closed);
}

void CommandTrial::sent() {
    tell(Kind::Sent, text_);
    if (running_)
        patience_.start();
}

void CommandTrial::tell(Kind kind, const QByteArray& bytes, const QString& text) {
    if (events_)
        events_({kind, name_, peer_, bytes, text});
}

void CommandTrial::end(Kind kind, const QString& text) {
    if (!running_)
        return;
    stop();
    tell(kind, {}, text);
}

} // namespace tolvex
