// The Terminal list: Terminal.Lst in the data location, one record of 128 bytes for each workstation number
// (LinkMesh ID) of the station, shared by all of them (docs/formats/terminal-list.md). The numbers in use are
// 1 to NumberTerminals of the settings. The list stays open between OpenTerminalList and CloseTerminalList.
#pragma once

#include "core/settings/Settings.h"
#include "platform/files/Files.h"

#include <QDateTime>
#include <QList>
#include <QStringList>

#include <array>
#include <functional>
#include <memory>
#include <optional>

namespace tolvex {

inline constexpr int TerminalRecordLength = 128;
inline constexpr int TerminalNameLength = 30;

// Texts are as long as their fields, padded with blanks; a longer one is cut when it is written.
struct TerminalRecord {
    QString IdName;            // what users call this number
    QString NetworkName;       // computer that uses it
    qint32 LastUsedDay = 0;    // day count whose day 1 is 31 December 1899
    float LastUsedSeconds = 0; // since midnight
    qint32 Number68 = 0;       // kept as read
    QString Text72;            // kept as read

    bool operator==(const TerminalRecord&) const = default;
    // When the number was last used; not valid where the day is below 1 or from 60000 upward.
    QDateTime lastUsed() const;
    void setLastUsed(const QDateTime& time);
};
using TerminalBytes = std::array<char, TerminalRecordLength>;

TerminalRecord BlankTerminalRecord();
TerminalBytes EncodeTerminalRecord(const TerminalRecord& record);
TerminalRecord DecodeTerminalRecord(const TerminalBytes& bytes);

// The list of a workstation's station while the program runs.
struct TerminalList {
    explicit TerminalList(const Settings& workstation)
        : settings(workstation) {}

    const Settings& settings;                   // they outlive the list
    std::unique_ptr<platform::RecordFile> file; // null: closed
    TerminalRecord own = BlankTerminalRecord(); // what ReadOwnTerminalRecord found
};

// Opens the list, making it (after a question, unless automatic configuration runs) and growing it with blank
// records to NumberTerminals. True when the caller may go on, which includes No to the question: the list is
// then not open. False on Cancel, without system settings or workstations, and when the file cannot be
// opened.
bool OpenTerminalList(TerminalList& terminals);
// Opens a list that is there, without a question and without changing it. False when it cannot be opened.
bool ReopenTerminalList(TerminalList& terminals);
void CloseTerminalList(TerminalList& terminals);
bool TerminalListIsOpen(const TerminalList& terminals);
// What is wrong with the list's file, a sentence: it is torn inside a record, or has too few workstations.
// Empty if nothing is, and if there is no file.
QString TerminalListFault(const TerminalList& terminals);

// Full path of the list.
QString TerminalListPath(const TerminalList& terminals);

// One record. A number beyond the end of the file, or any failure, gives the blank record.
TerminalRecord ReadTerminal(const TerminalList& terminals, int id);
// FileError number; BadFileNumber while the list is closed, and for a number below 1 or above
// NumberTerminals.
int WriteTerminal(TerminalList& terminals, int id, const TerminalRecord& record);

// The records of numbers 1 to NumberTerminals; entry 0 is number 1.
QList<TerminalRecord> ReadTerminals(const TerminalList& terminals);
// The same from the file that stands at the list's path now; nothing if a record cannot be read.
std::optional<QList<TerminalRecord>> ReadTerminalsAnew(TerminalList& terminals);

// Opens the list and reads the record of this workstation's number, if that is 1 or more.
void ReadOwnTerminalRecord(TerminalList& terminals);

// The name of the computer in a record, as comparisons take it: trimmed, up to a zero character.
QString NetworkNameOf(const TerminalRecord& record);
// Whether a record names this computer: without regard to case, as far as the field holds a name.
bool IsOnComputer(const TerminalRecord& record, const QString& computerName);

// Each of the three below changes the list in one step, which other workstations of this program wait for.
// The list is open. FileError number of the first failure, which ends it: PermissionDenied when another
// workstation kept the step.

// The number that automatic configuration gives a computer.
struct ClaimedTerminal {
    int id = 1;
    int error = 0;  // FileError: the computer's name could not be put on the record
    QString holder; // the computer that has the number all the same, when no number was free
};

// Finds the number whose network name is the computer's, without regard to case; otherwise takes the first
// one without a network name by putting the computer's name on it; otherwise number 1, whose name stays.
ClaimedTerminal ClaimTerminal(TerminalList& terminals, const QString& computerName);

// Whether a name of the list can hold a character: one of the file's code page, and no control character.
bool FitsTerminalName(QChar character);

// Goes through the records from 1 to NumberTerminals: the name from `idNames` (entry 0 is number 1; where the
// list is shorter, or its text is null, the name stays), this computer's name on `chosenId`, and none where
// another one holds that name. A record that cannot be read is not written. TerminalTaken, and nothing
// written, when the chosen record names another computer than `seenName`, the one that the user saw there;
// *holder is then that computer. A null `seenName` takes it over from anybody. `confirm` runs while the step
// is held and the records are written. All or nothing: where it gives false, or a record cannot be written,
// the records get back what they held.
inline constexpr int TerminalTaken = -1;
int AssignTerminal(TerminalList& terminals, int chosenId, const QStringList& idNames,
                   const QString& computerName, const QString& seenName = {}, QString* holder = nullptr,
                   const std::function<bool()>& confirm = {});

// Gives a number another name.
int RenameTerminal(TerminalList& terminals, int id, const QString& name);

// Puts this computer and the present time on the record of this workstation's number, and opens the list
// again. False when there is no such number or the record cannot be written.
bool StampOwnTerminalRecord(TerminalList& terminals);

} // namespace tolvex
