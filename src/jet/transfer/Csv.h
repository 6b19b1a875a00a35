// Comma-separated values per RFC 4180, in UTF-8. An empty field without quotes is null, "" is empty text.
#pragma once

#include "jet/transfer/TextInput.h"

#include <string>
#include <string_view>
#include <vector>

namespace jet {

// Appends a field that is not null, in quotes if necessary.
void AppendCsvField(std::string_view text, std::string& into);

struct CsvField {
    std::string text;
    bool quoted = false;
    bool isNull() const { return text.empty() && !quoted; }
};

class CsvReader {
public:
    explicit CsvReader(TextInput& input)
        : input_(input) {}

    // The fields of the next record; false: there is none. Lines end with LF or CR LF; quoted fields may
    // contain line ends. Throws InvalidArgument for an unclosed quote or text after a closed one.
    bool next(std::vector<CsvField>& fields);

private:
    bool readField(CsvField& field);
    void readQuoted(CsvField& field);

    TextInput& input_;
};

} // namespace jet
