#include "jet/Csv.h"
#include "jet/JsonLine.h"
#include "jet/LongValue.h"
#include "jet/Transfer.h"
#include "jet/ValueText.h"

#include <algorithm>
#include <cmath>

namespace jet {

namespace {

constexpr std::size_t pieceLength = 65536;
constexpr std::uint32_t inlineMark = 0x80000000; // of a long value that lies in its row

// Writes one row after the other into a buffer. What costs is text, so squeezed plain text goes from the
// page to the buffer without becoming a Value.
class RowWriter {
public:
    RowWriter(const Selection& selection, TextFormat format)
        : table_(selection.table())
        , format_(format) {
        for (const int position : selection.fields()) {
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
            copyRows_ = copyRows_ || column.isLong();
            fields_.push_back(std::move(field));
        }
        heading_ += format == TextFormat::Csv ? "\r\n" : "";
    }

    const std::string& heading() const { return heading_; }

    void append(RowView row, std::string& into) {
        if (copyRows_) {
            // Long values may lie on more pages than stay in place meanwhile.
            row_.assign(row.all().begin(), row.all().end());
            row = RowView(row_, row.page(), table_.definition().variableColumns > 0);
        }
        for (const Field& field : fields_) {
            into += field.prefix;
            if (format_ == TextFormat::Csv)
                appendCsv(field, row, into);
            else
                appendJson(field, row, into);
        }
        into += format_ == TextFormat::Csv ? "\r\n" : "}\n";
    }

private:
    struct Field {
        int position;
        const Column* column;
        std::string prefix; // what stands before the value
    };

    void appendCsv(const Field& field, const RowView& row, std::string& into) {
        if (row.isNull(*field.column))
            return;
        if (!plainText(field, row))
            read(field, row);
        if (ClassOf(field.column->type) == ValueClass::Number)
            into += text_; // never needs quotes
        else
            AppendCsvField(text_, into);
    }

    void appendJson(const Field& field, const RowView& row, std::string& into) {
        if (row.isNull(*field.column)) {
            into += "null";
            return;
        }
        if (plainText(field, row)) {
            AppendJsonText(text_, into);
            return;
        }
        read(field, row);
        if (const auto* flag = std::get_if<bool>(&value_))
            into += *flag ? "true" : "false";
        else if (isJsonNumber())
            into += text_;
        else
            AppendJsonText(text_, into);
    }

    bool isJsonNumber() const {
        if (const auto* number = std::get_if<float>(&value_))
            return std::isfinite(*number);
        if (const auto* number = std::get_if<double>(&value_))
            return std::isfinite(*number);
        return std::holds_alternative<std::uint8_t>(value_) || std::holds_alternative<std::int16_t>(value_) ||
               std::holds_alternative<std::int32_t>(value_);
    }

    // The bytes of a Text, or of a Memo that lies in its row; nothing for what is to be read as a value.
    static std::span<const std::uint8_t> storedText(const Column& column, const RowView& row) {
        if (column.type == ColumnType::Text)
            return row.bytes(column);
        if (column.type != ColumnType::Memo)
            return {};
        const auto definition = row.bytes(column);
        if (definition.size() < LongValueDefinitionLength)
            return {};
        const std::uint32_t head = Load32(definition.data());
        const std::size_t length = head & ~inlineMark;
        const auto data = definition.subspan(LongValueDefinitionLength);
        return (head & inlineMark) != 0 && length <= data.size() ? data.first(length)
                                                                 : std::span<const std::uint8_t>();
    }

    // Squeezed text of nothing but ASCII is put into text_ as it lies on the page.
    bool plainText(const Field& field, const RowView& row) {
        const auto bytes = storedText(*field.column, row);
        if (bytes.size() < 2 || bytes[0] != 0xFF || bytes[1] != 0xFE)
            return false;
        const auto text = bytes.subspan(2);
        unsigned strange = 0;
        for (const std::uint8_t c : text)
            strange |= c | (c - 1u); // the top bit of a byte: 0, or above 127
        if ((strange & 0x80u) != 0)
            return false;
        text_.assign(text.begin(), text.end());
        return true;
    }

    void read(const Field& field, const RowView& row) {
        table_.value(row, field.position, value_);
        text_.clear();
        AppendValueText(value_, field.column->scale(), text_, format_ == TextFormat::Csv ? ' ' : 'T');
    }

    const Table& table_;
    TextFormat format_;
    std::vector<Field> fields_;
    std::string heading_;
    bool copyRows_ = false;
    Bytes row_;
    Value value_;
    std::string text_;
};

} // namespace

std::uint32_t ExportRows(const Selection& selection, TextFormat format, const TextSink& sink) {
    RowWriter writer(selection, format);
    std::string buffer = writer.heading();
    std::uint32_t rows = 0;
    selection.forEach([&](RowPointer, const RowView& row) {
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
