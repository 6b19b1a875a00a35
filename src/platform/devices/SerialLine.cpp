#include "platform/devices/SerialLine.h"

#include <QStringList>

namespace tolvex::platform {

namespace {

struct ShortSpeed {
    int written;
    qint32 baud;
};
// The short forms of the system's mode command.
constexpr ShortSpeed shortSpeeds[] = {{11, 110},  {15, 150},  {30, 300},  {60, 600},  {12, 1200},
                                      {24, 2400}, {48, 4800}, {96, 9600}, {19, 19200}};
constexpr qint32 highestBaud = 4'000'000;

struct ParityWord {
    const char* word;
    Parity parity;
};
constexpr ParityWord parityWords[] = {{"none", Parity::None},
                                      {"even", Parity::Even},
                                      {"odd", Parity::Odd},
                                      {"mark", Parity::Mark},
                                      {"space", Parity::Space}};

struct StopText {
    const char* text;
    StopBits bits;
};
constexpr StopText stopTexts[] = {{"1", StopBits::One}, {"1.5", StopBits::OneAndHalf}, {"2", StopBits::Two}};

constexpr int fieldCount = 4;

std::optional<qint32> baudOf(const QString& text) {
    bool isNumber = false;
    const qint32 number = text.toInt(&isNumber);
    if (!isNumber || !text[0].isDigit())
        return std::nullopt;
    for (const ShortSpeed& row : shortSpeeds)
        if (row.written == number)
            return row.baud;
    return number >= 1 && number <= highestBaud ? std::optional(number) : std::nullopt;
}

std::optional<Parity> parityOf(const QString& text) {
    for (const ParityWord& row : parityWords)
        if (text == QLatin1String(row.word) || (text.size() == 1 && text[0] == QLatin1Char(row.word[0])))
            return row.parity;
    return std::nullopt;
}

std::optional<StopBits> stopBitsOf(const QString& text) {
    for (const StopText& row : stopTexts)
        if (text == QLatin1String(row.text))
            return row.bits;
    return std::nullopt;
}

std::optional<int> dataBitsOf(const QString& text) {
    return text.size() == 1 && text[0] >= u'5' && text[0] <= u'8' ? std::optional(text[0].digitValue())
                                                                  : std::nullopt;
}

// Takes a field that is not empty into the line; false if it is not valid.
template<typename Value>
bool take(const QString& field, std::optional<Value> (*meaning)(const QString&), Value& value) {
    if (field.isEmpty())
        return true;
    const std::optional<Value> found = meaning(field);
    if (found)
        value = *found;
    return found.has_value();
}

} // namespace

std::optional<SerialLine> ParseSerialSettings(const QString& text, QString* why) {
    const auto refuse = [why](const QString& sentence) {
        if (why)
            *why = sentence;
        return std::nullopt;
    };
    QStringList fields = text.toLower().remove(u' ').split(u',');
    if (fields.size() > fieldCount)
        return refuse(QStringLiteral("The settings \"%1\" have more than four fields.").arg(text.trimmed()));
    fields.resize(fieldCount);
    if (fields[0].isEmpty())
        return refuse(QStringLiteral("The settings name no speed; a text like \"9600,n,8,1\" is expected."));
    SerialLine line;
    if (!take(fields[0], baudOf, line.baud))
        return refuse(QStringLiteral("\"%1\" is not a speed in bits a second.").arg(fields[0]));
    if (!take(fields[1], parityOf, line.parity))
        return refuse(QStringLiteral("\"%1\" is not a parity; it can be n, e, o, m or s.").arg(fields[1]));
    if (!take(fields[2], dataBitsOf, line.dataBits))
        return refuse(
            QStringLiteral("\"%1\" is not a number of data bits; it can be 5 to 8.").arg(fields[2]));
    if (!take(fields[3], stopBitsOf, line.stopBits))
        return refuse(
            QStringLiteral("\"%1\" is not a number of stop bits; it can be 1, 1.5 or 2.").arg(fields[3]));
    return line;
}

} // namespace tolvex::platform
