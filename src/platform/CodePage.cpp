#include "platform/CodePage.h"

namespace tolvex::platform {

namespace {

// Code points of the bytes 80 to 9F; all other bytes stand for themselves.
constexpr char16_t high[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

// The byte for a UTF-16 unit, or -1.
int byteOf(char16_t unit) {
    if (unit < 0x80 || (unit >= 0xA0 && unit <= 0xFF))
        return unit;
    for (int i = 0; i < 32; ++i)
        if (high[i] == unit)
            return 0x80 + i;
    return -1;
}

char toByte(char16_t unit) {
    const int byte = byteOf(unit);
    return byte < 0 ? '?' : static_cast<char>(byte);
}

constexpr std::array<unsigned char, 256> lowerCaseBytes() {
    std::array<unsigned char, 256> lower{};
    for (unsigned byte = 0; byte < 256; ++byte) {
        const bool ascii = byte >= 'A' && byte <= 'Z';
        const bool latin = byte >= 0xC0 && byte <= 0xDE && byte != 0xD7; // D7 is the multiplication sign
        const bool caron =
            byte == 0x8A || byte == 0x8C || byte == 0x8E; // S and Z with caron, the ligature OE
        const unsigned step = ascii || latin ? 0x20 : caron ? 0x10 : 0;
        lower[byte] = static_cast<unsigned char>(byte == 0x9F ? 0xFF : byte + step); // 9F: Y with diaeresis
    }
    return lower;
}

} // namespace

const std::array<unsigned char, 256> LowerCaseBytes = lowerCaseBytes();

QByteArray ToCodePage(const QString& text) {
    QByteArray bytes;
    bytes.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        bytes += toByte(c.unicode());
        // A character outside the first plane has two units but becomes one '?'.
        if (c.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate())
            ++i;
    }
    return bytes;
}

qsizetype FirstOutsideCodePage(const QString& text) {
    for (qsizetype i = 0; i < text.size(); ++i)
        if (byteOf(text[i].unicode()) < 0)
            return i;
    return -1;
}

QString FromCodePage(const char* bytes, qsizetype length) {
    QString text(length, Qt::Uninitialized);
    QChar* out = text.data();
    for (qsizetype i = 0; i < length; ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        out[i] = byte >= 0x80 && byte < 0xA0 ? QChar(high[byte - 0x80]) : QChar(char16_t(byte));
    }
    return text;
}

} // namespace tolvex::platform
