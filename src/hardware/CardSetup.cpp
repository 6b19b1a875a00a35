#include "hardware/CardSetup.h"

#include "core/text/Numbers.h"

#include <algorithm>

namespace tolvex {

namespace {

constexpr uint HighestDevice = 0xFF;

void setTypes(HardwareCard& card, int first, int count, qint32 type) {
    for (int n = first; n < first + count && n <= LinesPerCard; ++n)
        card.Lines[n].LineType = type;
}

} // namespace

QString AddressText(qint16 address) {
    return QString::number(static_cast<quint16>(address), 16).toUpper();
}

qint16 DeviceWhileTyping(const QString& text) {
    return static_cast<qint16>(std::clamp(ToLong(LeadingNumber(text)), -32768, 32767));
}

std::optional<qint16> DeviceNumber(const QString& text) {
    const QString digits = text.trimmed();
    if (digits.isEmpty())
        return 0;
    bool good = false;
    const uint value = digits.toUInt(&good, 16);
    return good && value <= HighestDevice ? std::optional(static_cast<qint16>(value)) : std::nullopt;
}

LineCounts SelectCardType(HardwareCard& card, qint32 type, const QString& address, DriverReports& reports) {
    const LineCounts counts = GetCardLineCounts(type, DeviceWhileTyping(address), reports);
    if (counts.good && FindCardType(type)->fixedLines) {
        setTypes(card, 1, counts.inputs, 0);
        setTypes(card, counts.inputs + 1, counts.outputs, 1);
    }
    return counts;
}

int ShownLines(const LineCounts& counts) {
    return counts.good ? qMin(int{counts.total}, LinesPerCard) : 0;
}

QString OriginOfLines(qint16 device, const LineCounts& counts) {
    if (counts.answered)
        return QStringLiteral("The lines are those of device %1: %2 inputs and %3 outputs.")
            .arg(device)
            .arg(counts.inputs)
            .arg(counts.outputs);
    if (!counts.good)
        return QStringLiteral("Device %1 does not answer.").arg(device);
    return QStringLiteral("Device %1 does not say which lines it has: %2 inputs and %3 outputs stand in.")
        .arg(device)
        .arg(counts.inputs)
        .arg(counts.outputs);
}

QString SetCard(HardwareCard& card, const CardChoice& choice) {
    switch (choice.type) {
    case CardPorts24:
    case CardPorts48:
        return QStringLiteral("This card is not currently supported");
    case CardRS232:
        if (choice.port < 0 || choice.port >= SerialPorts)
            return QStringLiteral("You must specify a Serial Port to connect to");
        card.ComPort = static_cast<qint16>(choice.port + 1);
        card.BaseAddress = card.ComPort;
        break;
    case CardAdvantech: {
        const std::optional<qint16> device = DeviceNumber(choice.address);
        if (!device)
            return QStringLiteral("You must specify a Device Number from 0 to FF");
        card.BaseAddress = *device;
        card.ComPort = 0;
        break;
    }
    default:
        break;
    }
    card.CardType = choice.type;
    return {};
}

} // namespace tolvex
