// One command of tolvexctl as a row: its words, its arguments, its options, its help and the routine that
// runs it. Parsing, help, the manual page and the shell completion all use these rows.
//
// A subject has a file of its own with its rows and their routines ("ProfileCommands.cpp"); Commands.cpp
// joins them.
#pragma once

#include "app/ctl/Output.h"
#include "station/Session.h"
#include "station/Workstation.h"

#include <QMap>
#include <QStringList>

#include <optional>
#include <vector>

namespace tolvex::ctl {

// Exit status of every command.
enum Exit : int {
    Done = 0,  // also: the answer is yes
    No = 1,    // the answer is no: not configured, nothing found, check failed
    Usage = 2, // wrong usage
    Failed = 3 // standard error says why
};

struct Option {
    const char* name;            // "--last"
    const char* value = nullptr; // its value in the help, "N"; null: a flag
    const char* help = "";
};

// A command with its actual arguments.
struct Call;

// The folder of a bare file name: the Windows folder, for ini files as in the suite, or the shell's current
// folder.
enum class BareFile { WindowsFolder, ShellFolder };

struct Command {
    const char* words;     // "profile get"
    const char* arguments; // "FILE SECTION KEY [DEFAULT]": optional ones in brackets, "..." any number more
    const char* help;      // what it does, a phrase without a full stop
    int (*run)(Call& call);
    std::vector<Option> options = {};
    // Whether a call changes anything; null: none does. A call that changes nothing runs in read-only mode
    // (platform/host/LookOnly.h), whatever the routine uses.
    bool (*changes)(const Call& call) = nullptr;
    BareFile bareFile = BareFile::ShellFolder; // for the arguments FILE, FOLDER and A.INI

    int fewest() const; // arguments
    int most() const;   // -1: any number
};

struct Call {
    const Command& command;
    Output& output;
    Session& session;
    Workstation& station; // of the session
    QStringList arguments;
    QMap<QString, QString> options; // by name; a flag's value is empty
    QStringList paths = {};         // of the arguments that name files, at the same positions

    bool has(const char* option) const { return options.contains(QLatin1String(option)); }
    QString option(const char* name) const { return options.value(QLatin1String(name)); }
    // An argument that may be missing.
    QString argument(int number) const { return arguments.value(number); }

    // An argument that names a file (ResolveFiles), as a path of the suite.
    QString path(int number) const { return paths.value(number); }

    // Each writes one sentence to standard error and returns the matching exit status; `number` is the error
    // number, 0 for none.
    int no(const QString& why) const { return end(why, 0, No); }
    int wrong(const QString& expected) const { return end(expected, 0, Usage); }
    int fail(const QString& why, int number = 0) const { return end(why, number, Failed); }

private:
    int end(const QString& why, int number, Exit status) const;
};

// The row of a command that changes something: in all calls, or in those that `when` selects.
Command Changing(
    Command row, bool (*when)(const Call& call) = [](const Call&) { return true; });

// Notes a fault of a cart list, as a sentence, and its remedy.
void NoteListFault(const Call& call, const QString& fault);

// The row of a command whose FILE is an ini file.
Command ForIniFiles(Command row);

// A user's FILE as a path of the suite: one with a drive, a share or "\" stays as it is, any other is a path
// of this system. Nothing, with a sentence in *why, if no drive of the machine leads to it.
std::optional<QString> FileArgument(const QString& given, BareFile bare, QString* why);

// Fills the paths of a call from the arguments that its command declares as files. False, with a sentence in
// *why, if one cannot be reached.
bool ResolveFiles(Call& call, QString* why);

} // namespace tolvex::ctl
