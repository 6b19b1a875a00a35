// Parses the arguments of tolvexctl with the rows of the commands.
#pragma once

#include "app/ctl/Commands.h"

#include <optional>

namespace tolvex::ctl {

// Options of every command.
const std::vector<Option>& GlobalOptions();

struct CommandLine {
    const Command* command = nullptr; // null for the help of a group or of all, and for wrong words
    QStringList words;                // of the command or group
    QStringList arguments;
    QMap<QString, QString> options;
    QString problem; // what is wrong and what was expected; empty if nothing is

    bool has(const char* option) const { return options.contains(QLatin1String(option)); }
    QString option(const char* name) const { return options.value(QLatin1String(name)); }
};

// Parses the words after the program's name. Options may be anywhere; "--" ends them.
CommandLine ParseCommandLine(const QStringList& given);

// The option of that name ("--json"), of a command (null: none) or of every command; null if there is none.
const Option* FindOption(const QString& name, const Command* command);

// The candidate with the spelling closest to `word`, or empty if none is close.
QString NearestMatch(const QString& word, const QStringList& candidates);

} // namespace tolvex::ctl
