// The actions of a line: one row per action code with its names, its parameters, the default description of a
// line and the rule that fills its parameters when it is chosen. The grid, the shell and the tests use these
// rows; they fully describe what the file holds.
#pragma once

#include "core/text/Choices.h"
#include "hardware/HardwareCards.h"

#include <QString>

#include <span>

namespace tolvex {

// Lines on which something is offered; they can be combined.
enum LineKinds : unsigned { OnNone = 0, OnInputs = 1, OnOutputs = 2, OnBoth = 3 };
inline LineKinds KindOf(const HardwareLine& line) {
    return line.isOutput() ? OnOutputs : OnInputs;
}

// A parameter value with a name.
struct ParameterValue {
    qint32 value;
    const char* listed;          // in the list; null: not in any list
    const char* shown = nullptr; // in the grid, if different
    unsigned on = OnBoth;

    const char* inGrid() const { return shown ? shown : listed; }
};

struct Parameter {
    enum class Kind {
        None,
        Named,    // one of `values`
        Numbered, // the list offers 1 to `last`; any number is displayed
        Typed,    // any number, in a text box
    };
    Kind kind = Kind::None;
    const char* prefix = "";                  // precedes the number
    qint32 last = 0;                          // of Numbered
    std::span<const ParameterValue> values{}; // of Named, in the order of the list
    const char* otherwise = "";               // displayed for any other value
};

// The effect of choosing an action on the first parameter of each line of a block. A counter counts the
// block's lines from 1; when it exceeds `wrapAbove` it restarts at `wrapTo`.
struct DefaultRule {
    enum class Fill { Nothing, Counter, One }; // the new value of a parameter that is 0
    bool clear = false;                        // all four parameters to 0
    int wrapAbove = 0;                         // 0: it never restarts
    int wrapTo = 1;
    Fill fill = Fill::Nothing;
    qint32 highest = 0; // a parameter above it first becomes 1; 0: no limit
};

struct ActionRow {
    qint32 code;
    const char* name;       // in the grid
    const char* outputName; // in the grid on an output, if different
    const char* listName;   // in the list, if different from the grid
    Parameter first;
    Parameter second;
    // The default description of a line: %1 and %2 are the first two parameters, %4 to %6 the texts of those
    // columns of the grid.
    const char* description;
    DefaultRule rule;

    const char* nameOn(LineKinds kind) const { return outputName && kind == OnOutputs ? outputName : name; }
    const char* listNameOn(LineKinds kind) const { return listName ? listName : nameOn(kind); }
    // Parameter 1 or 2; the others have none.
    const Parameter& parameter(int number) const;
};

std::span<const ActionRow> LineActions();
// Null for an unknown code.
const ActionRow* FindLineAction(qint32 code);

// The codes in the list of an input or an output, in order. The first is "Not in use".
std::span<const qint32> OfferedActions(LineKinds kind);

Choices ActionChoices(LineKinds kind);
// What the list of a parameter offers on such a line; empty for None and Typed.
Choices ParameterChoices(const Parameter& parameter, LineKinds kind);

// The text in the grid for a value of a parameter.
QString ParameterText(const Parameter& parameter, qint32 value, LineKinds kind);

} // namespace tolvex
