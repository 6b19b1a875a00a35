// Bytes of commands, and what happens while one is tried, as lines of text.
#pragma once

#include "network/commands/CommandEvents.h"

namespace tolvex {

// "3 bytes: 41 42 0D"; only the first of many.
QString BytesLine(const QByteArray& bytes);

// "Sent 3 bytes: AB\r (41 42 0D)". `answered`: something came back, or nothing was expected.
QString TrialLine(const CommandEvent& event, bool answered);

} // namespace tolvex
