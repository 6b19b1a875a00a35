#include "app/ctl/Command.h"

#include "console/LoadSettings.h"
#include "core/Settings.h"
#include "platform/Paths.h"

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

void NoteListFault(const Call& call, const QString& fault) {
    call.output.note(fault + QStringLiteral(" \"tolvexctl carts repair\" mends it."));
}

QString FileArgument(const QString& given) {
    const bool ofTheSuite = given.contains(u'\\') || (given.size() > 1 && given[1] == u':');
    if (ofTheSuite || !given.contains(u'/'))
        return given;
    return platform::WindowsPath(QDir::current().absoluteFilePath(given));
}

bool LoadWorkstation() {
    return ReadLocalSettings() && LoadSystemSettings();
}

} // namespace tolvex::ctl
