#include "jet/record/LongValue.h"
#include "jet/record/ValueText.h"
#include "jet/text/DateText.h"
#include "jet/transfer/Csv.h"
#include "jet/transfer/JsonLine.h"
#include "jet/transfer/Transfer.h"

#include <array>
#include <bit>
#include <cmath>

namespace jet {

namespace {

constexpr std::size_t pieceLength = 65536;

// The meaning of a byte of a compressed text.
constexpr std::uint8_t Switch = 1;     // not a character: the rest has another encoding
constexpr std::uint8_t TwoBytes = 2;   // in UTF-8
constexpr std::uint8_t CsvQuoted = 4;  // makes a field need quotes
constexpr std::uint8_t JsonEscape = 8; // must be escaped in JSON
constexpr auto signsOfBytes = [] {
    std::array<std::uint8_t, 256> signs{};
    for (std::size_t c = 1; c < ' '; ++c)
        signs[c] = JsonEscape;
    for (std::size_t c = 0x80; c < signs.size(); ++c)
        signs[c] = TwoBytes;
    signs[0] = Switch;
    signs[0x7F] = signs['\\'] = JsonEscape;
    signs[','] = CsvQuoted;
    signs['"'] = signs['\r'] = signs['\n'] = CsvQuoted | JsonEscape;
    return signs;
}();

// Writes one row after the other into a buffer. The most common kinds go from the page to the buffer without
// becoming a Value.
class RowWriter {
public:
    RowWriter(const Filter& filter, TextFormat format)
        : table_(filter.table())
        , format_(format) {
        for (const int position : filter.fields()) {
            const Column& column = table_.definition().columns[static_cast<std::size_t>(position)];
            std::string name = ToUtf8(column.name);
            Field field{position, &column, {}};
            if (format == TextFormat::JsonLines) {
                field.prefix.push_back(fields_.empty() ? '{' : ',');
                AppendJsonText(name, field.prefix);
                field.prefix += ':';
            } else {
                if (!fields_.empty())
                    field.prefix.push_back(',');
                heading_ += field.prefix;
                AppendCsvField(name, heading_);
            }
            fields_.push_back(std::move(field));
        }
        heading_ += format == TextFormat::Csv ? "\r\n" : "";
    }

    const std::string& heading() const { return heading_; }

    void append(const RowView& row, std::string& into) {
        const bool csv = format_ == TextFormat::Csv;
        for (const Field& field : fields_) {
            into += field.prefix;
            const Column& column = *field.column;
            const auto bytes = row.bytes(column);
            if (bytes.empty() && row.isNull(column))
                into += csv ? "" : "null";
            else if (!appendStored(column, bytes, into))
                appendValue(field, row, into);
        }
        into += csv ? "\r\n" : "}\n";
    }

private:
    struct Field {
        int position;
        const Column* column;
        std::string prefix; // precedes the value
    };

    // False: this must be read as a value.
    bool appendStored(const Column& column, std::span<const std::uint8_t> bytes, std::string& into) {
        switch (column.type) {
        case ColumnType::Long:
            if (bytes.size() != 4)
                return false;
            AppendWhole(static_cast<std::int32_t>(Load32(bytes.data())), into);
            return true;
        case ColumnType::DateTime:
            return bytes.size() == 8 && format_ == TextFormat::Csv &&
                   AppendDate({std::bit_cast<double>(Load64(bytes.data()))}, ' ', into);
        case ColumnType::Text:
            return appendSqueezed(bytes, into);
        case ColumnType::Memo: {
            const auto value = InlineValue(bytes);
            return value && appendSqueezed(*value, into);
        }
        default:
            return false;
        }
    }

    bool appendSqueezed(std::span<const std::uint8_t> bytes, std::string& into) {
        if (bytes.size() < 3 || bytes[0] != 0xFF || bytes[1] != 0xFE)
            return false;
        const auto text = bytes.subspan(2);
        unsigned signs = 0;
        for (const std::uint8_t c : text)
            signs |= signsOfBytes[c];
        if ((signs & Switch) != 0)
            return false;
        const bool csv = format_ == TextFormat::Csv;
        if ((signs & (csv ? TwoBytes | CsvQuoted : TwoBytes | JsonEscape)) == 0) {
            const std::string_view quote = csv ? "" : "\"";
            into += quote;
            into.append(reinterpret_cast<const char*>(text.data()), text.size());
            into += quote;
            return true;
        }
        text_.clear();
        for (const std::uint8_t c : text) {
            if (c >= 0x80)
                text_ += static_cast<char>(0xC0 | c >> 6);
            text_ += static_cast<char>(c >= 0x80 ? 0x80 | (c & 0x3F) : c);
        }
        csv ? AppendCsvField(text_, into) : AppendJsonText(text_, into);
        return true;
    }

    void appendValue(const Field& field, const RowView& row, std::string& into) {
        if (field.column->isLong())
            row.keep(); // long values may lie on more pages than stay cached meanwhile
        table_.value(row, field.position, value_);
        text_.clear();
        const bool csv = format_ == TextFormat::Csv;
        AppendValueText(value_, field.column->scale(), text_, csv ? ' ' : 'T');
        if (csv ? ClassOf(field.column->type) == ValueClass::Number : isJsonNumber())
            into += text_; // never needs quotes
        else if (const auto* flag = std::get_if<bool>(&value_))
            into += *flag ? "true" : "false";
        else
            csv ? AppendCsvField(text_, into) : AppendJsonText(text_, into);
    }

    bool isJsonNumber() const {
        if (const auto* number = std::get_if<float>(&value_))
            return std::isfinite(*number);
        if (const auto* number = std::get_if<double>(&value_))
            return std::isfinite(*number);
        return std::holds_alternative<std::uint8_t>(value_) || std::holds_alternative<std::int16_t>(value_) ||
               std::holds_alternative<std::int32_t>(value_);
    }

    const Table& table_;
    TextFormat format_;
    std::vector<Field> fields_;
    std::string heading_;
    Value value_;
    std::string text_;
};

} // namespace

std::uint32_t ExportRows(const Filter& filter, TextFormat format, const TextSink& sink) {
    RowWriter writer(filter, format);
    std::string buffer = writer.heading();
    std::uint32_t rows = 0;
    filter.forEach([&](RowPointer, const RowView& row) {
        writer.append(row, buffer);
        ++rows;
        if (buffer.size() >= pieceLength) {
            sink(buffer);
            buffer.clear();
        }
        return true;
    });
    if (!buffer.empty())
        sink(buffer);
    return rows;
}

} // namespace jet
