#include "jet/sql/SqlLexer.h"

#include "jet/base/Error.h"
#include "jet/text/DateText.h"

#include <charconv>
#include <limits>

namespace jet::sql {

namespace {

bool isBlank(char16_t c) {
    return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n' || c == 0xA0;
}

bool isDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}

bool isNameStart(char16_t c) {
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || c == u'_' || c > 0xA0;
}

} // namespace

void SyntaxErrorAt(std::u16string_view text, std::size_t at, const std::string& reason) {
    constexpr std::size_t shown = 40;
    std::string detail = reason;
    if (at >= text.size())
        detail += " at the end";
    else
        detail.append(" at '").append(ToUtf8(text.substr(at, shown))).append("'");
    throw Error(ErrorNumber::SyntaxError, detail);
}

void Lexer::fail(std::size_t at, const char* reason) const {
    SyntaxErrorAt(text_, at, reason);
}

Token Lexer::next() {
    while (at_ < text_.size() && isBlank(text_[at_]))
        ++at_;
    if (at_ == text_.size())
        return {Token::Kind::End, {}, {}, at_};
    const char16_t c = text_[at_];
    if (c == u'\'' || c == u'"')
        return quoted(c);
    if (c == u'[')
        return bracketed();
    if (c == u'#')
        return date();
    if (isDigit(c) || (c == u'.' && at_ + 1 < text_.size() && isDigit(text_[at_ + 1])))
        return number();
    if (!isNameStart(c))
        return sign();
    const std::size_t from = at_;
    while (at_ < text_.size() && (isNameStart(text_[at_]) || isDigit(text_[at_])))
        ++at_;
    return {Token::Kind::Word, std::u16string(text_.substr(from, at_ - from)), {}, from};
}

Token Lexer::quoted(char16_t quote) {
    const std::size_t from = at_++;
    std::u16string text;
    for (;; ++at_) {
        if (at_ == text_.size())
            fail(from, "a text without its closing quote");
        if (text_[at_] == quote) {
            if (at_ + 1 == text_.size() || text_[at_ + 1] != quote)
                break;
            ++at_;
        }
        text += text_[at_];
    }
    ++at_;
    return {Token::Kind::Literal, {}, std::move(text), from};
}

Token Lexer::bracketed() {
    const std::size_t from = at_;
    const std::size_t end = text_.find(u']', from);
    if (end == std::u16string_view::npos || end == from + 1)
        fail(from, "a name without its closing bracket");
    at_ = end + 1;
    return {Token::Kind::Name, std::u16string(text_.substr(from + 1, end - from - 1)), {}, from};
}

Token Lexer::date() {
    const std::size_t from = at_;
    const std::size_t end = text_.find(u'#', from + 1);
    const auto date = end == std::u16string_view::npos
                          ? std::nullopt
                          : ParseDateLiteral(text_.substr(from + 1, end - from - 1));
    if (!date)
        fail(from, "a date that is none");
    at_ = end + 1;
    return {Token::Kind::Literal, {}, *date, from};
}

Token Lexer::number() {
    const std::size_t from = at_;
    std::string digits;
    bool whole = true;
    for (; at_ < text_.size(); ++at_) {
        const char16_t c = text_[at_];
        const bool exponent = c == u'e' || c == u'E';
        const bool signOfExponent =
            (c == u'+' || c == u'-') && !digits.empty() && (digits.back() == 'e' || digits.back() == 'E');
        if (!isDigit(c) && c != u'.' && !exponent && !signOfExponent)
            break;
        whole = whole && isDigit(c);
        digits += static_cast<char>(c);
    }
    if (at_ < text_.size() && isNameStart(text_[at_]))
        fail(from, "a number that is none");
    double value = 0;
    const char* end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, value);
    if (error != std::errc{} || stop != end)
        fail(from, "a number that is none");
    if (whole && value <= std::numeric_limits<std::int32_t>::max())
        return {Token::Kind::Literal, {}, static_cast<std::int32_t>(value), from};
    return {Token::Kind::Literal, {}, value, from};
}

Token Lexer::sign() {
    const std::size_t from = at_;
    const std::u16string_view rest = text_.substr(from);
    for (const std::u16string_view two : {u"<>", u"<=", u">="}) {
        if (rest.starts_with(two)) {
            at_ += 2;
            return {Token::Kind::Sign, std::u16string(two), {}, from};
        }
    }
    if (std::u16string_view(u"(),.*;=<>+-").find(rest.front()) == std::u16string_view::npos)
        fail(from, "a sign that has no meaning here");
    ++at_;
    return {Token::Kind::Sign, std::u16string(1, rest.front()), {}, from};
}

} // namespace jet::sql
