// One row as one line of JSON: an object of texts, numbers, true, false and null.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace jet {

// Appends a text in quotes. `text` is UTF-8.
void AppendJsonText(std::string_view text, std::string& into);

struct JsonMember {
    enum class Kind { Null, Flag, Number, Text };
    std::string key;
    Kind kind = Kind::Null;
    std::string text; // for a number its digits as written; for a flag "true" or "false"
};

// Parses one line. Throws InvalidArgument with the position for anything except a flat object, and for a
// duplicate key.
void ParseJsonLine(std::string_view line, std::vector<JsonMember>& members);

} // namespace jet
