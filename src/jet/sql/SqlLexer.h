// Splits a statement into tokens.
#pragma once

#include "jet/base/Value.h"

#include <string>
#include <string_view>

namespace jet::sql {

struct Token {
    enum class Kind {
        End,
        Word, // a keyword or a plain name
        Name, // [a name in brackets]
        Literal,
        Sign, // ( ) , . * ; = <> < <= > >= + -
    };
    Kind kind = Kind::End;
    std::u16string text; // words as written; names and texts without their quotes
    Value literal;
    std::size_t at = 0; // its position in the statement
};

// Throws SyntaxError on anything but a token: an open quote, a bad number or date, a strange sign.
class Lexer {
public:
    explicit Lexer(std::u16string_view text)
        : text_(text) {}
    Token next();

private:
    Token quoted(char16_t quote);
    Token bracketed();
    Token date();
    Token number();
    Token sign();
    [[noreturn]] void fail(std::size_t at, const char* reason) const;

    std::u16string_view text_;
    std::size_t at_ = 0;
};

// A SyntaxError that quotes the statement from `at` on.
[[noreturn]] void SyntaxErrorAt(std::u16string_view text, std::size_t at, const std::string& reason);

} // namespace jet::sql
