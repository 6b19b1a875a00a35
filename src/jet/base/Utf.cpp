#include "jet/base/Value.h"

namespace jet {

namespace {

constexpr char32_t Replacement = 0xFFFD;

// The code point at `i`, which moves past it; an invalid sequence returns the replacement character and moves
// by one byte.
char32_t decodeUtf8(std::string_view text, std::size_t& i) {
    const auto lead = static_cast<unsigned char>(text[i++]);
    if (lead < 0x80)
        return lead;
    const int follow = lead >= 0xF0 && lead < 0xF5 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC2 ? 1 : 0;
    if (follow == 0 || lead >= 0xF5 || i + static_cast<std::size_t>(follow) > text.size())
        return Replacement;
    char32_t point = lead & (0x3F >> follow);
    for (int n = 0; n < follow; ++n) {
        const auto next = static_cast<unsigned char>(text[i + static_cast<std::size_t>(n)]);
        if ((next & 0xC0) != 0x80)
            return Replacement;
        point = point << 6 | (next & 0x3Fu);
    }
    constexpr char32_t least[] = {0, 0x80, 0x800, 0x10000};
    if (point < least[follow] || point > 0x10FFFF || (point >= 0xD800 && point <= 0xDFFF))
        return Replacement;
    i += static_cast<std::size_t>(follow);
    return point;
}

} // namespace

std::u16string ToUtf16(std::string_view utf8) {
    std::u16string text;
    text.reserve(utf8.size());
    for (std::size_t i = 0; i < utf8.size();) {
        char32_t point = decodeUtf8(utf8, i);
        if (point < 0x10000) {
            text += static_cast<char16_t>(point);
            continue;
        }
        point -= 0x10000;
        text += static_cast<char16_t>(0xD800 + (point >> 10));
        text += static_cast<char16_t>(0xDC00 + (point & 0x3FF));
    }
    return text;
}

std::string ToUtf8(std::u16string_view utf16) {
    std::string text;
    text.reserve(utf16.size());
    for (std::size_t i = 0; i < utf16.size(); ++i) {
        char32_t point = utf16[i];
        if (point >= 0xD800 && point <= 0xDFFF) {
            const bool pair = point < 0xDC00 && i + 1 < utf16.size() && (utf16[i + 1] & 0xFC00) == 0xDC00;
            point = pair ? 0x10000 + ((point & 0x3FF) << 10) + (utf16[i + 1] & 0x3FFu) : Replacement;
            i += pair ? 1 : 0;
        }
        if (point < 0x80) {
            text += static_cast<char>(point);
        } else if (point < 0x800) {
            text += static_cast<char>(0xC0 | point >> 6);
            text += static_cast<char>(0x80 | (point & 0x3F));
        } else if (point < 0x10000) {
            text += static_cast<char>(0xE0 | point >> 12);
            text += static_cast<char>(0x80 | (point >> 6 & 0x3F));
            text += static_cast<char>(0x80 | (point & 0x3F));
        } else {
            text += static_cast<char>(0xF0 | point >> 18);
            text += static_cast<char>(0x80 | (point >> 12 & 0x3F));
            text += static_cast<char>(0x80 | (point >> 6 & 0x3F));
            text += static_cast<char>(0x80 | (point & 0x3F));
        }
    }
    return text;
}

} // namespace jet
