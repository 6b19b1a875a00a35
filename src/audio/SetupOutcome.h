// What came of the OK of one of the sound windows: everything is stored, or why not and at which field.
#pragma once

#include <QString>

namespace tolvex {

struct SetupOutcome {
    QString message = {}; // to be shown; empty: everything is stored
    QString field = {};   // the control that the message is about; empty: none
    int error = 0;        // the profile error of a write that failed; 0: a value was refused

    bool stored() const { return message.isEmpty(); }
};

} // namespace tolvex
