// Sets output lines in the card table. This program drives no real output: a build with live hardware
// installs a routine that does.
#pragma once

#include "hardware/HardwareCards.h"

namespace tolvex {

enum class OutputLineState : qint32 { Off = 0, On = 1, Flash = 2, Pulse = 3 };

// Sets one line, input or output, by its number across all cards, 1 to 300. False if the number is out of
// range. A disabled card and an unknown state change nothing.
bool SetOutputLine(HardwareCardTable& cards, qint32 lineNumber, OutputLineState state);

// Sets every line that has an action with these parameters; AnyData as a parameter matches every value.
inline constexpr qint32 AnyData = 255;
void SetLinesForAction(HardwareCardTable& cards, qint32 action, OutputLineState state, qint32 data1,
                       qint32 data2, qint32 data3, qint32 data4, bool outputsOnly);

// Called for each change, after the table changes and before HardwareBusy ends. Initially null.
extern void (*WriteHardwareOutputs)(int card, int line);
// -1 while a line changes.
qint16 HardwareBusy();

// A time the given seconds ahead (not below 0), in steps of hundredths of a second.
DayTime AddHundredths(const DayTime& time, double seconds);

} // namespace tolvex
