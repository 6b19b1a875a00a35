// Kinds of columns and values on the wire, and in the engine of the test server.
#pragma once

#include "databases/tds/Wire.h"

#include <sqlite3.h>

namespace testserver::tds {

struct Type {
    enum Kind { Flag, Whole, Fraction, Date, Text, LongText } kind = Text;
    int size = 4000; // bytes of a number, letters of a text

    void write(Writer& to) const;
};

// Of a result's column, by its declaration.
Type TypeOfColumn(sqlite3_stmt* rows, int column);
// A value of the current row.
void WriteValue(Writer& to, const Type& type, sqlite3_stmt* rows, int column);

// A parameter of a procedure: a number, a text, a date as a text, or null.
struct Parameter {
    std::string name; // "@P1"; may be empty
    enum Kind { Null, Whole, Fraction, Text } kind = Null;
    std::int64_t whole = 0;
    double fraction = 0;
    std::string text;

    void bind(sqlite3_stmt* statement, int number) const;
};
Parameter ReadParameter(Reader& from);

} // namespace testserver::tds
