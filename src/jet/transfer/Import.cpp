#include "jet/base/Error.h"
#include "jet/record/ValueText.h"
#include "jet/transfer/Csv.h"
#include "jet/transfer/JsonLine.h"
#include "jet/transfer/Transfer.h"

#include <algorithm>

namespace jet {

namespace {

int findColumn(const Table& table, std::string_view name) {
    const int column = table.definition().findColumn(ToUtf16(name));
    if (column < 0)
        throw Error(ErrorNumber::ItemNotFound, "field " + std::string(name));
    return column;
}

const Column& columnAt(const Table& table, int column) {
    return table.definition().columns[static_cast<std::size_t>(column)];
}

[[noreturn]] void failAtLine(std::uint32_t line, const Error& error) {
    std::string detail = "line " + std::to_string(line);
    if (const std::string reason = error.detail(); !reason.empty())
        detail.append(": ").append(reason);
    throw Error(error.code(), detail);
}

// Reads one row of the input at a time.
class CsvRows {
public:
    CsvRows(const Table& table, TextInput& input)
        : table_(table)
        , input_(input)
        , reader_(input) {
        if (!reader_.next(fields_))
            throw Error(ErrorNumber::InvalidArgument, "a heading line of column names is needed");
        for (const CsvField& heading : fields_) {
            const int column = findColumn(table, heading.text);
            if (std::find(columns_.begin(), columns_.end(), column) != columns_.end())
                throw Error(ErrorNumber::FieldExists, heading.text);
            columns_.push_back(column);
        }
    }
    // `line`: where the row begins.
    bool next(std::vector<Value>& values, std::uint32_t& line) {
        line = input_.line();
        if (!reader_.next(fields_))
            return false;
        if (fields_.size() != columns_.size())
            throw Error(ErrorNumber::InvalidArgument, std::to_string(fields_.size()) + " fields instead of " +
                                                          std::to_string(columns_.size()));
        for (std::size_t i = 0; i < fields_.size(); ++i) {
            if (!fields_[i].isNull())
                values[static_cast<std::size_t>(columns_[i])] =
                    ParseValueText(fields_[i].text, columnAt(table_, columns_[i]));
        }
        return true;
    }

private:
    const Table& table_;
    TextInput& input_;
    CsvReader reader_;
    std::vector<CsvField> fields_;
    std::vector<int> columns_;
};

class JsonRows {
public:
    JsonRows(const Table& table, TextInput& input)
        : table_(table)
        , input_(input) {}
    bool next(std::vector<Value>& values, std::uint32_t& line) {
        do {
            line = input_.line();
            if (!input_.getLine(text_))
                return false;
        } while (text_.find_first_not_of(" \t") == std::string::npos);
        ParseJsonLine(text_, members_);
        std::vector<bool> seen(values.size());
        for (const JsonMember& member : members_) {
            const int column = findColumn(table_, member.key);
            const auto at = static_cast<std::size_t>(column);
            if (seen[at])
                throw Error(ErrorNumber::FieldExists, member.key);
            seen[at] = true;
            if (member.kind != JsonMember::Kind::Null)
                values[at] = ParseValueText(member.text, columnAt(table_, column));
        }
        return true;
    }

private:
    const Table& table_;
    TextInput& input_;
    std::string text_;
    std::vector<JsonMember> members_;
};

// Reads and stores one row; false: there are no more.
template<typename Rows>
bool importRow(Table& table, Rows& rows, std::vector<Value>& values, std::uint32_t& line) {
    values.assign(table.definition().columns.size(), Value{});
    if (!rows.next(values, line))
        return false;
    table.insert(values);
    return true;
}

template<typename Rows>
std::uint32_t importAll(Table& table, TextInput& input) {
    Changing change(table.pager());
    std::uint32_t count = 0;
    std::uint32_t line = 1;
    try {
        Rows rows(table, input);
        std::vector<Value> values;
        while (importRow(table, rows, values, line))
            ++count;
    } catch (const Error& error) {
        failAtLine(line, error);
    }
    change.commit();
    return count;
}

} // namespace

std::uint32_t ImportRows(Table& table, TextFormat format, TextInput& input) {
    return format == TextFormat::Csv ? importAll<CsvRows>(table, input) : importAll<JsonRows>(table, input);
}

} // namespace jet
