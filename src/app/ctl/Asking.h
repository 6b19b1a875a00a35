// Runs commands: what every call shares, and commands that ask other commands, for a report or for the
// completion of words.
#pragma once

#include "app/ctl/CommandLine.h"

namespace tolvex::ctl {

// Makes the machine folder of the options current, and uses the ini files that they name. False, with a
// sentence in *why, if one cannot be used.
bool SettleMachine(const CommandLine& line, StartUp& startUp, QString* why);

// Prepares the machine and runs the command, in read-only mode if it changes nothing. Returns its exit
// status.
int RunCommand(const CommandLine& line, Call& call);

// The ending of a command's output for this exit status.
Output::Ending EndingOf(int status);

// The answer of a command.
struct Answer {
    int status = Failed;
    QJsonDocument document; // its output with --json
};

// Runs a command that changes nothing, on a workstation of its own with the ini files of `startUp` in the
// current machine folder. Nothing is written or asked.
Answer Ask(const QStringList& words, const StartUp& startUp);

} // namespace tolvex::ctl
