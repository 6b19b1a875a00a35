#include "app/ctl/Command.h"

#include "platform/paths/Paths.h"

#include <QDir>

namespace tolvex::ctl {

int Command::fewest() const {
    int depth = 0;
    int count = 0;
    for (const QString& word : QString::fromLatin1(arguments).split(u' ', Qt::SkipEmptyParts)) {
        depth += static_cast<int>(word.count(u'['));
        count += depth == 0 && word != QLatin1String("...");
        depth -= static_cast<int>(word.count(u']'));
    }
    return count;
}

int Command::most() const {
    const QStringList names = QString::fromLatin1(arguments).split(u' ', Qt::SkipEmptyParts);
    return names.contains(QLatin1String("...")) ? -1 : static_cast<int>(names.size());
}

Command Changing(Command row, bool (*when)(const Call& call)) {
    row.changes = when;
    return row;
}

Command ForIniFiles(Command row) {
    row.bareFile = BareFile::WindowsFolder;
    return row;
}

void NoteListFault(const Call& call, const QString& fault) {
    call.output.note(fault + QStringLiteral(" \"tolvexctl carts repair\" mends it."));
}

int Call::end(const QString& why, int number, Exit status) const {
    output.say(why);
    output.setError(why, number);
    return status;
}

std::optional<QString> FileArgument(const QString& given, BareFile bare, QString* why) {
    const bool ofTheSuite = given.contains(u'\\') || (given.size() > 1 && given[1] == u':');
    const bool inWindowsFolder = bare == BareFile::WindowsFolder && !given.contains(u'/');
    if (given.isEmpty()) {
        *why = QStringLiteral("The name of a file is expected, not an empty text.");
        return std::nullopt;
    }
    if (ofTheSuite || inWindowsFolder)
        return given;
    const QString host = QDir::current().absoluteFilePath(given);
    const QString path = platform::WindowsPath(host);
    if (!path.isEmpty())
        return path;
    *why = QStringLiteral("No drive leads to %1: link one to its folder in %2/dosdevices.")
               .arg(host, platform::MachineFolder());
    return std::nullopt;
}

bool ResolveFiles(Call& call, QString* why) {
    call.paths.clear();
    // Then FILE is the name of a database on the server.
    if (call.has("--connect"))
        return true;
    const QStringList names =
        QString::fromLatin1(call.command.arguments).remove(u'[').remove(u']').split(u' ', Qt::SkipEmptyParts);
    for (qsizetype at = 0; at < call.arguments.size(); ++at) {
        const QString name = names.value(at);
        QString path;
        if (name == u"FILE" || name == u"FOLDER" || name.endsWith(u".INI")) {
            const std::optional<QString> found = FileArgument(call.arguments[at], call.command.bareFile, why);
            if (!found)
                return false;
            path = *found;
        }
        call.paths += path;
    }
    return true;
}

} // namespace tolvex::ctl
