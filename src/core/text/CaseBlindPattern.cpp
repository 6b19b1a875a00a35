#include "core/text/CaseBlindPattern.h"

#include "platform/CodePage.h"

#include <algorithm>
#include <limits>

namespace tolvex {

namespace {

using Byte = unsigned char;

Byte lower(char byte) {
    return platform::LowerCaseBytes[static_cast<Byte>(byte)];
}

} // namespace

CaseBlindPattern::CaseBlindPattern(const QString& text) {
    const QByteArray bytes = platform::ToCodePage(text);
    if (platform::FromCodePage(bytes) != text || bytes.isEmpty())
        return;
    for (const char byte : bytes)
        text_ += static_cast<char>(lower(byte));
    // A skip shorter than allowed only costs time.
    const auto skip = [](qsizetype length) {
        return static_cast<quint16>(std::min<qsizetype>(length, std::numeric_limits<quint16>::max()));
    };
    const qsizetype last = text_.size() - 1;
    std::array<quint16, 256> byLower;
    byLower.fill(skip(text_.size()));
    for (qsizetype i = 0; i < last; ++i)
        byLower[static_cast<Byte>(text_[i])] = skip(last - i);
    skipAfterLast_ = std::exchange(byLower[static_cast<Byte>(text_[last])], quint16{0});
    for (std::size_t byte = 0; byte < skip_.size(); ++byte)
        skip_[byte] = byLower[platform::LowerCaseBytes[byte]];
}

bool CaseBlindPattern::isIn(std::string_view bytes) const {
    const auto size = static_cast<std::size_t>(text_.size());
    if (size == 0)
        return false;
    const auto isHere = [this](const char* begin) {
        return std::equal(text_.begin(), text_.end(), begin,
                          [](char wanted, char there) { return static_cast<Byte>(wanted) == lower(there); });
    };
    for (std::size_t end = size; end <= bytes.size();) {
        const std::size_t skip = skip_[static_cast<Byte>(bytes[end - 1])];
        if (skip == 0 && isHere(bytes.data() + end - size))
            return true;
        end += skip != 0 ? skip : skipAfterLast_;
    }
    return false;
}

} // namespace tolvex
