// The words that tolvexctl was called with, taken apart by the rows of the commands.
#pragma once

#include "app/ctl/Commands.h"

#include <optional>

namespace tolvex::ctl {

// Options that stand with every command.
const std::vector<Option>& GlobalOptions();

struct CommandLine {
    const Command* command = nullptr; // null where help is asked for a group or for all, or words are wrong
    QStringList words;                // of the command or group
    QStringList arguments;
    QMap<QString, QString> options;
    QString problem; // what is wrong and what was expected; empty when all is well

    bool has(const char* option) const { return options.contains(QLatin1String(option)); }
    QString option(const char* name) const { return options.value(QLatin1String(name)); }
};

// Takes the words behind the program's name. Options may stand anywhere; "--" ends them.
CommandLine ParseCommandLine(const QStringList& given);

// The option of that name ("--json"), of a command (null: none) or of every command; null when there is none.
const Option* FindOption(const QString& name, const Command* command);

// The candidate that is spelled most like `word`, or empty when none is near.
QString NearestMatch(const QString& word, const QStringList& candidates);

} // namespace tolvex::ctl
