// What a line can stand for: one row for each action code with its names, its parameters, the description
// that a line gets by itself and the rule that fills its parameters when it is chosen. The grid, the shell
// and the tests read these rows; reading them is enough to know what the file holds.
#pragma once

#include "core/text/Choices.h"
#include "hardware/HardwareCards.h"

#include <QString>

#include <span>

namespace tolvex {

// Lines that something is offered on; they add up.
enum LineKinds : unsigned { OnNone = 0, OnInputs = 1, OnOutputs = 2, OnBoth = 3 };
inline LineKinds KindOf(const HardwareLine& line) {
    return line.isOutput() ? OnOutputs : OnInputs;
}

// A value of a parameter that has a name.
struct ParameterValue {
    qint32 value;
    const char* listed;          // in the list; null: no list offers it
    const char* shown = nullptr; // in the grid, where that differs
    unsigned on = OnBoth;

    const char* inGrid() const { return shown ? shown : listed; }
};

struct Parameter {
    enum class Kind {
        None,
        Named,    // one of `values`
        Numbered, // the list offers 1 to `last`; any number is shown
        Typed,    // any number, in a text box
    };
    Kind kind = Kind::None;
    const char* prefix = "";                  // stands before the number
    qint32 last = 0;                          // of Numbered
    std::span<const ParameterValue> values{}; // of Named, in the order of the list
    const char* otherwise = "";               // shown for a value that none of them has
};

// What choosing an action does to the first parameter of each line of a block. A counter runs through the
// block from 1; at a line where it is above `wrapAbove` it falls back to `wrapTo` first.
struct DefaultRule {
    enum class Fill { Nothing, Counter, One }; // what a parameter that is 0 becomes
    bool clear = false;                        // all four parameters to 0
    int wrapAbove = 0;                         // 0: it never falls back
    int wrapTo = 1;
    Fill fill = Fill::Nothing;
    qint32 highest = 0; // a parameter above it becomes 1 first; 0: none does
};

struct ActionRow {
    qint32 code;
    const char* name;       // in the grid
    const char* outputName; // in the grid on an output, where that differs
    const char* listName;   // in the list, where that differs from the grid
    Parameter first;
    Parameter second;
    // The description a line without one gets: %1 and %2 are the first two parameters, %4 to %6 the texts of
    // those columns of the grid.
    const char* description;
    DefaultRule rule;

    const char* nameOn(LineKinds kind) const { return outputName && kind == OnOutputs ? outputName : name; }
    const char* listNameOn(LineKinds kind) const { return listName ? listName : nameOn(kind); }
    // Parameter 1 or 2; the others have none.
    const Parameter& parameter(int number) const;
};

std::span<const ActionRow> LineActions();
// Null for a code that is not known.
const ActionRow* FindLineAction(qint32 code);

// The codes that the list of an input or an output offers, in its order. The first is "Not in use".
std::span<const qint32> OfferedActions(LineKinds kind);

Choices ActionChoices(LineKinds kind);
// What the list of a parameter offers on a line of that kind; empty for None and Typed.
Choices ParameterChoices(const Parameter& parameter, LineKinds kind);

// How the grid shows a value of a parameter.
QString ParameterText(const Parameter& parameter, qint32 value, LineKinds kind);

} // namespace tolvex
