// The text after WHERE, bound to the columns of a table and ready to be evaluated on its rows.
#pragma once

#include "jet/record/TableDefinition.h"
#include "jet/sql/Like.h"
#include "jet/sql/Sql.h"
#include "jet/text/Compare.h"

namespace jet {

// One row as a predicate sees it.
class RowValues {
public:
    virtual ~RowValues() = default;
    // The value of the column at this position of TableDefinition::columns; valid until the row changes.
    virtual const Value& value(int column) = 0;
};

// The position of a field of a table. Throws UnknownField with its name, also for the name of another table.
int FindField(const TableDefinition& definition, std::u16string_view tableName, std::u16string_view table,
              std::u16string_view field);

class Predicate {
public:
    // Throws UnknownField for a name that is not a field of the table, DataTypeMismatch if kinds cannot be
    // compared (whatever the rows hold), SyntaxError for a bad pattern.
    Predicate(const TableDefinition& definition, std::u16string_view tableName,
              const sql::Expression& expression);

    // Comparisons with null are unknown; only rows for which the whole is true are selected.
    Truth evaluate(RowValues& row) const { return truth(root_, row); }
    bool chooses(RowValues& row) const { return evaluate(row) == Truth::True; }

private:
    using Kind = sql::Expression::Kind;
    struct Node {
        Kind kind = Kind::Literal;
        sql::Comparison comparison = sql::Comparison::Equal;
        ValueClass valueClass = ValueClass::Number;
        int column = -1;
        int scale = 0; // of a Numeric column
        Value literal;
        std::vector<LikePattern> pattern; // one, if the pattern is a literal
        std::vector<Node> operands;
    };
    static Node bind(const TableDefinition& definition, std::u16string_view tableName,
                     const sql::Expression& expression);
    static void bindLike(Node& node);
    static Truth truth(const Node& node, RowValues& row);
    static Truth chain(const Node& node, RowValues& row, Truth decisive);
    static Truth like(const Node& node, RowValues& row);
    static Truth compare(const Node& left, const Node& right, sql::Comparison comparison, RowValues& row);
    static const Value& operand(const Node& node, RowValues& row, Value& scratch);

    Node root_;
};

} // namespace jet
