#include "jet/text/TextCompression.h"

#include "jet/base/LittleEndian.h"

#include <algorithm>
#include <cstring>

namespace jet {

namespace {

constexpr std::uint8_t Mark[] = {0xFF, 0xFE};
constexpr char16_t MarkUnit = 0xFEFF;
// The engine compresses only texts of these lengths.
constexpr std::size_t ShortestSqueezed = 3;
constexpr std::size_t LongestSqueezed = 1024;

bool isMarked(std::span<const std::uint8_t> bytes) {
    return bytes.size() >= 2 && bytes[0] == Mark[0] && bytes[1] == Mark[1];
}

// A byte stands for the character of that number; a zero byte switches to whole units and back.
bool decodeSqueezed(std::span<const std::uint8_t> bytes, std::u16string& into) {
    into.resize(bytes.size());
    std::size_t length = 0;
    for (std::size_t at = 0; at < bytes.size();) {
        const void* zero = std::memchr(bytes.data() + at, 0, bytes.size() - at);
        const std::size_t end =
            zero == nullptr ? bytes.size()
                            : static_cast<std::size_t>(static_cast<const std::uint8_t*>(zero) - bytes.data());
        for (std::size_t i = at; i < end; ++i)
            into[length + i - at] = bytes[i];
        length += end - at;
        at = end + 1;
        while (at < bytes.size() && bytes[at] != 0) {
            if (at + 1 >= bytes.size())
                return false;
            into[length++] = static_cast<char16_t>(Load16(bytes.data() + at));
            at += 2;
        }
        ++at; // the switch back
    }
    into.resize(length);
    return true;
}

} // namespace

bool DecodeText(std::span<const std::uint8_t> bytes, std::u16string& into) {
    if (isMarked(bytes))
        return decodeSqueezed(bytes.subspan(2), into);
    if (bytes.size() % 2 != 0)
        return false;
    into.resize(bytes.size() / 2);
    for (std::size_t i = 0; i < into.size(); ++i)
        into[i] = static_cast<char16_t>(Load16(bytes.data() + 2 * i));
    return true;
}

bool IsText(std::span<const std::uint8_t> bytes) {
    if (!isMarked(bytes))
        return bytes.size() % 2 == 0;
    thread_local std::u16string text;
    return PlainText(bytes) || DecodeText(bytes, text);
}

std::optional<std::span<const std::uint8_t>> PlainText(std::span<const std::uint8_t> bytes) {
    if (!isMarked(bytes) || std::memchr(bytes.data() + 2, 0, bytes.size() - 2) != nullptr)
        return std::nullopt;
    return bytes.subspan(2);
}

void EncodeText(std::u16string_view text, bool compress, Bytes& into) {
    while (!text.empty() && text.front() == MarkUnit)
        text.remove_prefix(1); // its bytes would be mistaken for the mark
    const std::size_t start = into.size();
    const bool squeezed =
        compress && text.size() >= ShortestSqueezed && text.size() <= LongestSqueezed &&
        std::all_of(text.begin(), text.end(), [](char16_t unit) { return unit >= 1 && unit <= 0xFF; });
    if (squeezed) {
        into.resize(start + 2 + text.size());
        std::uint8_t* at = into.data() + start;
        *at++ = Mark[0];
        *at++ = Mark[1];
        for (const char16_t unit : text)
            *at++ = static_cast<std::uint8_t>(unit);
        return;
    }
    into.resize(start + 2 * text.size());
    std::uint8_t* at = into.data() + start;
    for (const char16_t unit : text) {
        Store16(at, unit);
        at += 2;
    }
}

} // namespace jet
