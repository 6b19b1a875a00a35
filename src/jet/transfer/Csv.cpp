#include "jet/transfer/Csv.h"

#include "jet/base/Error.h"

#include <algorithm>

namespace jet {

void AppendCsvField(std::string_view text, std::string& into) {
    const bool plain = std::none_of(text.begin(), text.end(),
                                    [](char c) { return c == '"' || c == ',' || c == '\r' || c == '\n'; });
    if (plain && !text.empty()) {
        into += text;
        return;
    }
    into += '"';
    for (const char c : text) {
        if (c == '"')
            into += '"';
        into += c;
    }
    into += '"';
}

bool CsvReader::next(std::vector<CsvField>& fields) {
    if (input_.peek() == TextInput::End)
        return false;
    std::size_t count = 0;
    bool more = true;
    while (more) {
        if (count == fields.size())
            fields.emplace_back();
        more = readField(fields[count++]);
    }
    fields.resize(count);
    return true;
}

// Returns whether another field of the record follows.
bool CsvReader::readField(CsvField& field) {
    field.text.clear();
    field.quoted = input_.peek() == '"';
    if (field.quoted)
        readQuoted(field);
    for (;;) {
        const int byte = input_.get();
        if (byte == ',')
            return true;
        if (byte == '\n' || byte == TextInput::End)
            return false;
        if (byte == '\r' && input_.peek() == '\n')
            continue;
        if (field.quoted)
            throw Error(ErrorNumber::InvalidArgument, "text after a closing quote");
        if (field.text.size() == TextInput::MaximumLength)
            throw Error(ErrorNumber::InvalidArgument, "a field is too long");
        field.text += static_cast<char>(byte);
    }
}

void CsvReader::readQuoted(CsvField& field) {
    input_.get();
    for (;;) {
        const int byte = input_.get();
        if (byte == TextInput::End)
            throw Error(ErrorNumber::InvalidArgument, "a quote that is not closed");
        if (byte == '"') {
            if (input_.peek() != '"')
                return;
            input_.get();
        }
        if (field.text.size() == TextInput::MaximumLength)
            throw Error(ErrorNumber::InvalidArgument, "a field is too long");
        field.text += static_cast<char>(byte);
    }
}

} // namespace jet
