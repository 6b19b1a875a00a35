// Settings of a serial line: speed, parity, data and stop bits, which the suite writes as one text
// ("9600,n,8,1"), and handshaking.
#pragma once

#include <QString>

#include <optional>

namespace tolvex::platform {

enum class Parity { None, Even, Odd, Mark, Space };
enum class StopBits { One, OneAndHalf, Two };

// The defaults are those of the platform's serial control.
struct SerialLine {
    qint32 baud = 9600;
    Parity parity = Parity::None;
    int dataBits = 8; // 5 to 8
    StopBits stopBits = StopBits::One;

    bool operator==(const SerialLine&) const = default;
};

// Numbered as in command files.
enum class Handshaking : qint32 { None = 0, XonXoff = 1, RtsCts = 2, RtsCtsXonXoff = 3 };

// Parses a settings text: speed, parity, data bits and stop bits between commas, letters in any case, blanks
// anywhere. A speed of two digits is the system's short form (96 is 9600). Parity is n, e, o, m or s, or the
// word. Fields that are empty or left out at the end have their defaults. Nothing, with a sentence in *why,
// for anything else.
std::optional<SerialLine> ParseSerialSettings(const QString& text, QString* why = nullptr);

} // namespace tolvex::platform
