// Running commands: what every call shares, and commands that ask other commands, for a report, for the
// completion of words.
#pragma once

#include "app/ctl/CommandLine.h"

namespace tolvex::ctl {

// Puts the machine folder in force that the options name, and takes the ini files that they name. False, with
// a sentence in *why, when one cannot be used.
bool SettleMachine(const CommandLine& line, StartUp& startUp, QString* why);

// Settles the machine and runs the command. One that changes nothing only looks at the machine. Gives its
// exit status.
int RunCommand(const CommandLine& line, Call& call);

// How the output of a command ends that had this exit status.
Output::Ending EndingOf(int status);

// What a command answers.
struct Answer {
    int status = Failed;
    QJsonDocument document; // what it writes with --json
};

// Runs a command that changes nothing, on a workstation of its own with the ini files of `startUp` in the
// machine folder that is in force. Nothing is written or asked.
Answer Ask(const QStringList& words, const StartUp& startUp);

} // namespace tolvex::ctl
