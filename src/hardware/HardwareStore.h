// The card table in the local ini file: sections "Hardware1" to "Hardware3", and in them the card's type and
// address and nine keys for each line that is in use. docs/hardware.md gives the format.
#pragma once

#include "hardware/CardLineCounts.h"

namespace tolvex {

// Fills the whole table. What is missing has its default; keys of lines that the card does not have are not
// looked at. Asks the driver of each Advantech card; while it fails, the lines beyond those that stand in are
// read, too.
void ReadHardwareSettings(HardwareCardTable& cards, const QString& iniPath, DriverReports& reports);
void ReadHardwareSettings(HardwareCardTable& cards, const QString& iniPath);

// Writes the whole table as one replacement of the file: all or nothing; keys of other programs and spelling
// stay. The section of a disabled card goes; so do the keys of a line that is not in use or that the card
// does not have. While a card's driver fails nobody knows which lines the card has, nor of which type they
// are: the types in the file stay, and so do the keys of lines beyond those that stand in. The section of a
// card of unknown type is left as it is. Gives a ProfileError, 0 when done.
int WriteHardwareSettings(HardwareCardTable& cards, const QString& iniPath, DriverReports& reports);
int WriteHardwareSettings(HardwareCardTable& cards, const QString& iniPath);

} // namespace tolvex
