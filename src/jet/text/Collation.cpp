#include "jet/text/Collation.h"

#include "jet/base/Error.h"
#include "jet/text/CollationTable.h"

#include <algorithm>
#include <cstdio>

namespace jet {

namespace {

using Kind = CharacterOrder::Kind;

constexpr std::uint8_t EndOfWeights = 0x01;
constexpr std::uint8_t NoAccent = 0x02;
constexpr std::uint8_t MinorMark = 0x06;
constexpr std::uint8_t UnknownWeight = 0xFF; // above all weights, used only in comparisons

// Characters of unknown order weigh FF and their own two bytes.
constexpr CharacterOrder Unknown{Kind::Letter, 1, 0, 0};

const CharacterOrder& orderOf(char16_t unit) {
    const CharacterOrder* order = FindCharacterOrder(unit);
    return order != nullptr ? *order : Unknown;
}

// Texts are spans of UTF-16 units or, if each character is below 100, of bytes.
template<typename Unit>
using Text = std::span<const Unit>;

template<typename Unit>
Text<Unit> withoutTrailingBlanks(Text<Unit> text) {
    while (!text.empty() && text.back() == ' ')
        text = text.first(text.size() - 1);
    return text;
}

template<typename Unit>
Text<Unit> indexedPart(Text<Unit> text) {
    return withoutTrailingBlanks(text.first(std::min(text.size(), IndexedTextLength)));
}

// Appends one accent byte for each position of the text up to its last accented one.
template<typename Unit>
void appendAccents(Text<Unit> text, Bytes& into) {
    const std::size_t start = into.size();
    std::size_t covered = 0; // positions that have a byte
    std::size_t positions = 0;
    const auto coverUpTo = [&](std::size_t position) {
        if (covered < position) {
            into.insert(into.end(), position - covered, NoAccent);
            covered = position;
        }
    };
    for (const Unit unit : text) {
        const CharacterOrder& order = orderOf(unit);
        if (order.kind == Kind::Accented) {
            coverUpTo(positions);
            if (order.positions == 2)
                into.push_back(static_cast<std::uint8_t>(order.code >> 8));
            into.push_back(static_cast<std::uint8_t>(order.code));
            covered += order.positions;
        } else if (order.kind == Kind::Mark) {
            coverUpTo(positions);
            if (into.size() > start)
                into.back() = static_cast<std::uint8_t>(into.back() + order.code);
            else
                into.push_back(static_cast<std::uint8_t>(order.code));
        }
        positions += order.positions;
    }
    while (into.size() > start && into.back() <= NoAccent)
        into.pop_back();
}

// Walks over the minor characters of a text.
template<typename Unit>
struct MinorWalk {
    Text<Unit> text;
    std::size_t at = 0;
    std::size_t positions = 0; // before the character
    std::uint16_t code = 0;

    bool next() {
        while (at < text.size()) {
            const CharacterOrder& order = orderOf(text[at++]);
            if (order.kind == Kind::Minor) {
                code = order.code;
                return true;
            }
            positions += order.positions;
        }
        return false;
    }
};

// Walks over the weight bytes of a text; 0 at its end, because the end is below every weight.
struct WeightWalk {
    Text<char16_t> text;
    std::size_t at = 0;
    std::uint8_t pending[2] = {};
    int waiting = 0;
    bool plain = true; // only unaccented letters so far

    std::uint8_t next() {
        if (waiting > 0)
            return pending[--waiting];
        while (at < text.size()) {
            const char16_t unit = text[at++];
            const CharacterOrder& order = orderOf(unit);
            if (order.kind != Kind::Letter && order.kind != Kind::Ignored)
                plain = false;
            if (order.weight > 0xFF) {
                pending[waiting++] = static_cast<std::uint8_t>(order.weight);
                return static_cast<std::uint8_t>(order.weight >> 8);
            }
            if (order.weight != 0)
                return static_cast<std::uint8_t>(order.weight);
            if (&order == &Unknown) {
                pending[waiting++] = static_cast<std::uint8_t>(unit);
                pending[waiting++] = static_cast<std::uint8_t>(unit >> 8);
                return UnknownWeight;
            }
        }
        return 0;
    }
};

int compareSecondary(Text<char16_t> a, Text<char16_t> b) {
    Bytes accentsA;
    Bytes accentsB;
    appendAccents(a, accentsA);
    appendAccents(b, accentsB);
    if (accentsA != accentsB)
        return accentsA < accentsB ? -1 : 1;
    MinorWalk<char16_t> walkA{a};
    MinorWalk<char16_t> walkB{b};
    for (;;) {
        const bool moreA = walkA.next();
        const bool moreB = walkB.next();
        if (!moreA || !moreB)
            return static_cast<int>(moreA) - static_cast<int>(moreB);
        if (walkA.positions != walkB.positions)
            return walkA.positions < walkB.positions ? -1 : 1;
        if (walkA.code != walkB.code)
            return walkA.code < walkB.code ? -1 : 1;
    }
}

[[noreturn]] void refuse(char16_t unit) {
    char code[8];
    std::snprintf(code, sizeof code, "U+%04X", static_cast<unsigned>(unit));
    throw Error(ErrorNumber::InvalidArgument,
                std::string("the character ") + code + " cannot be ordered in an index");
}

template<typename Unit>
void appendKey(Text<Unit> whole, Bytes& into) {
    const Text<Unit> text = indexedPart(whole);
    std::uint8_t weights[2 * IndexedTextLength + 1];
    std::uint8_t* at = weights;
    unsigned kinds = 0; // a bit for each
    for (const Unit unit : text) {
        if (unit < PlainEnd && PlainWeights[unit] != 0) {
            *at++ = PlainWeights[unit];
            continue;
        }
        const CharacterOrder* order = FindCharacterOrder(unit);
        if (order == nullptr)
            refuse(unit);
        if (order->weight > 0xFF)
            *at++ = static_cast<std::uint8_t>(order->weight >> 8);
        *at = static_cast<std::uint8_t>(order->weight);
        at += order->weight != 0 ? 1 : 0;
        kinds |= 1u << static_cast<unsigned>(order->kind);
    }
    *at++ = EndOfWeights;
    into.insert(into.end(), weights, at);
    const auto has = [kinds](Kind kind) { return (kinds >> static_cast<unsigned>(kind) & 1) != 0; };
    if (has(Kind::Accented) || has(Kind::Mark))
        appendAccents(text, into);
    if (has(Kind::Minor)) {
        into.insert(into.end(), 3, EndOfWeights);
        for (MinorWalk<Unit> walk{text}; walk.next();) {
            const std::size_t place = 0x8000 | (7 + 4 * walk.positions);
            into.insert(into.end(), {static_cast<std::uint8_t>(place >> 8), static_cast<std::uint8_t>(place),
                                     MinorMark, static_cast<std::uint8_t>(walk.code)});
        }
    }
    into.push_back(0);
}

} // namespace

void AppendTextKey(std::u16string_view text, Bytes& into) {
    appendKey(Text<char16_t>(text), into);
}

void AppendTextKey(std::span<const std::uint8_t> text, Bytes& into) {
    appendKey(text, into);
}

void AppendTextKeyStart(std::u16string_view whole, Bytes& into) {
    Text<char16_t> text = Text<char16_t>(whole);
    text = text.first(std::min(text.size(), IndexedTextLength));
    const auto unknown = [](char16_t unit) { return FindCharacterOrder(unit) == nullptr; };
    const auto known = std::find_if(text.begin(), text.end(), unknown) - text.begin();
    for (const char16_t unit : withoutTrailingBlanks(text.first(static_cast<std::size_t>(known)))) {
        const std::uint16_t weight = FindCharacterOrder(unit)->weight;
        if (weight > 0xFF)
            into.push_back(static_cast<std::uint8_t>(weight >> 8));
        if (weight != 0)
            into.push_back(static_cast<std::uint8_t>(weight));
    }
}

std::optional<char16_t> FindUnorderable(std::u16string_view text) {
    for (const char16_t unit : indexedPart(Text<char16_t>(text)))
        if (FindCharacterOrder(unit) == nullptr)
            return unit;
    return std::nullopt;
}

int CompareTexts(std::u16string_view textA, std::u16string_view textB) {
    const auto a = withoutTrailingBlanks(Text<char16_t>(textA));
    const auto b = withoutTrailingBlanks(Text<char16_t>(textB));
    std::size_t same = 0;
    while (same < a.size() && same < b.size() && a[same] == b[same])
        ++same;
    WeightWalk walkA{a, same};
    WeightWalk walkB{b, same};
    for (;;) {
        const std::uint8_t weightA = walkA.next();
        const std::uint8_t weightB = walkB.next();
        if (weightA != weightB)
            return weightA < weightB ? -1 : 1;
        if (weightA == 0)
            // The common prefix contributes the same to both.
            return walkA.plain && walkB.plain ? 0 : compareSecondary(a, b);
    }
}

} // namespace jet
