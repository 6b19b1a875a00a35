// What is done with a card as a whole: the type that is selected, its address while it is typed, and setting
// both in the table.
#pragma once

#include "hardware/CardLineCounts.h"

#include <optional>

namespace tolvex {

inline constexpr int SerialPorts = 4; // that a controller can be attached to

// The base address as the dialog shows it: hexadecimal without prefix, 16 bits.
QString AddressText(qint16 address);
// The device that an address text asks for while it is typed. It is read in decimal here, though it is
// hexadecimal everywhere else: "A" is device 0 and "10" device 10.
qint16 DeviceWhileTyping(const QString& text);
// The device number of a text, read in hexadecimal, "0x" allowed in front; an empty text is 0. Nothing for
// one below 0 or above FF and for a text that is not a number.
std::optional<qint16> DeviceNumber(const QString& text);

// Applies a card type that was selected, or an address that was typed: sets the line types that belong to the
// type, and gives how many lines it has. An Advantech card is asked.
LineCounts SelectCardType(HardwareCard& card, qint32 type, const QString& address, DriverReports& reports);
// How many lines of such a card can be shown, 0 to 100: none while its driver fails.
int ShownLines(const LineCounts& counts);
// One sentence that says from which device these counts of an Advantech card came.
QString OriginOfLines(qint16 device, const LineCounts& counts);

// What a card's controls say.
struct CardChoice {
    qint32 type = 0;
    QString address;
    int port = -1; // entry of the list of ports, which begins with port 1
};
// Takes it into the card: the one way by which the form and the shell set type and address. Otherwise gives
// the message that says what is wrong, and the card is as it was.
QString SetCard(HardwareCard& card, const CardChoice& choice);

} // namespace tolvex
