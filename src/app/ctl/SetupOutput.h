// The beginning and the end of commands that store what a window of settings holds.
#pragma once

#include "app/ctl/Command.h"
#include "audio/SetupOutcome.h"

namespace tolvex::ctl {

// Reads the settings of the workstation. False if no local ini file was chosen; *status is then the exit
// status.
inline bool ReadForSetup(Call& call, int* status) {
    const bool read = call.session.read();
    if (!read)
        *status = call.fail(QStringLiteral("No local ini file was chosen."));
    return read;
}

// A refused value is wrong usage, with the window's message. A file that was not written is a failure, also
// when the rest was stored.
inline int EndSetup(const Call& call, const SetupOutcome& outcome) {
    if (outcome.stored())
        return outcome.error ? Failed : Done;
    return outcome.error ? call.fail(outcome.message, outcome.error) : call.wrong(outcome.message);
}

// A number in an argument; nothing for any other text.
inline std::optional<int> NumberIn(const QString& text) {
    bool good = false;
    const int number = text.toInt(&good, 0);
    return good ? std::optional(number) : std::nullopt;
}

} // namespace tolvex::ctl
