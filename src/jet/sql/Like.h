// The pattern of a LIKE: * any characters, ? one character, # one digit, [a-z] one of a set or range, [!a-z]
// one outside it; every other character matches itself, without regard to case. A wildcard in a set is
// literal: [*]. Accented letters differ from plain ones, as in the order of texts, and a blank differs from
// everything else.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace jet {

class LikePattern {
public:
    // Throws SyntaxError for an unterminated set or a reversed range.
    explicit LikePattern(std::u16string_view pattern);

    // Cost: linear for patterns with one *, at worst length of text times length of pattern.
    bool matches(std::u16string_view text) const;

    // The literal prefix of every match, without regard to
    // case; empty if the pattern begins with a wildcard.
    std::u16string start() const;

private:
    using Range = std::pair<char16_t, char16_t>;
    struct Element {
        enum class Kind { Character, Any, One, Digit, Set, OutsideSet };
        Kind kind = Kind::Character;
        char16_t character = 0;
        std::vector<Range> ranges;
    };
    static bool fits(const Element& element, char16_t c);

    std::vector<Element> elements_;
};

} // namespace jet
