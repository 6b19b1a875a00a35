// The card table in the local ini file: sections "Hardware1" to "Hardware3", and in them the card's type and
// address and nine keys for each line that is in use. docs/hardware.md tells the form.
#pragma once

#include "hardware/CardLineCounts.h"

namespace tolvex {

// Fills the whole table. What is missing has its default; keys of lines that the card does not have are not
// looked at. Asks the driver of each Advantech card.
void ReadHardwareSettings(const QString& iniPath, DriverReports& reports);
void ReadHardwareSettings(const QString& iniPath);

// Writes the whole table as one replacement of the file: all or nothing; keys of other programs and spelling
// stay. The section of a disabled card goes; so do the keys of a line that is not in use or that the card
// does not have. The section of a card of unknown type is left as it is. Gives a ProfileError, 0 when done.
int WriteHardwareSettings(const QString& iniPath, DriverReports& reports);
int WriteHardwareSettings(const QString& iniPath);

} // namespace tolvex
