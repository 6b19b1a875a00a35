#include "jet/sql/AccessPath.h"

#include "jet/base/Error.h"
#include "jet/index/KeyEncoding.h"
#include "jet/sql/Like.h"
#include "jet/text/Compare.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

namespace jet {

namespace {

using sql::Comparison;
using sql::Expression;
using Kind = Expression::Kind;

// The predicate's constraints on one column. Bounds are inclusive: the predicate is evaluated again anyway.
struct Bounds {
    std::vector<Value> equal;            // one of these; null stands for IS NULL
    std::optional<std::u16string> start; // of the text, in any case
    std::optional<Value> low;
    std::optional<Value> high;
};

using BoundsByColumn = std::map<int, Bounds>;

// Limits on values and index ranges; beyond them all rows are scanned.
constexpr std::size_t MostValues = 256;

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
    constexpr double currencyLimit = 9e14; // below it a double holds ten thousandths exactly as whole numbers
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

// The literal converted to the column's own kind, if that is the same value.
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
        } else if (operands.empty() || operands[0].kind != Kind::Field) {
            return;
        } else if (expression.kind == Kind::IsNull) {
            give(operands[0], {Value{}});
        } else if (expression.kind == Kind::In) {
            in(operands);
        } else if (expression.kind == Kind::Like) {
            like(operands[0], operands[1].literal);
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

    // The constraints on a column, and the kind of its values.
    Bounds* boundsOf(const Expression& field, ColumnType& type) {
        const int column = table_.definition().findColumn(field.field);
        if (column < 0)
            return nullptr;
        type = table_.definition().columns[static_cast<std::size_t>(column)].type;
        return &bounds_[column];
    }

    // Fewer values are better: each of these conditions holds.
    void give(const Expression& field, std::vector<Value> values) {
        ColumnType type{};
        Bounds* bounds = boundsOf(field, type);
        if (bounds != nullptr && (bounds->equal.empty() || values.size() < bounds->equal.size()))
            bounds->equal = std::move(values);
    }

    void in(const std::vector<Expression>& operands) {
        ColumnType type{};
        if (operands.size() > MostValues || boundsOf(operands[0], type) == nullptr)
            return;
        std::vector<Value> values;
        for (std::size_t i = 1; i < operands.size(); ++i) {
            if (operands[i].kind != Kind::Literal)
                return;
            if (IsNull(operands[i].literal))
                continue; // equal to nothing
            auto value = literalAs(type, operands[i].literal);
            if (!value)
                return;
            values.push_back(std::move(*value));
        }
        if (!values.empty())
            give(operands[0], std::move(values));
    }

    void like(const Expression& field, const Value& pattern) {
        ColumnType type{};
        const auto* text = std::get_if<std::u16string>(&pattern);
        Bounds* bounds = text == nullptr ? nullptr : boundsOf(field, type);
        if (bounds == nullptr || ClassOf(type) != ValueClass::Text)
            return;
        std::u16string start = LikePattern(*text).start();
        if (!start.empty() && (!bounds->start || bounds->start->size() < start.size()))
            bounds->start = std::move(start);
    }

    void compare(const Expression& field, Comparison comparison, const Expression& other) {
        ColumnType type{};
        Bounds* known = other.kind == Kind::Literal ? boundsOf(field, type) : nullptr;
        if (known == nullptr)
            return;
        const auto value = literalAs(type, other.literal);
        if (!value)
            return;
        Bounds& bounds = *known;
        if (comparison == Comparison::Equal)
            give(field, {*value});
        else if (comparison == Comparison::Greater || comparison == Comparison::GreaterEqual)
            bounds.low = value;
        else if (comparison == Comparison::Less || comparison == Comparison::LessEqual)
            bounds.high = value;
    }

    const Table& table_;
    BoundsByColumn bounds_;
};

// Appends the bound on the keys of one column: the code of the bound, or the byte with which every value
// except null begins (comparisons never match null).
void appendBound(const KeyEncoder::Part& part, const std::optional<Value>& value, Bytes& into) {
    constexpr std::uint8_t ascendingValue = 0x7F;
    constexpr std::uint8_t descendingValue = 0x80;
    if (value)
        AppendKey(part.type, part.ascending, *value, into);
    else
        into.push_back(part.ascending ? ascendingValue : descendingValue);
}

void appendStart(const KeyEncoder::Part& part, const std::u16string& text, Bytes& into) {
    appendBound(part, std::nullopt, into);
    AppendTextStart(part.ascending, text, into);
}

// Appends each of the codes to the beginnings of each range.
void multiply(std::vector<IndexRange::Stretch>& stretches, const KeyEncoder::Part& part,
              const std::vector<Value>& values) {
    std::vector<IndexRange::Stretch> longer;
    for (const IndexRange::Stretch& stretch : stretches) {
        for (const Value& value : values) {
            longer.push_back(stretch);
            AppendKey(part.type, part.ascending, value, longer.back().lower);
        }
    }
    stretches.swap(longer);
}

std::optional<IndexRange> rangeOf(const Table& table, int realIndex, const BoundsByColumn& bounds) {
    const RealIndex& index = table.definition().realIndexes[static_cast<std::size_t>(realIndex)];
    const KeyEncoder encoder(table.definition(), index);
    IndexRange range;
    range.realIndex = realIndex;
    range.stretches.emplace_back();
    const Bounds* last = nullptr; // of the column after those with known values
    for (const KeyEncoder::Part& part : encoder.parts()) {
        const auto found = bounds.find(part.column);
        if (found == bounds.end() ||
            !IsOrderKnown(table.definition().columns[static_cast<std::size_t>(part.column)]))
            break;
        const Bounds& bound = found->second;
        const bool isNull = bound.equal.size() == 1 && IsNull(bound.equal.front());
        if (!bound.equal.empty() && !(isNull && index.ignoresNulls()) &&
            bound.equal.size() * range.stretches.size() <= MostValues) {
            multiply(range.stretches, part, bound.equal);
            ++range.equalColumns;
            continue;
        }
        last = bound.start || bound.low || bound.high ? &bound : nullptr;
        break;
    }
    if (range.equalColumns == 0 && last == nullptr)
        return std::nullopt;
    range.bounded = last != nullptr;
    for (IndexRange::Stretch& stretch : range.stretches) {
        stretch.upper = stretch.lower;
        if (last == nullptr)
            continue;
        const KeyEncoder::Part& part = encoder.parts()[static_cast<std::size_t>(range.equalColumns)];
        if (last->start) {
            appendStart(part, *last->start, stretch.lower);
            appendStart(part, *last->start, stretch.upper);
        } else {
            appendBound(part, part.ascending ? last->low : last->high, stretch.lower);
            appendBound(part, part.ascending ? last->high : last->low, stretch.upper);
        }
    }
    // No code is a prefix of another, so ranges are either disjoint or equal.
    auto& all = range.stretches;
    std::sort(all.begin(), all.end(), [](const auto& a, const auto& b) { return a.lower < b.lower; });
    all.erase(std::unique(all.begin(), all.end()), all.end());
    return range;
}

int rank(const Table& table, const IndexRange& range) {
    const RealIndex& index = table.definition().realIndexes[static_cast<std::size_t>(range.realIndex)];
    const bool oneRow = index.isUnique() && range.equalColumns == static_cast<int>(index.columns.size());
    return (oneRow ? 2 * MaximumIndexColumns : 0) + 2 * range.equalColumns + (range.bounded ? 1 : 0);
}

} // namespace

std::optional<IndexRange> ChooseAccessPath(const Table& table, const Expression& where) {
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
            // A text that cannot be ordered is in no index; a scan of all rows answers.
            if (error.code() != ErrorNumber::InvalidArgument)
                throw;
        }
    }
    return best;
}

std::optional<IndexWalk> ChooseWalk(const Table& table, std::span<const SortTerm> order) {
    const TableDefinition& definition = table.definition();
    for (std::size_t i = 0; i < definition.realIndexes.size() && !order.empty(); ++i) {
        const RealIndex& index = definition.realIndexes[i];
        const KeyEncoder encoder(definition, index);
        if (index.ignoresNulls() || encoder.parts().size() != order.size())
            continue;
        const bool backward = encoder.parts()[0].ascending == order[0].descending;
        bool serves = true;
        for (std::size_t at = 0; at < order.size(); ++at) {
            const KeyEncoder::Part& part = encoder.parts()[at];
            const Column& column = definition.columns[static_cast<std::size_t>(part.column)];
            // A descending code of a Numeric is not the inverse of the ascending one.
            serves = serves && part.column == order[at].column && IsOrderKnown(column) &&
                     (part.ascending == order[at].descending) == backward &&
                     !(backward && part.type == ColumnType::Numeric);
        }
        if (serves)
            return IndexWalk{static_cast<int>(i), backward};
    }
    return std::nullopt;
}

} // namespace jet
