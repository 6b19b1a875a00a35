#include "network/commands/CommandRules.h"

#include "core/text/Numbers.h"
#include "core/text/TextFields.h"
#include "platform/CodePage.h"
#include "platform/devices/SerialLine.h"

namespace tolvex {

namespace {

constexpr qint32 highestIpPort = 65535;
// What one datagram can carry.
constexpr qsizetype longestDatagram = 65507;
constexpr int longestName = 200; // leaves room for the folder in a path of the suite's programs

using Fault = std::optional<CommandFault>;

Fault fault(CommandField field, const QString& message, qsizetype place = -1) {
    return CommandFault{field, message, false, place};
}

std::optional<QByteArray> bytesOf(const CommandFields& fields, TextFault* fault = nullptr) {
    return fields.typedText ? ReadCommandText(*fields.typedText, fields.textForm, fault) : fields.storedText;
}

bool isEmptyText(const CommandFields& fields) {
    const QString text = fields.typedText.value_or(QString::fromLatin1(fields.storedText));
    // Blanks are a text, except in a serial command.
    return fields.type == SerialCommand ? text.count(u' ') == text.size() : text.isEmpty();
}

Fault emptyText(const CommandFields& fields, bool isRight) {
    if (isRight || !isEmptyText(fields))
        return std::nullopt;
    return CommandFault{CommandField::Text,
                        QStringLiteral("You have not entered a command to send. Is this OK?"), true, -1};
}

Fault checkSerial(const CommandFields& fields) {
    constexpr int commas = 3;
    if (fields.settings.trimmed().isEmpty())
        return fault(CommandField::SerialSettings,
                     QStringLiteral("You must enter a set of valid Settings for the Serial Port"));
    if (fields.settings.count(u',') != commas)
        return fault(CommandField::SerialSettings,
                     QStringLiteral("The Serial Port Settings that you have entered do not appear to be "
                                    "correct."));
    return std::nullopt;
}

Fault checkTcpIp(const CommandFields& fields) {
    if (fields.address.trimmed().isEmpty())
        return fault(CommandField::TcpIpAddress,
                     QStringLiteral("You must enter an IP Name or address to connect to"));
    if (LeadingNumber(fields.port) <= 0)
        return fault(CommandField::TcpIpPort, QStringLiteral("You must enter an IP Port to connect to"));
    return std::nullopt;
}

// A text that its field would cut, or that would not come back as it is.
Fault checkFits(CommandField field, const QString& text, int longest, const char* what) {
    if (const qsizetype place = platform::FirstOutsideCodePage(text); place >= 0)
        return fault(
            field,
            QStringLiteral("The character \"%1\" cannot be stored: the code page of the suite does not "
                           "have it.")
                .arg(text[place]),
            place);
    if (text.size() > longest)
        return fault(field, QStringLiteral("%1 has %2 characters; there is room for %3.")
                                .arg(QLatin1String(what))
                                .arg(text.size())
                                .arg(longest));
    return std::nullopt;
}

// Names that the platform gives to devices in every folder.
bool isDeviceName(const QString& name) {
    constexpr const char* devices[] = {"CON", "PRN", "AUX", "NUL"};
    for (const char* device : devices)
        if (name.compare(QLatin1String(device), Qt::CaseInsensitive) == 0)
            return true;
    const QString start = name.left(3).toUpper();
    return name.size() == 4 && (start == QLatin1String("COM") || start == QLatin1String("LPT")) &&
           name[3] >= u'1' && name[3] <= u'9';
}

struct ListRow {
    qint32 type;
    CommandField field;
    qint32 CommandFields::*value;
    std::span<const NamedValue> (*values)();
    const char* what;
};
constexpr ListRow lists[] = {
    {SerialCommand, CommandField::SerialPort, &CommandFields::serialPort, CommandSerialPorts, "serial port"},
    {SerialCommand, CommandField::SerialHandshaking, &CommandFields::handshaking, CommandHandshakings,
     "handshaking"},
    {TcpIpCommand, CommandField::TcpIpProtocol, &CommandFields::protocol, CommandProtocols, "protocol"},
    {ExternalCommand, CommandField::WindowStyle, &CommandFields::windowStyle, CommandWindowStyles,
     "window style"},
};

// Values that a file holds and no list offers.
Fault checkLists(const CommandFields& fields) {
    for (const ListRow& row : lists)
        if (row.type == fields.type && !FindValue(row.values(), fields.*row.value))
            return fault(row.field, QStringLiteral("The command holds %1 %2, which does not exist. Choose "
                                                   "one that does.")
                                        .arg(QLatin1String(row.what))
                                        .arg(fields.*row.value));
    return std::nullopt;
}

// What the suite's programs would not be able to use.
Fault checkLimits(const CommandFields& fields) {
    const QString name = fields.name.trimmed();
    if (isDeviceName(name))
        return fault(CommandField::Name,
                     QStringLiteral("\"%1\" is the name of a device; a command cannot have it.").arg(name));
    if (auto wrong = checkFits(CommandField::Name, name, longestName, "The name"))
        return wrong;
    if (fields.type == SerialCommand)
        if (auto wrong = checkFits(CommandField::SerialSettings, fields.settings, SerialSettingsLength,
                                   "The text of the settings"))
            return wrong;
    if (fields.type == TcpIpCommand) {
        if (auto wrong = checkFits(CommandField::TcpIpAddress, fields.address.trimmed(), CommandAddressLength,
                                   "The address"))
            return wrong;
        if (LeadingNumber(fields.port) > highestIpPort)
            return fault(CommandField::TcpIpPort, QStringLiteral("An IP Port is a number from 1 to 65535."));
    }
    if (auto wrong = checkLists(fields))
        return wrong;
    TextFault wrong;
    const std::optional<QByteArray> bytes = bytesOf(fields, &wrong);
    if (!bytes)
        return fault(CommandField::Text, wrong.sentence, wrong.place);
    if (fields.type == TcpIpCommand && fields.protocol == ProtocolUdp && bytes->size() > longestDatagram)
        return fault(
            CommandField::Text,
            QStringLiteral("A UDP command is sent in one piece of at most %1 bytes; this one has %2.")
                .arg(longestDatagram)
                .arg(bytes->size()));
    return std::nullopt;
}

} // namespace

std::optional<CommandFault> CheckCommand(const CommandFields& fields, bool emptyTextIsRight) {
    const QString name = fields.name.trimmed();
    if (name.isEmpty())
        return fault(CommandField::Name, QStringLiteral("You must enter a Command Name before clicking OK"));
    if (!ValidateCharacters(name, CharacterClass::DigitsLettersBlank))
        return fault(CommandField::Name,
                     QStringLiteral("You can only use numbers, letters and spaces in Command Names"));
    if (fields.type == SerialCommand)
        if (auto wrong = checkSerial(fields))
            return wrong;
    if (fields.type == TcpIpCommand)
        if (auto wrong = checkTcpIp(fields))
            return wrong;
    if (auto question = emptyText(fields, emptyTextIsRight))
        return question;
    return checkLimits(fields);
}

QString CommandHint(const CommandFields& fields) {
    QString why;
    if (fields.type == SerialCommand && !platform::ParseSerialSettings(fields.settings, &why))
        return why;
    return {};
}

namespace {

// A text of the header as it was stored, unless the user changed it.
QString asStored(const QString& typed, const QString& shown, const QString& stored) {
    return typed == shown ? stored : typed;
}

} // namespace

CommandRecord CommandOf(const CommandFields& fields, const CommandRecord& before) {
    CommandRecord command;
    if (before.Type == fields.type)
        command.Rest = before.Rest;
    command.Type = fields.type;
    // Other bits than ours stay.
    command.Flags = (before.Flags & ~(UseExistingConnection | LeaveConnectionOpen)) |
                    (fields.useExisting ? UseExistingConnection : 0) |
                    (fields.leaveOpen ? LeaveConnectionOpen : 0);
    if (fields.type == SerialCommand) {
        command.SerialPort = fields.serialPort;
        command.Handshaking = fields.handshaking;
        command.Settings = asStored(fields.settings, before.settingsText(), before.Settings);
    } else if (fields.type == TcpIpCommand) {
        command.Address = asStored(fields.address, before.addressText(), before.Address).trimmed();
        command.IpPort = ToLong(LeadingNumber(fields.port));
        command.Protocol = fields.protocol;
    } else if (fields.type == ExternalCommand) {
        command.WindowStyle = fields.windowStyle;
    }
    command.Text = bytesOf(fields).value_or(QByteArray());
    return command;
}

CommandFields FieldsOf(const QString& name, const CommandRecord& command) {
    CommandFields fields;
    fields.name = name;
    fields.type = command.Type;
    fields.useExisting = command.useExisting();
    fields.leaveOpen = command.leaveOpen();
    fields.serialPort = command.SerialPort;
    fields.handshaking = command.Handshaking;
    fields.settings = command.settingsText();
    fields.address = command.addressText();
    if (command.Type == TcpIpCommand)
        fields.port = QString::number(command.IpPort);
    fields.protocol = command.Protocol;
    fields.windowStyle = command.WindowStyle;
    fields.storedText = command.Text;
    return fields;
}

QString UnknownTypeMessage(qint32 type) {
    if (FindValue(CommandTypes(), type))
        return {};
    return QStringLiteral("The Command Type (%1) was not recognised. Please contact Norvane Ltd.").arg(type);
}

} // namespace tolvex
