#include "jet/Collation.h"

#include "jet/CollationTable.h"
#include "jet/Error.h"

#include <cstdio>

namespace jet {

namespace {

using Kind = CharacterOrder::Kind;

constexpr std::uint8_t EndOfWeights = 0x01;
constexpr std::uint8_t NoAccent = 0x02;
constexpr std::uint8_t MinorMark = 0x06;
constexpr std::uint8_t UnknownWeight = 0xFF; // above all weights, for comparing only

// Characters whose order is not known weigh FF and their own two bytes.
constexpr CharacterOrder Unknown{Kind::Letter, 1, 0, 0};

const CharacterOrder& orderOf(char16_t unit) {
    const CharacterOrder* order = FindCharacterOrder(unit);
    return order != nullptr ? *order : Unknown;
}

std::u16string_view withoutTrailingBlanks(std::u16string_view text) {
    const std::size_t last = text.find_last_not_of(u' ');
    return text.substr(0, last == std::u16string_view::npos ? 0 : last + 1);
}

std::u16string_view indexedPart(std::u16string_view text) {
    return withoutTrailingBlanks(text.substr(0, IndexedTextLength));
}

// Appends one accent byte for each position of the text up to its last accented one.
void appendAccents(std::u16string_view text, Bytes& into) {
    const std::size_t start = into.size();
    std::size_t covered = 0; // positions that have a byte
    std::size_t positions = 0;
    const auto coverUpTo = [&](std::size_t position) {
        if (covered < position) {
            into.insert(into.end(), position - covered, NoAccent);
            covered = position;
        }
    };
    for (const char16_t unit : text) {
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
struct MinorWalk {
    std::u16string_view text;
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

// Walks over the weight bytes of a text; 0 at its end, as the end of the weights is below every weight.
struct WeightWalk {
    std::u16string_view text;
    std::size_t at = 0;
    std::uint8_t pending[2] = {};
    int waiting = 0;
    bool plain = true; // nothing but letters without accents was met

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

int compareSecondary(std::u16string_view a, std::u16string_view b) {
    Bytes accentsA;
    Bytes accentsB;
    appendAccents(a, accentsA);
    appendAccents(b, accentsB);
    if (accentsA != accentsB)
        return accentsA < accentsB ? -1 : 1;
    MinorWalk walkA{a};
    MinorWalk walkB{b};
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

} // namespace

void AppendTextKey(std::u16string_view whole, Bytes& into) {
    const std::u16string_view text = indexedPart(whole);
    const std::size_t start = into.size();
    bool accents = false;
    bool minor = false;
    for (const char16_t unit : text) {
        const CharacterOrder* order = FindCharacterOrder(unit);
        if (order == nullptr) {
            into.resize(start);
            char code[8];
            std::snprintf(code, sizeof code, "U+%04X", static_cast<unsigned>(unit));
            throw Error(ErrorNumber::InvalidArgument,
                        std::string("the character ") + code + " cannot be ordered in an index");
        }
        if (order->weight > 0xFF)
            into.push_back(static_cast<std::uint8_t>(order->weight >> 8));
        if (order->weight != 0)
            into.push_back(static_cast<std::uint8_t>(order->weight));
        accents |= order->kind == Kind::Accented || order->kind == Kind::Mark;
        minor |= order->kind == Kind::Minor;
    }
    into.push_back(EndOfWeights);
    if (accents)
        appendAccents(text, into);
    if (minor) {
        into.insert(into.end(), 3, EndOfWeights);
        for (MinorWalk walk{text}; walk.next();) {
            const std::size_t place = 0x8000 | (7 + 4 * walk.positions);
            into.insert(into.end(), {static_cast<std::uint8_t>(place >> 8), static_cast<std::uint8_t>(place),
                                     MinorMark, static_cast<std::uint8_t>(walk.code)});
        }
    }
    into.push_back(0);
}

std::optional<char16_t> FindUnorderable(std::u16string_view text) {
    for (const char16_t unit : indexedPart(text))
        if (FindCharacterOrder(unit) == nullptr)
            return unit;
    return std::nullopt;
}

int CompareTexts(std::u16string_view a, std::u16string_view b) {
    a = withoutTrailingBlanks(a);
    b = withoutTrailingBlanks(b);
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
            // What the common beginning brings is the same for both.
            return walkA.plain && walkB.plain ? 0 : compareSecondary(a, b);
    }
}

} // namespace jet
