// A line of the radio clock as members of a record.
#pragma once

#include "network/clock/ClockLines.h"

#include <QJsonObject>

namespace tolvex::ctl {

// Adds line (with escapes), kind, and what its kind has: valid, lowBattery, setsClock, whyNot (when it sets
// no clock) and dateTime; or strength in percent.
void AddClockLine(QJsonObject& record, const ClockLine& line, int percent);

} // namespace tolvex::ctl
