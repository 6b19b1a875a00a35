#include "network/commands/CommandFolder.h"

#include "core/report/Folders.h"
#include "core/report/ProblemReport.h"
#include "core/text/PathNames.h"
#include "platform/files/Files.h"

namespace tolvex {

namespace {

const QString extension = QStringLiteral(".TCD");

std::optional<CommandRecord> readFile(const QString& path, QString* why) {
    const auto refuse = [why](const QString& sentence) {
        if (why)
            *why = sentence;
        return std::nullopt;
    };
    const QString unreadable = QStringLiteral("\"%1\" cannot be read.").arg(path);
    const qint64 size = platform::FileSize(path);
    if (size < 0)
        return refuse(platform::FileExists(path) ? unreadable
                                                 : QStringLiteral("There is no file \"%1\".").arg(path));
    if (size < CommandHeaderLength)
        return refuse(
            QStringLiteral("\"%1\" is not a command: it has %2 bytes, and a command has %3 or more.")
                .arg(path)
                .arg(size)
                .arg(CommandHeaderLength));
    const std::optional<QByteArray> bytes = platform::ReadWholeFile(path, LongestCommandFile);
    const std::optional<CommandRecord> command = bytes ? DecodeCommand(*bytes) : std::nullopt;
    return command ? command : refuse(unreadable);
}

} // namespace

QString ListedCommand::typeText() const {
    if (!fault.isEmpty())
        return QStringLiteral("Not readable");
    const NamedValue* row = FindValue(CommandTypes(), type);
    return row ? QLatin1String(row->text) : QStringLiteral("Unknown (%1)").arg(type);
}

namespace {

QString answer(const ListedCommand& command, qint32 flag) {
    if (!command.fault.isEmpty() || (command.type != SerialCommand && command.type != TcpIpCommand))
        return QStringLiteral("n/a");
    return (command.flags & flag) != 0 ? QStringLiteral("Yes") : QStringLiteral("No");
}

} // namespace

QString ListedCommand::leaveActiveText() const {
    return answer(*this, LeaveConnectionOpen);
}

QString ListedCommand::useExistingText() const {
    return answer(*this, UseExistingConnection);
}

CommandFolder::CommandFolder(const QString& dataLocation)
    : path_(dataLocation + QStringLiteral("\\Commands")) {}

QString CommandFolder::fileOf(const QString& name) const {
    return path_ + u'\\' + name.trimmed() + extension;
}

QList<ListedCommand> CommandFolder::list() const {
    QList<ListedCommand> commands;
    for (const QString& file : platform::FolderNames(path_)) {
        const QString path = path_ + u'\\' + file;
        if (!file.endsWith(extension, Qt::CaseInsensitive) || !platform::FileExists(path))
            continue;
        ListedCommand listed;
        listed.name = file.chopped(extension.size());
        if (const std::optional<CommandRecord> command = readFile(path, &listed.fault)) {
            listed.type = command->Type;
            listed.flags = command->Flags;
        }
        commands += listed;
    }
    return commands;
}

bool CommandFolder::has(const QString& name) const {
    return !name.trimmed().isEmpty() && platform::FileExists(fileOf(name));
}

QString CommandFolder::otherSpelling(const QString& name) const {
    const QString wanted = name.trimmed();
    const QStringList files = platform::FolderNames(path_);
    if (files.contains(wanted + extension))
        return {};
    for (const QString& file : files)
        if (file.compare(wanted + extension, Qt::CaseInsensitive) == 0 &&
            file.chopped(extension.size()) != wanted)
            return file.chopped(extension.size());
    return {};
}

std::optional<CommandRecord> CommandFolder::read(const QString& name, QString* why) const {
    return readFile(fileOf(name), why);
}

bool CommandFolder::save(const QString& name, const CommandRecord& command) const {
    const bool replaces = has(name);
    if (!CreatePath(path_, true))
        return ProblemReport(QStringLiteral("creating the folder %1").arg(path_), platform::PathNotFound),
               false;
    const int error = platform::ReplaceWholeFile(fileOf(name), EncodeCommand(command));
    if (error != platform::NoError)
        ProblemReport(replaces ? QStringLiteral("removing the old command")
                               : QStringLiteral("saving the command"),
                      error);
    return error == platform::NoError;
}

bool CommandFolder::rename(const QString& name, const QString& newName) const {
    const int error = platform::RenameFile(fileOf(name), fileOf(newName));
    if (error != platform::NoError)
        ProblemReport(QStringLiteral("renaming the command"), error);
    return error == platform::NoError;
}

bool CommandFolder::remove(const QString& name) const {
    const int error = platform::RemoveFile(fileOf(name));
    if (error != platform::NoError)
        ProblemReport(QStringLiteral("deleting the command"), error);
    return error == platform::NoError;
}

} // namespace tolvex
