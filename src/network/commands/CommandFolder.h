// The commands of a station: one file each in the folder "Commands" of the data location, named after the
// command. Names match without regard to case.
#pragma once

#include "network/commands/CommandRecord.h"

#include <QList>

namespace tolvex {

// A row of the list of commands.
struct ListedCommand {
    QString name;
    qint32 type = SuiteCommand;
    qint32 flags = 0;
    QString fault; // a sentence if the file is not a command; otherwise empty

    QString typeText() const; // "Serial Command"
    // "Yes" or "No", and "n/a" for a type without connections.
    QString leaveActiveText() const;
    QString useExistingText() const;
};

class CommandFolder {
public:
    explicit CommandFolder(const QString& dataLocation);

    const QString& path() const { return path_; }
    // The name is trimmed.
    QString fileOf(const QString& name) const;

    // In the order of the folder.
    QList<ListedCommand> list() const;
    bool has(const QString& name) const;
    // How the file of that name is spelled, where that differs from `name`; otherwise empty.
    QString otherSpelling(const QString& name) const;

    // Nothing, and a sentence in *why, if the file is missing, cannot be read or is not a command.
    std::optional<CommandRecord> read(const QString& name, QString* why = nullptr) const;

    // Each of the three below returns true on success. A failure is reported and leaves the file as it was.
    //
    // Writes a command, or replaces the one of that name: a stop at any moment leaves the old command or the
    // new one. A file that exists keeps the spelling of its name.
    bool save(const QString& name, const CommandRecord& command) const;
    // Also false if another command has the new name. A change of case alone is a new name.
    bool rename(const QString& name, const QString& newName) const;
    bool remove(const QString& name) const;

private:
    QString path_;
};

} // namespace tolvex
