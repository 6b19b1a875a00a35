// The contribution of each character to a text's key in the General order.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace jet {

struct CharacterOrder {
    enum class Kind : std::uint8_t {
        Ignored,
        Letter,   // has a weight: any character that counts by itself, or two letters in one (ss, ae)
        Accented, // a weight, and an accent for each of its positions
        Minor,    // hyphens, apostrophes, controls: compared by position, after everything else
        Mark,     // changes the accent of the letter before it
    };
    Kind kind = Kind::Ignored;
    std::uint8_t positions = 0; // letters it stands for
    std::uint16_t weight = 0;   // one byte, or two with the high one first; 0: none
    std::uint16_t code = 0; // accent (two positions: that of the first in the high byte), Minor or Mark code
};

// The most common characters, found without a search.
inline constexpr char16_t LatinEnd = 0x218;
extern const CharacterOrder LatinOrders[LatinEnd];

// The weights of the most common ones again: letters without accents, and everything else that contributes
// exactly one byte. 0: see the order.
inline constexpr std::size_t PlainEnd = 0x100;
extern const std::array<std::uint8_t, PlainEnd> PlainWeights;

// The same for all other characters.
const CharacterOrder* FindOrderBeyondLatin(char16_t unit);

// Null: the order of this UTF-16 unit is unknown.
inline const CharacterOrder* FindCharacterOrder(char16_t unit) {
    return unit < LatinEnd ? &LatinOrders[unit] : FindOrderBeyondLatin(unit);
}

} // namespace jet
