#include "network/commands/CommandRecord.h"

#include "core/text/RecordLayout.h"

#include <array>

namespace tolvex {

namespace {

using R = CommandRecord;

template<typename... Fields>
constexpr auto header(Fields... fields) {
    return MakeRecordLayout<CommandHeaderLength, R>(NumberField{0, &R::Type}, NumberField{4, &R::Flags},
                                                    fields...);
}
constexpr auto plainHeader = header(TextField{8, 1016, &R::Rest});
constexpr auto serialHeader =
    header(NumberField{8, &R::SerialPort}, NumberField{12, &R::Handshaking},
           TextField{16, SerialSettingsLength, &R::Settings}, TextField{48, 976, &R::Rest});
constexpr auto tcpIpHeader =
    header(TextField{8, CommandAddressLength, &R::Address}, NumberField{264, &R::IpPort},
           NumberField{268, &R::Protocol}, TextField{272, 752, &R::Rest});
constexpr auto externalHeader = header(NumberField{8, &R::WindowStyle}, TextField{12, 1012, &R::Rest});
static_assert(plainHeader.coversEachByteOnce() && serialHeader.coversEachByteOnce() &&
              tcpIpHeader.coversEachByteOnce() && externalHeader.coversEachByteOnce());

// Calls `use` with the layout of a type.
template<typename Use>
void withHeader(qint32 type, Use use) {
    switch (type) {
    case SerialCommand:
        return use(serialHeader);
    case TcpIpCommand:
        return use(tcpIpHeader);
    case ExternalCommand:
        return use(externalHeader);
    default:
        return use(plainHeader);
    }
}

void dropPadding(QString& text) {
    while (text.endsWith(u' '))
        text.chop(1);
}

constexpr NamedValue types[] = {{SuiteCommand, "Tolvex Command", "suite"},
                                {SerialCommand, "Serial Command", "serial"},
                                {TcpIpCommand, "TCP/IP Command", "tcp"},
                                {ExternalCommand, "External Command", "external"}};
constexpr NamedValue serialPorts[] = {
    {1, "Com Port 1", "1"}, {2, "Com Port 2", "2"}, {3, "Com Port 3", "3"}, {4, "Com Port 4", "4"}};
constexpr NamedValue handshakings[] = {{0, "No handshaking", "none"},
                                       {1, "XON/XOFF handshaking", "xonxoff"},
                                       {2, "RTS/CTS handshaking", "rtscts"},
                                       {3, "RTS/CTS and XON/XOFF handshaking", "both"}};
constexpr NamedValue protocols[] = {{ProtocolTcp, "TCP/IP", "tcp"}, {ProtocolUdp, "UDP/IP", "udp"}};
constexpr NamedValue windowStyles[] = {{1, "Normal with Focus", "normal"},
                                       {4, "Normal without Focus", "background"},
                                       {3, "Maximized with Focus", "maximized"},
                                       {2, "Minimized with Focus", "minimized"},
                                       {7, "Minimized without Focus", "minimized-background"}};

} // namespace

QString CommandRecord::settingsText() const {
    return Settings.section(QChar(0), 0, 0);
}

QString CommandRecord::addressText() const {
    return Address.section(QChar(0), 0, 0);
}

std::optional<CommandRecord> DecodeCommand(const QByteArray& file) {
    if (file.size() < CommandHeaderLength)
        return std::nullopt;
    CommandRecord command;
    plainHeader.decode(file.constData(), command);
    withHeader(command.Type, [&](const auto& layout) { layout.decode(file.constData(), command); });
    for (QString* text : {&command.Settings, &command.Address, &command.Rest})
        dropPadding(*text);
    command.Text = file.mid(CommandHeaderLength);
    return command;
}

QByteArray EncodeCommand(const CommandRecord& command) {
    QByteArray file(CommandHeaderLength, ' ');
    withHeader(command.Type, [&](const auto& layout) { layout.encode(command, file.data()); });
    return file + command.Text;
}

std::span<const NamedValue> CommandTypes() {
    return types;
}

std::span<const NamedValue> CommandSerialPorts() {
    return serialPorts;
}

std::span<const NamedValue> CommandHandshakings() {
    return handshakings;
}

std::span<const NamedValue> CommandProtocols() {
    return protocols;
}

std::span<const NamedValue> CommandWindowStyles() {
    return windowStyles;
}

const NamedValue* FindValue(std::span<const NamedValue> list, qint32 value) {
    for (const NamedValue& row : list)
        if (row.value == value)
            return &row;
    return nullptr;
}

const NamedValue* FindWord(std::span<const NamedValue> list, const QString& word) {
    for (const NamedValue& row : list)
        if (word.compare(QLatin1String(row.word), Qt::CaseInsensitive) == 0)
            return &row;
    return nullptr;
}

} // namespace tolvex
