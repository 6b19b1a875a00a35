// What the dialog does with a card as a whole: the type that is selected, its address while it is typed, and
// taking both into the table.
#pragma once

#include "hardware/CardLineCounts.h"

#include <optional>

namespace tolvex {

// The base address as the dialog shows it: hexadecimal without prefix, 16 bits.
QString AddressText(qint16 address);
// The device that an address text asks for while it is typed. It is read in decimal here, though it is
// hexadecimal everywhere else: "A" is device 0 and "10" device 10.
qint16 DeviceWhileTyping(const QString& text);
// The device number of a text, read in hexadecimal; nothing when it is below 0 or above FF.
std::optional<qint16> DeviceNumber(const QString& text);

// Applies a card type that was selected, or an address that was typed: gives the number of lines to show (0
// to 100) and sets the line types that belong to the type. An Advantech card is asked; 0 when it fails.
int SelectCardType(HardwareCard& card, qint32 type, const QString& address, DriverReports& reports);

// What a card's controls say.
struct CardChoice {
    qint32 type = 0;
    QString address;
    int port = -1; // entry of the list of ports
};
// Takes it into the card. Otherwise gives the message that says what is wrong, and the card is as it was.
QString TakeCardChoice(HardwareCard& card, const CardChoice& choice);

} // namespace tolvex
