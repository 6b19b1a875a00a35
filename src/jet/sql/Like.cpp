#include "jet/sql/Like.h"

#include "jet/base/Error.h"
#include "jet/text/Collation.h"
#include "jet/text/CollationTable.h"

#include <algorithm>

namespace jet {

namespace {

int compare(char16_t a, char16_t b) {
    const int order = a == b ? 0 : CompareTexts({&a, 1}, {&b, 1});
    if (order == 0 && a != b && (a == u' ' || b == u' '))
        return a == u' ' ? 1 : -1; // texts compare blanks and ignored characters as equal
    return order;
}

// Whether they are equal; without a call for the commonest characters.
bool same(char16_t a, char16_t b) {
    const bool plain = a < PlainEnd && b < PlainEnd && PlainWeights[a] != 0 && PlainWeights[b] != 0;
    if (a == b || !plain || a == u' ' || b == u' ')
        return compare(a, b) == 0;
    return PlainWeights[a] == PlainWeights[b];
}

} // namespace

LikePattern::LikePattern(std::u16string_view pattern) {
    using Kind = Element::Kind;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        const char16_t c = pattern[i];
        if (c == u'*') {
            if (elements_.empty() || elements_.back().kind != Kind::Any)
                elements_.push_back({Kind::Any, 0, {}});
        } else if (c == u'?') {
            elements_.push_back({Kind::One, 0, {}});
        } else if (c == u'#') {
            elements_.push_back({Kind::Digit, 0, {}});
        } else if (c != u'[') {
            elements_.push_back({Kind::Character, c, {}});
        } else {
            const std::size_t end = pattern.find(u']', i + 1);
            if (end == std::u16string_view::npos)
                throw Error(ErrorNumber::SyntaxError, "a set without ']' in the pattern of LIKE");
            std::u16string_view set = pattern.substr(i + 1, end - i - 1);
            i = end;
            if (set.empty()) // matches nothing
                continue;
            const bool outside = set.size() > 1 && set.front() == u'!';
            set.remove_prefix(outside ? 1 : 0);
            Element element{outside ? Kind::OutsideSet : Kind::Set, 0, {}};
            for (std::size_t k = 0; k < set.size(); ++k) {
                const bool range = k + 2 < set.size() && set[k + 1] == u'-';
                element.ranges.emplace_back(set[k], set[range ? k + 2 : k]);
                if (range && compare(set[k], set[k + 2]) > 0)
                    throw Error(ErrorNumber::SyntaxError, "a range that runs backwards in a pattern of LIKE");
                k += range ? 2 : 0;
            }
            elements_.push_back(std::move(element));
        }
    }
}

bool LikePattern::fits(const Element& element, char16_t c) {
    using Kind = Element::Kind;
    switch (element.kind) {
    case Kind::Character:
        return same(element.character, c);
    case Kind::Digit:
        return c >= u'0' && c <= u'9';
    case Kind::Set:
    case Kind::OutsideSet: {
        const bool inside =
            std::any_of(element.ranges.begin(), element.ranges.end(), [c](const Range& range) {
                return compare(range.first, c) <= 0 && compare(c, range.second) <= 0;
            });
        return inside == (element.kind == Kind::Set);
    }
    default:
        return true;
    }
}

bool LikePattern::matches(std::u16string_view text) const {
    // One place to backtrack to is enough: a later * always works at least as well as an earlier one.
    std::size_t at = 0;
    std::size_t element = 0;
    std::size_t afterAny = elements_.size() + 1;
    std::size_t resume = 0;
    while (at < text.size()) {
        if (element < elements_.size() && elements_[element].kind == Element::Kind::Any) {
            afterAny = ++element;
            resume = at;
        } else if (element < elements_.size() && fits(elements_[element], text[at])) {
            ++element;
            ++at;
        } else if (afterAny <= elements_.size()) {
            element = afterAny;
            at = ++resume;
        } else {
            return false;
        }
    }
    return std::all_of(elements_.begin() + static_cast<std::ptrdiff_t>(element), elements_.end(),
                       [](const Element& rest) { return rest.kind == Element::Kind::Any; });
}

std::u16string LikePattern::start() const {
    std::u16string text;
    for (const Element& element : elements_) {
        if (element.kind != Element::Kind::Character)
            break;
        text += element.character;
    }
    return text;
}

} // namespace jet
