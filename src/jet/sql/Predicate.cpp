#include "jet/sql/Predicate.h"

#include "jet/base/Error.h"
#include "jet/record/ValueText.h"

#include <algorithm>

namespace jet {

using sql::Comparison;
using sql::Expression;

int FindField(const TableDefinition& definition, std::u16string_view tableName, std::u16string_view table,
              std::u16string_view field) {
    const int column = table.empty() || SameName(table, tableName) ? definition.findColumn(field) : -1;
    if (column < 0)
        throw Error(ErrorNumber::UnknownField, ToUtf8(field));
    return column;
}

Predicate::Predicate(const TableDefinition& definition, std::u16string_view tableName,
                     const Expression& expression)
    : root_(bind(definition, tableName, expression)) {
    if (root_.valueClass != ValueClass::Number && root_.valueClass != ValueClass::Null)
        throw Error(ErrorNumber::DataTypeMismatch);
}

Predicate::Node Predicate::bind(const TableDefinition& definition, std::u16string_view tableName,
                                const Expression& expression) {
    Node node;
    node.kind = expression.kind;
    node.comparison = expression.comparison;
    for (const Expression& operand : expression.operands)
        node.operands.push_back(bind(definition, tableName, operand));
    switch (expression.kind) {
    case Kind::Literal:
        node.literal = expression.literal;
        node.valueClass = ClassOf(node.literal);
        break;
    case Kind::Field: {
        node.column = FindField(definition, tableName, expression.table, expression.field);
        const Column& column = definition.columns[static_cast<std::size_t>(node.column)];
        node.valueClass = ClassOf(column.type);
        node.scale = column.type == ColumnType::Numeric ? column.scale() : 0;
        break;
    }
    case Kind::Like:
        bindLike(node);
        break;
    case Kind::Compare:
    case Kind::Between:
    case Kind::In: {
        const ValueClass kind = node.operands.front().valueClass;
        for (const Node& other : node.operands) {
            if (other.valueClass != kind && other.valueClass != ValueClass::Null && kind != ValueClass::Null)
                throw Error(ErrorNumber::DataTypeMismatch);
        }
        break;
    }
    case Kind::And:
    case Kind::Or:
    case Kind::Not:
        for (const Node& operand : node.operands) {
            if (operand.valueClass != ValueClass::Number && operand.valueClass != ValueClass::Null)
                throw Error(ErrorNumber::DataTypeMismatch);
        }
        break;
    case Kind::IsNull:
        break;
    }
    return node;
}

void Predicate::bindLike(Node& node) {
    const Node& text = node.operands[0];
    const Node& pattern = node.operands[1];
    if (text.valueClass == ValueClass::Binary || text.valueClass == ValueClass::Uuid ||
        (pattern.valueClass != ValueClass::Text && pattern.valueClass != ValueClass::Null))
        throw Error(ErrorNumber::DataTypeMismatch);
    if (const auto* literal = std::get_if<std::u16string>(&pattern.literal))
        node.pattern.emplace_back(*literal);
}

Truth Predicate::truth(const Node& node, RowValues& row) {
    switch (node.kind) {
    case Kind::And:
        return chain(node, row, Truth::False);
    case Kind::Or:
        return chain(node, row, Truth::True);
    case Kind::Not:
        return Not(truth(node.operands[0], row));
    case Kind::Compare:
        return compare(node.operands[0], node.operands[1], node.comparison, row);
    case Kind::Like:
        return like(node, row);
    case Kind::Between: {
        const Truth above = compare(node.operands[0], node.operands[1], Comparison::GreaterEqual, row);
        return above == Truth::False
                   ? above
                   : std::min(above, compare(node.operands[0], node.operands[2], Comparison::LessEqual, row));
    }
    case Kind::In: {
        Truth result = Truth::False;
        for (std::size_t i = 1; i < node.operands.size() && result != Truth::True; ++i)
            result = std::max(result, compare(node.operands[0], node.operands[i], Comparison::Equal, row));
        return result;
    }
    case Kind::IsNull: {
        Value scratch;
        return ToTruth(IsNull(operand(node.operands[0], row, scratch)));
    }
    case Kind::Literal:
    case Kind::Field:
        break;
    }
    Value scratch;
    const Value& value = operand(node, row, scratch);
    return IsNull(value) ? Truth::Unknown : ToTruth(CompareValues(value, false) != 0);
}

// AND is the minimum of its parts, OR the maximum; a decisive value ends the loop.
Truth Predicate::chain(const Node& node, RowValues& row, Truth decisive) {
    Truth result = Not(decisive);
    for (const Node& part : node.operands) {
        const Truth one = truth(part, row);
        result = decisive == Truth::False ? std::min(result, one) : std::max(result, one);
        if (result == decisive)
            break;
    }
    return result;
}

Truth Predicate::like(const Node& node, RowValues& row) {
    Value textScratch;
    Value patternScratch;
    const Value& text = operand(node.operands[0], row, textScratch);
    const Value& pattern = operand(node.operands[1], row, patternScratch);
    if (IsNull(text) || IsNull(pattern))
        return Truth::Unknown;
    const auto matches = [&](std::u16string_view subject) {
        return ToTruth(node.pattern.empty() ? LikePattern(std::get<std::u16string>(pattern)).matches(subject)
                                            : node.pattern.front().matches(subject));
    };
    if (const auto* words = std::get_if<std::u16string>(&text))
        return matches(*words);
    std::string digits;
    AppendValueText(text, 0, digits);
    return matches(ToUtf16(digits));
}

Truth Predicate::compare(const Node& left, const Node& right, Comparison comparison, RowValues& row) {
    Value leftScratch;
    Value rightScratch;
    const Value& a = operand(left, row, leftScratch);
    const Value& b = operand(right, row, rightScratch);
    if (IsNull(a) || IsNull(b))
        return Truth::Unknown;
    const int order = CompareValues(a, b);
    switch (comparison) {
    case Comparison::Equal:
        return ToTruth(order == 0);
    case Comparison::NotEqual:
        return ToTruth(order != 0);
    case Comparison::Less:
        return ToTruth(order < 0);
    case Comparison::LessEqual:
        return ToTruth(order <= 0);
    case Comparison::Greater:
        return ToTruth(order > 0);
    case Comparison::GreaterEqual:
        return ToTruth(order >= 0);
    }
    return Truth::Unknown;
}

// A comparison used as a value is a Boolean, or null when unknown.
const Value& Predicate::operand(const Node& node, RowValues& row, Value& scratch) {
    if (node.kind == Kind::Literal)
        return node.literal;
    if (node.kind == Kind::Field) {
        const Value& value = row.value(node.column);
        const auto* numeric = std::get_if<Numeric>(&value);
        if (numeric == nullptr)
            return value;
        scratch = ToDouble(*numeric, node.scale);
        return scratch;
    }
    const Truth result = truth(node, row);
    if (result == Truth::Unknown)
        scratch = Value{};
    else
        scratch = result == Truth::True;
    return scratch;
}

} // namespace jet
