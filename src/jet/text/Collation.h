// The order of texts: the General order of the engine for code page 1252 and its neighbours, in which case
// does not count, accents count only between texts that are equal without them, and hyphens, apostrophes and
// control characters count last of all.
#pragma once

#include "jet/base/Value.h"

#include <optional>
#include <span>
#include <string_view>

namespace jet {

// Only so many characters of a text take part in an index.
inline constexpr std::size_t IndexedTextLength = 255;

// Appends the key of a text, such that keys compare by their bytes as the texts do; it ends with a 00 byte.
// Trailing blanks do not count, nor does anything after the first IndexedTextLength characters. Throws
// InvalidArgument, naming the character, if the text holds one whose place in the order is not known; `into`
// is unchanged then. Cost: one pass over the text.
void AppendTextKey(std::u16string_view text, Bytes& into);
// The same for a text of bytes, each the number of its character.
void AppendTextKey(std::span<const std::uint8_t> text, Bytes& into);

// Appends what the keys of all texts begin with that begin with this one, whatever the case of its letters:
// weights, up to the first character whose place in the order is not known. Blanks at the end of it bring
// nothing, since those of a text do not count.
void AppendTextKeyStart(std::u16string_view text, Bytes& into);

// The first character (UTF-16 unit) of a text's indexed part whose place in the order is not known.
std::optional<char16_t> FindUnorderable(std::u16string_view text);

// Below 0, 0 or above 0, as the whole keys of the two texts would compare, however long they are. Characters
// whose place is not known come after all others, by their code. Cost: a pass over both texts up to the
// first difference in weight; memory is taken only if they differ in accents or hyphens at most.
int CompareTexts(std::u16string_view a, std::u16string_view b);

// Whether two texts are equal in this order.
inline bool SameText(std::u16string_view a, std::u16string_view b) {
    return CompareTexts(a, b) == 0;
}

} // namespace jet
