// Changes of lines as the grid makes them: to a selection of lines at once, in the order in which they are
// handled. The first of them is the current line, whose type and action decide what is offered.
#pragma once

#include "hardware/LineActions.h"

#include <QList>

namespace tolvex {

using LineNumbers = QList<int>; // 1 to 100, in the order of handling; not empty

// The lines of a card that can be edited: those that the type chosen for it has.
struct CardLines {
    HardwareCard& card;
    const CardTypeRow& type;
    int count = 0;
};

// What is wrong with a line as line `number` of the card, in a sentence; empty when nothing is: there is such
// a line, it has the type that belongs to it, and the file can hold its description where that is a new one.
QString CheckLine(const CardLines& lines, int number, const HardwareLine& line);
// Sets one line when nothing is wrong with it, and gives what is: the one way by which the grid, the
// clipboard and the shell put texts and whole lines into the table.
QString SetLine(const CardLines& lines, int number, const HardwareLine& line);
// A text without what no description can hold: control characters become blanks, characters that the file
// does not know go.
QString FittingDescription(const QString& text);

// Turns the lines into the opposite of the current line's type. On a card whose types change by groups the
// group of eight that holds the current line changes instead of the selection. False, and nothing done, on a
// card whose types are fixed.
bool ToggleLineType(HardwareCard& card, const CardTypeRow& type, const LineNumbers& lines);
// Inverts each line's logic from its own state.
void ToggleLogic(HardwareCard& card, const LineNumbers& lines);
// The description for all of the lines or, with the reason, for none.
QString SetDescription(const CardLines& lines, const LineNumbers& numbers, const QString& text);
// Gives all lines one action: descriptions are cleared, and parameters filled by the action's rule, which
// numbers a block through.
void ChooseAction(HardwareCard& card, const LineNumbers& lines, qint32 action);
// Sets parameter 1 to 4 and clears the descriptions.
void SetParameter(HardwareCard& card, const LineNumbers& lines, int number, qint32 value);

// How a cell is edited.
struct CellEditor {
    enum class Kind { None, Type, Logic, Description, List, Number };
    Kind kind = Kind::None;
    int tag = -1; // of List and Number: 0 the action, 1 to 4 that parameter
    Choices choices{};
    int selected = -1; // entry of the current value
    qint32 number = 0; // of Number: the current value
};
CellEditor EditorOf(const HardwareLine& line, int column);

} // namespace tolvex
