#include "jet/transfer/JsonLine.h"

#include "jet/base/Error.h"
#include "jet/base/Value.h"

#include <algorithm>
#include <charconv>

namespace jet {

namespace {

class Reader {
public:
    explicit Reader(std::string_view text)
        : text_(text) {}

    void object(std::vector<JsonMember>& members) {
        members.clear();
        expect('{');
        if (!accept('}')) {
            do
                members.push_back(member());
            while (accept(','));
            expect('}');
        }
        blanks();
        if (at_ != text_.size())
            fail("nothing more");
    }

private:
    JsonMember member() {
        JsonMember result;
        result.key = string();
        expect(':');
        blanks();
        const char c = at_ < text_.size() ? text_[at_] : '\0';
        if (c == '"') {
            result.kind = JsonMember::Kind::Text;
            result.text = string();
        } else if (c == '-' || (c >= '0' && c <= '9')) {
            result.kind = JsonMember::Kind::Number;
            const std::size_t end = std::min(text_.find_first_not_of("+-.0123456789eE", at_), text_.size());
            result.text = text_.substr(at_, end - at_);
            at_ = end;
        } else if (!word("null")) {
            result.kind = JsonMember::Kind::Flag;
            result.text = c == 't' ? "true" : "false";
            if (!word(result.text))
                fail("a text, a number, true, false or null");
        }
        return result;
    }

    std::string string() {
        expect('"');
        std::string result;
        for (;;) {
            if (at_ == text_.size() || static_cast<unsigned char>(text_[at_]) < 0x20)
                fail("a closing quote");
            const char c = text_[at_++];
            if (c == '"')
                return result;
            if (c == '\\')
                escape(result);
            else
                result += c;
        }
    }

    void escape(std::string& into) {
        constexpr std::string_view letters = "\"\\/bfnrt";
        constexpr std::string_view meanings = "\"\\/\b\f\n\r\t";
        const char c = at_ < text_.size() ? text_[at_++] : '\0';
        if (const std::size_t i = letters.find(c); i != std::string_view::npos) {
            into += meanings[i];
            return;
        }
        if (c != 'u')
            fail("an escape");
        // All consecutive escapes together, so that surrogates pair up.
        std::u16string units(1, unit());
        while (text_.substr(at_).starts_with("\\u")) {
            at_ += 2;
            units += unit();
        }
        into += ToUtf8(units);
    }

    char16_t unit() {
        unsigned value = 0;
        const char* begin = text_.data() + at_;
        if (text_.size() - at_ < 4 || std::from_chars(begin, begin + 4, value, 16).ptr != begin + 4)
            fail("four hexadecimal digits");
        at_ += 4;
        return static_cast<char16_t>(value);
    }

    void blanks() { at_ = std::min(text_.find_first_not_of(" \t\r", at_), text_.size()); }
    bool accept(char c) {
        blanks();
        if (at_ == text_.size() || text_[at_] != c)
            return false;
        ++at_;
        return true;
    }
    void expect(char c) {
        if (!accept(c))
            fail(std::string("'") + c + "'");
    }
    bool word(std::string_view expected) {
        if (!text_.substr(at_).starts_with(expected))
            return false;
        at_ += expected.size();
        return true;
    }
    [[noreturn]] void fail(const std::string& expected) const {
        throw Error(ErrorNumber::InvalidArgument, "no JSON object of plain values: expected " + expected +
                                                      " at column " + std::to_string(at_ + 1));
    }

    std::string_view text_;
    std::size_t at_ = 0;
};

} // namespace

void AppendJsonText(std::string_view text, std::string& into) {
    constexpr char hex[] = "0123456789abcdef";
    into += '"';
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            into += '\\';
            into += c;
        } else if (c == '\n') {
            into += "\\n";
        } else if (static_cast<unsigned char>(c) < 0x20) {
            into += "\\u00";
            into += hex[c >> 4];
            into += hex[c & 15];
        } else {
            into += c;
        }
    }
    into += '"';
}

void ParseJsonLine(std::string_view line, std::vector<JsonMember>& members) {
    Reader(line).object(members);
}

} // namespace jet
