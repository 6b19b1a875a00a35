// The card table in the local ini file: sections "Hardware1" to "Hardware3", each with the card's type and
// address and nine keys for each line in use. docs/hardware.md describes the format.
#pragma once

#include "hardware/CardLineCounts.h"

namespace tolvex {

// Fills the whole table. Missing keys have their defaults; keys of lines that the card does not have are
// ignored. Asks the driver of each Advantech card; while it fails, the lines beyond the default counts are
// read too.
void ReadHardwareSettings(HardwareCardTable& cards, const QString& iniPath, DriverReports& reports);
void ReadHardwareSettings(HardwareCardTable& cards, const QString& iniPath);

// Writes the whole table as one replacement of the file: all or nothing; keys of other programs and spelling
// stay. The section of a disabled card is removed, and so are the keys of lines that are not in use or that
// the card does not have. While a card's driver fails, its lines and their types are unknown: the types in
// the file stay, and so do the keys of lines beyond the default counts. The section of a card of unknown type
// is left as it is. Returns a ProfileError, 0 on success.
int WriteHardwareSettings(HardwareCardTable& cards, const QString& iniPath, DriverReports& reports);
int WriteHardwareSettings(HardwareCardTable& cards, const QString& iniPath);

} // namespace tolvex
