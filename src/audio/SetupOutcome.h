// What came of the OK of one of the sound windows: everything is stored, or why not and at which field. What
// both windows have to say about files that cannot be written.
#pragma once

#include <QString>

namespace tolvex {

struct Settings;

struct SetupOutcome {
    QString message = {}; // to be shown; empty: everything is stored
    QString field = {};   // the control that the message is about; empty: none
    // The profile error of a write that failed; 0: a value was refused. With an empty message: everything of
    // this workstation is stored, but not Audwall.ini, which has been said.
    int error = 0;

    bool stored() const { return message.isEmpty(); }
};

// The ProfileError that saving the local ini file would end with now, as far as it can be known before.
int CheckLocalFile(const Settings& settings);

// Saves the local ini file (SaveLocalSettings). The device may fail after the file was put in place, when its
// folder is flushed: then the file holds everything, and that is a success.
int SaveLocalFile(Settings& settings);

// For a file that cannot be written: "FILE was not changed: ... (error 5); nothing was stored."
SetupOutcome NothingStored(int profileError, const QString& file);

} // namespace tolvex
