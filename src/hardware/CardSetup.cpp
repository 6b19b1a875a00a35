#include "hardware/CardSetup.h"

#include "core/Numbers.h"

namespace tolvex {

namespace {

constexpr int HighestDevice = 0xFF;

void setTypes(HardwareCard& card, int first, int count, qint32 type) {
    for (int n = first; n < first + count && n <= LinesPerCard; ++n)
        card.Lines[n].LineType = type;
}

} // namespace

QString AddressText(qint16 address) {
    return QString::number(static_cast<quint16>(address), 16).toUpper();
}

qint16 DeviceWhileTyping(const QString& text) {
    return static_cast<qint16>(HeldBetween(ToLong(LeadingNumber(text)), -32768, 32767));
}

std::optional<qint16> DeviceNumber(const QString& text) {
    const QString digits = text.trimmed();
    if (digits.startsWith(u'-'))
        return std::nullopt;
    int value = 0;
    for (const QChar c : digits) {
        const int digit = QStringLiteral("0123456789ABCDEF").indexOf(c.toUpper());
        if (digit < 0)
            break;
        value = value * 16 + digit;
        if (value > HighestDevice)
            return std::nullopt;
    }
    return static_cast<qint16>(value);
}

int SelectCardType(HardwareCard& card, qint32 type, const QString& address, DriverReports& reports) {
    qint16 total = 0;
    qint16 inputs = 0;
    qint16 outputs = 0;
    if (!GetCardLineCounts(type, DeviceWhileTyping(address), total, inputs, outputs, reports))
        return 0;
    const CardTypeRow& row = *FindCardType(type);
    if (row.fixedLines) {
        setTypes(card, 1, inputs, 0);
        setTypes(card, inputs + 1, outputs, 1);
    }
    return qMin(int{total}, LinesPerCard);
}

QString TakeCardChoice(HardwareCard& card, const CardChoice& choice) {
    switch (choice.type) {
    case CardPorts24:
    case CardPorts48:
        return QStringLiteral("This card is not currently supported");
    case CardRS232:
        if (choice.port < 0)
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
