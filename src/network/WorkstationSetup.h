// Logic of the workstation setup form: the rows that it shows, the notice before a number is taken over, and
// OK over all records.
#pragma once

#include "core/settings/Settings.h"
#include "network/TerminalList.h"

#include <QMap>

namespace tolvex {

// A row of the list; texts without the blanks that pad them.
struct TerminalRow {
    enum class State { Free, Own, Taken };
    int id = 0;
    QString idName;
    QString networkName;
    QString lastUsed; // short date and time; empty if the record holds none
    State state = State::Free;
    // "free", "this computer", "STUDIO2, 3 minutes ago".
    QString stateText;
};

// The rows of all records. `ownName` is this computer's.
QList<TerminalRow> TerminalRows(const QList<TerminalRecord>& records, const QString& ownName,
                                const QDateTime& now);

// What choosing a row means, for the status line: that it is taken over from another computer, which may
// still be in use. Empty where nothing is worth saying.
QString TakeoverNotice(const TerminalRow& row);

// What stands in the form when OK is pressed.
struct WorkstationChoice {
    int chosenId = 0;
    QMap<int, QString> names; // by number, of the cells that the user touched
    QString seenName;         // network name on the chosen number as the form shows it; empty: free
};

struct WorkstationResult {
    enum class Outcome {
        Stored,
        NotChosen,  // no number was chosen
        NoList,     // there is none: the user did not want one, or it could not be made
        TakenSince, // another computer has taken the number since the form showed it
        Failed
    };
    Outcome outcome = Outcome::Stored;
    QString message; // what the form shows; empty for Stored
};

// What became of a number that was to be stored.
struct NumberOutcome {
    int listError = 0; // FileError of the list, or TerminalTaken
    int iniError = 0;  // ProfileError of the local ini file
    QString holder;    // for TerminalTaken: who has the number
};

// Puts this computer on a number as AssignTerminal does, and the number into the local ini file and `values`.
// All or nothing: the file is asked before the list is written. The list is open.
NumberOutcome StoreNumber(int id, const QStringList& idNames, const QString& ownName, const QString& seenName,
                          TerminalList& terminals, Settings& values);

// Stores the choice: names and this computer's number in the list, the number in `values` and in the local
// ini file. A cell that was not touched keeps the name that the record has by then. The list is closed
// afterwards.
WorkstationResult StoreWorkstations(const WorkstationChoice& choice, const QString& ownName,
                                    TerminalList& terminals, Settings& values);

} // namespace tolvex
