// Operations on a card as a whole: its selected type, its address while it is typed, and storing both in the
// table.
#pragma once

#include "hardware/CardLineCounts.h"

#include <optional>

namespace tolvex {

inline constexpr int SerialPorts = 4; // to which a controller can be attached

// The base address as the dialog shows it: hexadecimal without prefix, 16 bits.
QString AddressText(qint16 address);
// The device of an address text while it is typed. It is read in decimal here, though it is hexadecimal
// everywhere else: "A" is device 0 and "10" device 10.
qint16 DeviceWhileTyping(const QString& text);
// The device number of a text, read in hexadecimal, with an optional "0x"; an empty text is 0. Nothing for
// one below 0 or above FF and for a text that is not a number.
std::optional<qint16> DeviceNumber(const QString& text);

// Applies a selected card type or a typed address: sets the line types that belong to the type, and returns
// the number of lines. An Advantech card is asked.
LineCounts SelectCardType(HardwareCard& card, qint32 type, const QString& address, DriverReports& reports);
// How many lines of such a card can be shown, 0 to 100: none while its driver fails.
int ShownLines(const LineCounts& counts);
// One sentence that names the device from which these counts of an Advantech card came.
QString OriginOfLines(qint16 device, const LineCounts& counts);

// The state of a card's controls.
struct CardChoice {
    qint32 type = 0;
    QString address;
    int port = -1; // entry of the list of ports, which begins with port 1
};
// Stores it in the card: the only way by which the form and the shell set type and address. If something is
// wrong, returns the message and leaves the card as it was.
QString SetCard(HardwareCard& card, const CardChoice& choice);

} // namespace tolvex
