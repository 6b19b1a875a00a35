// Stored text: UTF-16, or compressed to one byte per character after a mark.
#pragma once

#include "jet/base/Value.h"

#include <optional>
#include <span>

namespace jet {

// Decodes stored text into `into` (replaced, memory reused). False: the bytes are not text (odd length).
bool DecodeText(std::span<const std::uint8_t> bytes, std::u16string& into);

// Whether DecodeText() would do it.
bool IsText(std::span<const std::uint8_t> bytes);

// The bytes of a text that was compressed without switching, each the number of a character (never zero);
// nothing for other forms.
std::optional<std::span<const std::uint8_t>> PlainText(std::span<const std::uint8_t> bytes);

// Appends the stored form of `text`; `compress`: the column allows compression.
void EncodeText(std::u16string_view text, bool compress, Bytes& into);

} // namespace jet
