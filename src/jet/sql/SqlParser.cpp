// Recursive descent, one token of lookahead. AND and OR chains become one node with many operands, so that
// only parentheses and NOT deepen the tree.
#include "jet/base/Error.h"
#include "jet/sql/Sql.h"
#include "jet/sql/SqlLexer.h"

#include <algorithm>
#include <array>
#include <type_traits>

namespace jet::sql {

namespace {

using Kind = Expression::Kind;

bool sameWord(std::u16string_view text, std::string_view word) {
    return std::equal(text.begin(), text.end(), word.begin(), word.end(),
                      [](char16_t a, char b) { return (a >= u'a' && a <= u'z' ? a - 0x20 : a) == b; });
}

constexpr std::array<std::string_view, 21> words = {
    "SELECT", "FROM",    "WHERE", "ORDER", "BY", "ASC", "DESC", "INSERT", "INTO", "VALUES", "UPDATE",
    "SET",    "BETWEEN", "IN",    "AND",   "OR", "NOT", "LIKE", "IS",     "NULL", "DELETE",
};

bool isWord(std::u16string_view text) {
    return std::any_of(words.begin(), words.end(), [text](auto word) { return sameWord(text, word); });
}

Expression node(Kind kind, std::vector<Expression> operands) {
    Expression result;
    result.kind = kind;
    result.operands = std::move(operands);
    return result;
}

Expression literal(Value value) {
    Expression result;
    result.literal = std::move(value);
    return result;
}

class Parser {
public:
    explicit Parser(std::u16string_view text)
        : text_(text)
        , lexer_(text) {
        if (text.size() > MaximumLength)
            throw Error(ErrorNumber::SyntaxError, "the statement is too long");
        advance();
    }

    Statement statement() {
        Statement result = anyStatement();
        acceptSign(u";");
        expectEnd();
        return result;
    }

    Expression condition() {
        Expression result = expression();
        expectEnd();
        return result;
    }

private:
    Statement anyStatement() {
        if (acceptWord("SELECT"))
            return select();
        if (acceptWord("INSERT"))
            return insert();
        if (acceptWord("UPDATE"))
            return update();
        if (acceptWord("DELETE"))
            return remove();
        fail("expected SELECT, INSERT, UPDATE or DELETE");
    }

    Select select() {
        Select result;
        if (!acceptSign(u"*"))
            result.fields = list([this] { return field().field; });
        expectWord("FROM");
        result.table = name();
        result.where = where();
        if (acceptWord("ORDER")) {
            expectWord("BY");
            result.order = list([this] {
                OrderTerm term{field().field, false};
                term.descending = !acceptWord("ASC") && acceptWord("DESC");
                return term;
            });
        }
        return result;
    }

    Insert insert() {
        Insert result;
        expectWord("INTO");
        result.table = name();
        if (acceptSign(u"(")) {
            result.fields = list([this] { return name(); });
            expectSign(u")");
        }
        expectWord("VALUES");
        expectSign(u"(");
        result.values = list([this] { return literalOperand(); });
        expectSign(u")");
        if (!result.fields.empty() && result.fields.size() != result.values.size())
            fail("as many values as fields are needed");
        return result;
    }

    Update update() {
        Update result;
        result.table = name();
        expectWord("SET");
        result.assignments = list([this] {
            Assignment assignment{field().field, {}};
            expectSign(u"=");
            assignment.value = atStartOfField() ? field() : literalOperand();
            return assignment;
        });
        result.where = where();
        return result;
    }

    Delete remove() {
        Delete result;
        acceptSign(u"*");
        expectWord("FROM");
        result.table = name();
        result.where = where();
        return result;
    }

    std::optional<Expression> where() {
        if (!acceptWord("WHERE"))
            return std::nullopt;
        return expression();
    }

    Expression expression() {
        return chain(Kind::Or, "OR",
                     [this] { return chain(Kind::And, "AND", [this] { return negation(); }); });
    }

    template<typename Part>
    Expression chain(Kind kind, std::string_view word, Part part) {
        Expression first = part();
        if (!atWord(word))
            return first;
        Expression result = node(kind, {});
        result.operands.push_back(std::move(first));
        while (acceptWord(word))
            result.operands.push_back(part());
        return result;
    }

    Expression negation() {
        if (!acceptWord("NOT"))
            return predicate();
        const Depth deeper(*this);
        return node(Kind::Not, {negation()});
    }

    Expression predicate() {
        Expression left = operand();
        if (acceptWord("IS")) {
            const bool negated = acceptWord("NOT");
            expectWord("NULL");
            return negatedIf(negated, node(Kind::IsNull, {std::move(left)}));
        }
        const bool negated = acceptWord("NOT");
        if (acceptWord("LIKE"))
            return negatedIf(negated, node(Kind::Like, {std::move(left), operand()}));
        if (acceptWord("BETWEEN")) {
            Expression low = operand();
            expectWord("AND");
            return negatedIf(negated, node(Kind::Between, {std::move(left), std::move(low), operand()}));
        }
        if (acceptWord("IN")) {
            expectSign(u"(");
            std::vector<Expression> operands = list([this] { return operand(); });
            operands.insert(operands.begin(), std::move(left));
            expectSign(u")");
            return negatedIf(negated, node(Kind::In, std::move(operands)));
        }
        if (negated)
            fail("expected LIKE, BETWEEN or IN");
        return comparison(std::move(left));
    }

    Expression comparison(Expression left) {
        constexpr std::pair<std::u16string_view, Comparison> signs[] = {
            {u"=", Comparison::Equal},      {u"<>", Comparison::NotEqual}, {u"<", Comparison::Less},
            {u"<=", Comparison::LessEqual}, {u">", Comparison::Greater},   {u">=", Comparison::GreaterEqual},
        };
        for (const auto& [sign, comparison] : signs) {
            if (!acceptSign(sign))
                continue;
            Expression result = node(Kind::Compare, {std::move(left), operand()});
            result.comparison = comparison;
            return result;
        }
        return left;
    }

    Expression operand() {
        if (acceptSign(u"(")) {
            const Depth deeper(*this);
            Expression inner = expression();
            expectSign(u")");
            return inner;
        }
        return atStartOfField() ? field() : literalOperand();
    }

    bool atStartOfField() const {
        if (token_.kind == Token::Kind::Word)
            return !isWord(token_.text) && !sameWord(token_.text, "TRUE") && !sameWord(token_.text, "FALSE");
        return token_.kind == Token::Kind::Name;
    }

    Expression literalOperand() {
        if (acceptWord("TRUE"))
            return literal(true);
        if (acceptWord("FALSE"))
            return literal(false);
        if (acceptWord("NULL"))
            return literal({});
        const bool negative = acceptSign(u"-");
        const bool sign = negative || acceptSign(u"+");
        if (token_.kind != Token::Kind::Literal)
            fail("expected a value");
        Value value = std::move(token_.literal);
        if (auto* whole = std::get_if<std::int32_t>(&value))
            *whole = negative ? -*whole : *whole;
        else if (auto* number = std::get_if<double>(&value))
            *number = negative ? -*number : *number;
        else if (sign)
            fail("expected a number");
        advance();
        return literal(std::move(value));
    }

    Expression field() {
        Expression result;
        result.kind = Kind::Field;
        result.field = name();
        if (acceptSign(u".")) {
            result.table = std::move(result.field);
            result.field = name();
        }
        return result;
    }

    std::u16string name() {
        if (token_.kind != Token::Kind::Name && (token_.kind != Token::Kind::Word || isWord(token_.text)))
            fail("expected a name");
        std::u16string result = std::move(token_.text);
        advance();
        return result;
    }

    template<typename Part>
    std::vector<std::invoke_result_t<Part>> list(Part part) {
        std::vector<std::invoke_result_t<Part>> result;
        do
            result.push_back(part());
        while (acceptSign(u","));
        return result;
    }

    static Expression negatedIf(bool negated, Expression inner) {
        if (!negated)
            return inner;
        Expression result = node(Kind::Not, {});
        result.operands.push_back(std::move(inner));
        return result;
    }

    struct Depth {
        explicit Depth(Parser& parser)
            : parser_(parser) {
            if (++parser_.depth_ > MaximumDepth)
                parser_.fail("the expression is nested too deeply");
        }
        ~Depth() { --parser_.depth_; }
        Depth(const Depth&) = delete;
        Depth& operator=(const Depth&) = delete;

    private:
        Parser& parser_;
    };

    bool atWord(std::string_view word) const {
        return token_.kind == Token::Kind::Word && sameWord(token_.text, word);
    }
    bool acceptWord(std::string_view word) {
        if (!atWord(word))
            return false;
        advance();
        return true;
    }
    void expectWord(std::string_view word) {
        if (!acceptWord(word))
            fail("expected " + std::string(word));
    }
    bool acceptSign(std::u16string_view sign) {
        if (token_.kind != Token::Kind::Sign || token_.text != sign)
            return false;
        advance();
        return true;
    }
    void expectSign(std::u16string_view sign) {
        if (!acceptSign(sign))
            fail("expected '" + ToUtf8(sign) + "'");
    }
    void expectEnd() const {
        if (token_.kind != Token::Kind::End)
            fail("expected nothing more");
    }
    void advance() { token_ = lexer_.next(); }
    [[noreturn]] void fail(const std::string& reason) const { SyntaxErrorAt(text_, token_.at, reason); }

    std::u16string_view text_;
    Lexer lexer_;
    Token token_;
    int depth_ = 0;
};

} // namespace

Statement ParseStatement(std::u16string_view text) {
    return Parser(text).statement();
}

Expression ParsePredicate(std::u16string_view text) {
    return Parser(text).condition();
}

} // namespace jet::sql
