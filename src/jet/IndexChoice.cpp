#include "jet/IndexChoice.h"

#include "jet/Compare.h"
#include "jet/Error.h"
#include "jet/KeyEncoding.h"

#include <cmath>
#include <limits>
#include <map>

namespace jet {

namespace {

using sql::Comparison;
using sql::Expression;
using Kind = Expression::Kind;

// What the criterion says of one column. Bounds are taken as inclusive: the criterion is asked again.
struct Bounds {
    std::optional<Value> equal; // null stands for IS NULL
    std::optional<Value> low;
    std::optional<Value> high;
};

using BoundsByColumn = std::map<int, Bounds>;

template<typename Whole>
std::optional<Value> toWhole(double number) {
    if (number != std::floor(number) || number < std::numeric_limits<Whole>::min() ||
        number > std::numeric_limits<Whole>::max())
        return std::nullopt;
    return Value(static_cast<Whole>(number));
}

double numberOf(const Value& value) {
    if (const auto* whole = std::get_if<std::int32_t>(&value))
        return *whole;
    if (const auto* number = std::get_if<double>(&value))
        return *number;
    if (const auto* date = std::get_if<Date>(&value))
        return date->days;
    return std::get<bool>(value) ? -1 : 0;
}

std::optional<Value> numberAs(ColumnType type, double number) {
    constexpr double currencyLimit = 9e14; // ten thousandths fit a double's whole part below it
    switch (type) {
    case ColumnType::Boolean:
        return number == -1 || number == 0 ? std::optional<Value>(number != 0) : std::nullopt;
    case ColumnType::Byte:
        return toWhole<std::uint8_t>(number);
    case ColumnType::Integer:
        return toWhole<std::int16_t>(number);
    case ColumnType::Long:
        return toWhole<std::int32_t>(number);
    case ColumnType::Currency:
        if (std::fabs(number) > currencyLimit)
            return std::nullopt;
        return Value(Currency{std::llround(number * 10000)});
    case ColumnType::Single:
        return Value(static_cast<float>(number));
    case ColumnType::Double:
        return Value(number);
    case ColumnType::DateTime:
        return Value(Date{number});
    default:
        return std::nullopt;
    }
}

// The literal as a value of the column's own kind, if that is the same value.
std::optional<Value> literalAs(ColumnType type, const Value& literal) {
    if (IsNull(literal) || ClassOf(literal) != ClassOf(type))
        return std::nullopt;
    if (ClassOf(literal) == ValueClass::Text)
        return literal;
    if (ClassOf(literal) != ValueClass::Number)
        return std::nullopt;
    auto value = numberAs(type, numberOf(literal));
    return value && CompareValues(*value, literal) == 0 ? value : std::nullopt;
}

class Collector {
public:
    explicit Collector(const Table& table)
        : table_(table) {}

    void add(const Expression& expression) {
        const auto& operands = expression.operands;
        if (expression.kind == Kind::And) {
            for (const Expression& part : operands)
                add(part);
        } else if (expression.kind == Kind::Compare) {
            if (operands[0].kind == Kind::Field)
                compare(operands[0], expression.comparison, operands[1]);
            else if (operands[1].kind == Kind::Field)
                compare(operands[1], mirrored(expression.comparison), operands[0]);
        } else if (expression.kind == Kind::Between && operands[0].kind == Kind::Field) {
            compare(operands[0], Comparison::GreaterEqual, operands[1]);
            compare(operands[0], Comparison::LessEqual, operands[2]);
        } else if (expression.kind == Kind::IsNull && operands[0].kind == Kind::Field) {
            const int column = table_.definition().findColumn(operands[0].field);
            if (column >= 0)
                bounds_[column].equal = Value{};
        }
    }

    const BoundsByColumn& bounds() const { return bounds_; }

private:
    static Comparison mirrored(Comparison comparison) {
        switch (comparison) {
        case Comparison::Less:
            return Comparison::Greater;
        case Comparison::LessEqual:
            return Comparison::GreaterEqual;
        case Comparison::Greater:
            return Comparison::Less;
        case Comparison::GreaterEqual:
            return Comparison::LessEqual;
        default:
            return comparison;
        }
    }

    void compare(const Expression& field, Comparison comparison, const Expression& other) {
        const int column = table_.definition().findColumn(field.field);
        if (column < 0 || other.kind != Kind::Literal)
            return;
        const auto value =
            literalAs(table_.definition().columns[static_cast<std::size_t>(column)].type, other.literal);
        if (!value)
            return;
        Bounds& bounds = bounds_[column];
        if (comparison == Comparison::Equal)
            bounds.equal = value;
        else if (comparison == Comparison::Greater || comparison == Comparison::GreaterEqual)
            bounds.low = value;
        else if (comparison == Comparison::Less || comparison == Comparison::LessEqual)
            bounds.high = value;
    }

    const Table& table_;
    BoundsByColumn bounds_;
};

// Appends what bounds the keys of one column: the code of the bound, or the byte that every value that is not
// null begins with (comparisons never choose null).
void appendBound(const KeyEncoder::Part& part, const std::optional<Value>& value, Bytes& into) {
    constexpr std::uint8_t ascendingValue = 0x7F;
    constexpr std::uint8_t descendingValue = 0x80;
    if (value)
        AppendKey(part.type, part.ascending, *value, into);
    else
        into.push_back(part.ascending ? ascendingValue : descendingValue);
}

std::optional<IndexRange> rangeOf(const Table& table, int realIndex, const BoundsByColumn& bounds) {
    const RealIndex& index = table.definition().realIndexes[static_cast<std::size_t>(realIndex)];
    const KeyEncoder encoder(table.definition(), index);
    IndexRange range;
    range.realIndex = realIndex;
    for (const KeyEncoder::Part& part : encoder.parts()) {
        const auto found = bounds.find(part.column);
        if (found == bounds.end() ||
            !IsOrderKnown(table.definition().columns[static_cast<std::size_t>(part.column)]))
            break;
        const Bounds& bound = found->second;
        if (bound.equal && !(IsNull(*bound.equal) && index.ignoresNulls())) {
            AppendKey(part.type, part.ascending, *bound.equal, range.lower);
            ++range.equalColumns;
            continue;
        }
        if (!bound.low && !bound.high)
            break;
        range.upper = range.lower;
        appendBound(part, part.ascending ? bound.low : bound.high, range.lower);
        appendBound(part, part.ascending ? bound.high : bound.low, range.upper);
        range.bounded = true;
        return range;
    }
    range.upper = range.lower;
    return range.equalColumns > 0 ? std::optional(range) : std::nullopt;
}

int rank(const Table& table, const IndexRange& range) {
    const RealIndex& index = table.definition().realIndexes[static_cast<std::size_t>(range.realIndex)];
    const bool oneRow = index.isUnique() && range.equalColumns == static_cast<int>(index.columns.size());
    return (oneRow ? 2 * MaximumIndexColumns : 0) + 2 * range.equalColumns + (range.bounded ? 1 : 0);
}

} // namespace

std::optional<IndexRange> ChooseIndex(const Table& table, const Expression& where) {
    Collector collector(table);
    collector.add(where);
    std::optional<IndexRange> best;
    const int indexes = static_cast<int>(table.definition().realIndexes.size());
    for (int i = 0; i < indexes && !collector.bounds().empty(); ++i) {
        try {
            auto range = rangeOf(table, i, collector.bounds());
            if (range && (!best || rank(table, *range) > rank(table, *best)))
                best = std::move(range);
        } catch (const Error& error) {
            // A text that cannot be ordered is in no index; the walk over all rows answers.
            if (error.code() != ErrorNumber::InvalidArgument)
                throw;
        }
    }
    return best;
}

} // namespace jet
