// The steps before any setting is read: the command line, the choice of the local ini file, the facts about
// the machine.
//
// Switches, found anywhere in the command line without regard to case: /RUNBY=<program> (to the end of the
// line), /DEBUG, /NOMULTIMONITOR, /LI:<local ini file>, /SI:<system ini file>, /PLAYERS=<n>.
#pragma once

#include "station/ScreenFacts.h"

#include <QString>

namespace tolvex {

struct Workstation;

// What a program passes in before anything else.
struct StartUp {
    QString typedCommandLine; // as typed, without the program's name
    // Ini files of /LI: and /SI:, for names with blanks; empty: the command line's.
    QString localIni;
    QString systemIni;
    ScreenFacts screens;
    bool iniFileChosen = false; // by InitialiseProgram
};

// The program of /RUNBY=, with everything after it, as typed; empty without that switch.
QString RunByProgram(const StartUp& startUp);

// The system ini file that was named; empty if it is the one in the data location.
QString NamedSystemIniFile(const Workstation& station);

// Chooses the local ini file: the one named, else the user's choice if several configurations are allowed,
// else TOLVEX.INI. False if the user cancelled; LocalIniFile is then empty.
bool ChooseLocalIniFile(Workstation& station);

// Start-up; every settings load calls it again, but the ini file is chosen only once. False if the user
// cancelled that choice. Warns once if the screen is lower than 600 pixels.
bool InitialiseProgram(Workstation& station);

} // namespace tolvex
