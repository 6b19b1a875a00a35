// Text as it is stored: UTF-16, or squeezed to one byte a character after a mark.
#pragma once

#include "jet/base/Value.h"

#include <optional>
#include <span>

namespace jet {

// Decodes stored text into `into` (replaced, memory used again). False: the bytes are no text (odd length).
bool DecodeText(std::span<const std::uint8_t> bytes, std::u16string& into);

// Whether DecodeText() would do it.
bool IsText(std::span<const std::uint8_t> bytes);

// The bytes of a text that was squeezed without switching, each a character of that number (never zero);
// nothing for other forms.
std::optional<std::span<const std::uint8_t>> PlainText(std::span<const std::uint8_t> bytes);

// Appends the stored form of `text`; `compress`: the column allows squeezing.
void EncodeText(std::u16string_view text, bool compress, Bytes& into);

} // namespace jet
