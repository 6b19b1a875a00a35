// How a line is shown: its columns in words, and from words back to the codes.
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
    QString logic;       // "Y" on a line with flipped logic
    QString description; // trimmed
    QString action;
    QString info1;
    QString info2;
};
LineTexts TextsOf(const HardwareLine& line);

// The description that a line gets when it has none: empty for "Not in use" and unknown actions.
QString DefaultDescription(const HardwareLine& line);

// Shows one line: gives it its default description, in the table, when it has none.
LineTexts GetGridinfo(HardwareLine& line);

// Codes by their words, without regard to case: an action offered on such a line or known from the file, and
// a value that a parameter's list offers, shows, or that is a number in it. Nothing, with the words that fit
// in *expected, when there is no such one. A value that no list offers is taken as a number only where
// `anyNumber` is set.
std::optional<qint32> ActionByName(const QString& name, LineKinds kind, QString* expected);
std::optional<qint32> ParameterByText(const Parameter& parameter, const QString& text, LineKinds kind,
                                      bool anyNumber, QString* expected);

} // namespace tolvex
