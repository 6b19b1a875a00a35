// What each character brings into a text's key, as the General order has it.
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
        Minor,    // hyphens, apostrophes, controls: count by their place, after everything else
        Mark,     // changes the accent of the letter before it
    };
    Kind kind = Kind::Ignored;
    std::uint8_t positions = 0; // letters it stands for
    std::uint16_t weight = 0;   // one byte, or two with the high one first; 0: none
    std::uint16_t code = 0; // accent (two positions: that of the first in the high byte), Minor or Mark code
};

// The characters that nearly all texts are made of, found without a search.
inline constexpr char16_t LatinEnd = 0x218;
extern const CharacterOrder LatinOrders[LatinEnd];

// The weights of the commonest ones again: letters without accents, and all else that brings nothing but one
// byte. 0: see the order.
inline constexpr std::size_t PlainEnd = 0x100;
extern const std::array<std::uint8_t, PlainEnd> PlainWeights;

// The same for all others.
const CharacterOrder* FindOrderBeyondLatin(char16_t unit);

// Null: the place of this UTF-16 unit in the order is not known.
inline const CharacterOrder* FindCharacterOrder(char16_t unit) {
    return unit < LatinEnd ? &LatinOrders[unit] : FindOrderBeyondLatin(unit);
}

} // namespace jet
