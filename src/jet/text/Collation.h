// The order of texts: the engine's General order for code page 1252 and its neighbours. Case does not count,
// accents count only between texts that are equal without them, and hyphens, apostrophes and control
// characters count last of all.
#pragma once

#include "jet/base/Value.h"

#include <optional>
#include <span>
#include <string_view>

namespace jet {

// The number of characters of a text that an index uses.
inline constexpr std::size_t IndexedTextLength = 255;

// Appends the key of a text, such that keys compare by their bytes as the texts do; it ends with a 00 byte.
// Trailing blanks are ignored, and so is everything after the first IndexedTextLength characters. Throws
// InvalidArgument, naming the character, if the text holds one of unknown order; `into` is then unchanged.
// Cost: one pass over the text.
void AppendTextKey(std::u16string_view text, Bytes& into);
// The same for a text of bytes, each the number of its character.
void AppendTextKey(std::span<const std::uint8_t> text, Bytes& into);

// Appends the common prefix of the keys of all texts that begin with this one, regardless of case: weights,
// up to the first character of unknown order. Blanks at its end contribute nothing, since trailing blanks of
// a text are ignored.
void AppendTextKeyStart(std::u16string_view text, Bytes& into);

// The first character (UTF-16 unit) of unknown order in a text's indexed part.
std::optional<char16_t> FindUnorderable(std::u16string_view text);

// Below 0, 0 or above 0, as the complete keys of the two texts would compare, however long they are.
// Characters of unknown order come after all others, by their code. Cost: a pass over both texts up to the
// first difference in weight; memory is allocated only if they differ at most in accents or hyphens.
int CompareTexts(std::u16string_view a, std::u16string_view b);

// Whether two texts are equal in this order.
inline bool SameText(std::u16string_view a, std::u16string_view b) {
    return CompareTexts(a, b) == 0;
}

} // namespace jet
