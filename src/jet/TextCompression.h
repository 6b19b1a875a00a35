// Text as it is stored: UTF-16, or squeezed to one byte a character behind a mark.
#pragma once

#include "jet/Value.h"

#include <span>

namespace jet {

// Decodes stored text into `into` (replaced, memory used again). False: the bytes are no text (odd length).
bool DecodeText(std::span<const std::uint8_t> bytes, std::u16string& into);

// Appends the stored form of `text`; `compress`: the column allows squeezing.
void EncodeText(std::u16string_view text, bool compress, Bytes& into);

} // namespace jet
