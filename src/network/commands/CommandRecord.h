// A command: a named piece of output that the suite can send, bytes to a serial port or a network peer, or a
// program to start. Its file, "<name>.TCD", is a header of 1024 bytes, and after it the text to the end
// (docs/formats/command.md). A table of fields for each type says what the header holds.
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>
#include <span>

namespace tolvex {

inline constexpr int CommandHeaderLength = 1024;
inline constexpr int SerialSettingsLength = 32;
inline constexpr int CommandAddressLength = 256;
// A command file longer than this is not read.
inline constexpr qint64 LongestCommandFile = 16 << 20;

enum CommandType : qint32 {
    SuiteCommand = 0, // of the suite itself; sends nothing
    SerialCommand = 1,
    TcpIpCommand = 2,
    ExternalCommand = 3
};
enum CommandFlags : qint32 { UseExistingConnection = 1, LeaveConnectionOpen = 2 };
enum CommandProtocol : qint32 { ProtocolTcp = 0, ProtocolUdp = 1 };

// Members that a type has no field for keep their defaults. Texts come without the blanks that pad them.
struct CommandRecord {
    qint32 Type = SerialCommand;
    qint32 Flags = 0;

    qint32 SerialPort = 1; // 1 to 4
    qint32 Handshaking = 0;
    QString Settings = QStringLiteral("9600,n,8,1");

    QString Address;
    qint32 IpPort = 0;
    qint32 Protocol = ProtocolTcp;

    qint32 WindowStyle = 1;

    QString Rest;    // what the header has no field for; kept as read
    QByteArray Text; // bytes to send, or the command line in code page 1252

    // Settings and Address as they are meant: some programs pad with zero characters, and leave the end of an
    // older text behind them.
    QString settingsText() const;
    QString addressText() const;
    bool useExisting() const { return (Flags & UseExistingConnection) != 0; }
    bool leaveOpen() const { return (Flags & LeaveConnectionOpen) != 0; }
    bool hasConnection() const { return Type == SerialCommand || Type == TcpIpCommand; }
    bool operator==(const CommandRecord&) const = default;
};

// Nothing for bytes that are shorter than a header. An unknown type gives the fields that all types have.
std::optional<CommandRecord> DecodeCommand(const QByteArray& file);
// Cuts texts that are longer than their fields; the editor refuses them (CommandRules.h).
QByteArray EncodeCommand(const CommandRecord& command);

// A stored value, its text in the editor's list, and its word in the shell.
struct NamedValue {
    qint32 value;
    const char* text;
    const char* word;
};
// Types as the list of commands calls them; the editor offers all but the first.
std::span<const NamedValue> CommandTypes();
std::span<const NamedValue> CommandSerialPorts();
std::span<const NamedValue> CommandHandshakings();
std::span<const NamedValue> CommandProtocols();
std::span<const NamedValue> CommandWindowStyles();
// Null for a value, or a word, that is not in the list.
const NamedValue* FindValue(std::span<const NamedValue> list, qint32 value);
const NamedValue* FindWord(std::span<const NamedValue> list, const QString& word);

} // namespace tolvex
