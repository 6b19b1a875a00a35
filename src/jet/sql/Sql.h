// The engine's small SQL as a tree: SELECT, INSERT, UPDATE and DELETE on one table, and a predicate on its
// own.
//
//   SELECT * | field, ...  FROM table [WHERE predicate] [ORDER BY field [ASC | DESC], ...]
//   INSERT INTO table [(field, ...)] VALUES (operand, ...)
//   UPDATE table SET field = operand, ... [WHERE predicate]
//   DELETE [*] FROM table [WHERE predicate]
//
// A predicate is made of =, <>, <, <=, >, >=, [NOT] LIKE, IS [NOT] NULL, [NOT] BETWEEN .. AND, [NOT] IN (..),
// NOT, AND, OR and parentheses over fields and literals: numbers, 'text' or "text" (the quote doubled
// inside), #dates# (month/day/year or year-month-day, with or without a time), TRUE, FALSE, NULL. Names with
// blanks or signs are written in [brackets]; table.field is accepted. Keywords may be in any case.
#pragma once

#include "jet/base/Value.h"

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace jet::sql {

// Nesting of parentheses and NOTs; a deeper statement is refused before it can exhaust the stack.
inline constexpr int MaximumDepth = 100;
// Length of a statement in UTF-16 units.
inline constexpr std::size_t MaximumLength = 64000;

enum class Comparison { Equal, NotEqual, Less, LessEqual, Greater, GreaterEqual };

struct Expression {
    enum class Kind {
        Literal, // literal
        Field,   // table (may be empty), field
        Compare, // two operands and comparison
        Like,    // text, pattern
        IsNull,  // one operand
        Between, // operand, low, high
        In,      // operand, then the list
        Not,     // one operand
        And,     // two or more operands
        Or,      // two or more operands
    };
    Kind kind = Kind::Literal;
    Comparison comparison = Comparison::Equal;
    Value literal;
    std::u16string table;
    std::u16string field;
    std::vector<Expression> operands;
};

struct OrderTerm {
    std::u16string field;
    bool descending = false;
};

struct Select {
    std::vector<std::u16string> fields; // empty: all
    std::u16string table;
    std::optional<Expression> where;
    std::vector<OrderTerm> order;
};

struct Insert {
    std::u16string table;
    std::vector<std::u16string> fields; // empty: all, in display order
    std::vector<Expression> values;     // literals
};

struct Assignment {
    std::u16string field;
    Expression value; // a literal or a field
};

struct Update {
    std::u16string table;
    std::vector<Assignment> assignments;
    std::optional<Expression> where;
};

struct Delete {
    std::u16string table;
    std::optional<Expression> where;
};

using Statement = std::variant<Select, Insert, Update, Delete>;

// Both throw SyntaxError with the position. Cost: linear in the length of the text.
Statement ParseStatement(std::u16string_view text);
// The text after WHERE.
Expression ParsePredicate(std::u16string_view text);

} // namespace jet::sql
