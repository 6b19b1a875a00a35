// Converts a line to words, column by column, and words back to codes.
#pragma once

#include "hardware/LineActions.h"

#include <optional>

namespace tolvex {

// The grid's columns, left to right.
enum LineColumn {
    ColumnLine,
    ColumnType,
    ColumnLogic,
    ColumnDescription,
    ColumnAction,
    ColumnInfo1,
    ColumnInfo2,
    ColumnInfo3,
    ColumnInfo4,
    LineColumnCount
};
struct LineColumnRow {
    const char* heading;
    int twips; // width
};
std::span<const LineColumnRow> LineColumns();

// The texts of a line's columns from its type on; Info 3 and Info 4 are always empty.
struct LineTexts {
    QString type;        // "Input" or "Output"
    QString logic;       // "Y" on a line with inverted logic
    QString description; // trimmed
    QString action;
    QString info1;
    QString info2;
};
LineTexts TextsOf(const HardwareLine& line);

// The default description of a line: empty for "Not in use" and unknown actions.
QString DefaultDescription(const HardwareLine& line);

// The texts of one line. A line without a description gets its default one, in the table.
LineTexts GetGridinfo(HardwareLine& line);

// Codes by their words, without regard to case: an action offered on such a line or
// known from the file, and a value that a parameter's list offers, shows, or that
// is a number in it. Nothing, with the valid words in *expected, if there is none.
// A value outside the list is accepted as a number only if `anyNumber` is set.
std::optional<qint32> ActionByName(const QString& name, LineKinds kind, QString* expected);
std::optional<qint32> ParameterByText(const Parameter& parameter, const QString& text, LineKinds kind,
                                      bool anyNumber, QString* expected);

} // namespace tolvex
