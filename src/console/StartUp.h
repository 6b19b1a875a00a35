// What happens before any setting is read: the command line, the choice of the local ini file, the facts of
// the machine.
//
// Switches, found anywhere in the command line without regard to case: /RUNBY=<program> (to the end of the
// line), /DEBUG, /NOMULTIMONITOR, /LI:<local ini file>, /SI:<system ini file>, /PLAYERS=<n>.
#pragma once

#include <QString>

namespace tolvex {

// Tells the command line as it was typed, without the program's name. Before anything else.
void SetTypedCommandLine(const QString& commandLine);

// Names ini files as /LI: and /SI: do, for names that hold blanks; an empty one leaves the choice as it is.
void SetIniFiles(const QString& localIni, const QString& systemIni);

// The program that /RUNBY= names, with all that follows it, as typed; empty without that switch.
QString RunByProgram();

// The system ini file that was named; empty when it is the one in the data location.
QString NamedSystemIniFile();

// Picks the local ini file: the one named, else the one that the user chooses where several configurations
// are allowed, else TOLVEX.INI. False when the user cancelled; LocalIniFile is then empty.
bool ChooseLocalIniFile();

// Start-up; every settings load calls it again, but the choice of the ini file is made once. False when the
// user cancelled that choice. Warns once a machine of a screen lower than 600 pixels.
bool InitialiseProgram();

// Forgets the command line and the choice made: the state at start. Tests call it.
void ResetStartUp();

} // namespace tolvex
