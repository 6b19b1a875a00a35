// The grid's changes to lines: to a selection of lines at once, in order. The first of them is the current
// line, whose type and action decide what is offered.
#pragma once

#include "hardware/LineActions.h"

#include <QList>

namespace tolvex {

using LineNumbers = QList<int>; // 1 to 100, in the order of processing; not empty

// The lines of a card that can be edited: those that its chosen type has.
struct CardLines {
    HardwareCard& card;
    const CardTypeRow& type;
    int count = 0;
};

// What is wrong with a line as line `number` of the card, in a sentence; empty if it is valid: the line
// exists, has the type that belongs to it, and the file can hold its description if that is a new one.
QString CheckLine(const CardLines& lines, int number, const HardwareLine& line);
// Stores one line if it is valid, and returns what is wrong otherwise: the only way by which the grid, the
// clipboard and the shell put texts and whole lines into the table.
QString SetLine(const CardLines& lines, int number, const HardwareLine& line);
// A text cleaned for a description: control characters become blanks, characters that the file cannot hold
// are dropped.
QString FittingDescription(const QString& text);

// Changes the lines to the opposite of the current line's type. On a card whose types change by groups, the
// current line's group of eight changes instead of the selection. False, with nothing changed, on a card
// whose types are fixed.
bool ToggleLineType(HardwareCard& card, const CardTypeRow& type, const LineNumbers& lines);
// Inverts each line's logic, based on its own state.
void ToggleLogic(HardwareCard& card, const LineNumbers& lines);
// Sets the description of all of the lines or, with the reason, of none.
QString SetDescription(const CardLines& lines, const LineNumbers& numbers, const QString& text);
// Gives all lines one action: clears their descriptions, and fills their parameters by the action's rule,
// which can number a block.
void ChooseAction(HardwareCard& card, const LineNumbers& lines, qint32 action);
// Sets parameter 1 to 4 and clears the descriptions.
void SetParameter(HardwareCard& card, const LineNumbers& lines, int number, qint32 value);

// The editor for a cell.
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
