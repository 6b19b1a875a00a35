// What happens before any setting is read: the command line, the choice of the local ini file, the facts of
// the machine.
//
// Switches, found anywhere in the command line without regard to case: /RUNBY=<program> (to the end of the
// line), /DEBUG, /NOMULTIMONITOR, /LI:<local ini file>, /SI:<system ini file>, /PLAYERS=<n>.
#pragma once

#include "station/ScreenFacts.h"

#include <QString>

namespace tolvex {

struct Workstation;

// What a program tells before anything else.
struct StartUp {
    QString typedCommandLine; // as it was typed, without the program's name
    // Ini files as /LI: and /SI: name them, for names that hold blanks; empty: the command line's.
    QString localIni;
    QString systemIni;
    ScreenFacts screens;
    bool iniFileChosen = false; // by InitialiseProgram
};

// The program that /RUNBY= names, with all that follows it, as typed; empty without that switch.
QString RunByProgram(const StartUp& startUp);

// The system ini file that was named; empty when it is the one in the data location.
QString NamedSystemIniFile(const Workstation& station);

// Picks the local ini file: the one named, else the one that the user chooses where several configurations
// are allowed, else TOLVEX.INI. False when the user cancelled; LocalIniFile is then empty.
bool ChooseLocalIniFile(Workstation& station);

// Start-up; every settings load calls it again, but the choice of the ini file is made once. False when the
// user cancelled that choice. Warns once a machine of a screen lower than 600 pixels.
bool InitialiseProgram(Workstation& station);

} // namespace tolvex
