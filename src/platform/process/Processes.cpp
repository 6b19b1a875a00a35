#include "platform/process/Processes.h"

#include "platform/Prompts.h"
#include "platform/files/Files.h"
#include "platform/host/HostFiles.h"
#include "platform/paths/Paths.h"
#include "platform/process/ChildProcess.h"

#include <QProcess>
#include <QStandardPaths>

#include <algorithm>
#include <optional>
#include <utility>

namespace tolvex::platform {

namespace {

// Longest time, in milliseconds, that a wait blocks events, regardless of the requested step.
constexpr int longestRest = 20;

// The host path of a program: a path as it stands; a bare name in the folders that the platform searches,
// then on the host's own search path; each also with ".exe" appended. Empty if there is none.
QString findProgram(const QString& program) {
    for (const QString& name : {program, program + QStringLiteral(".exe")}) {
        if (name.contains(u'\\') || name.contains(u'/') || name.contains(u':')) {
            if (FileExists(name))
                return HostPath(name);
            continue;
        }
        for (const QString& folder : {ApplicationFolder(), CurrentFolder(), SystemFolder(), WindowsFolder()})
            if (const QString path = folder + u'\\' + name; FileExists(path))
                return HostPath(path);
        if (QString onPath = QStandardPaths::findExecutable(name); !onPath.isEmpty())
            return onPath;
    }
    return {};
}

bool isWindowsProgram(const QString& hostPath) {
    QFile file(hostPath);
    return file.open(QIODevice::ReadOnly) && file.read(2) == "MZ";
}

// Splits arguments at blanks outside double quotes, as the platform's C
// run-time does: quotes are not part of an argument, except that two in
// a row inside quotes stand for one; an empty pair is an empty argument.
QStringList splitArguments(const QString& text) {
    QStringList arguments;
    QString argument;
    bool begun = false;
    bool quoted = false;
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (quoted && QStringView(text).sliced(at).startsWith(u"\"\"")) {
            argument += u'"';
            ++at;
        } else if (text[at] == u'"') {
            quoted = !quoted;
            begun = true;
        } else if (quoted || !text[at].isSpace()) {
            argument += text[at];
            begun = true;
        } else if (std::exchange(begun, false)) {
            arguments += std::exchange(argument, QString());
        }
    }
    if (begun)
        arguments += argument;
    return arguments;
}

// The settings of a process that do not depend on how it is awaited.
void prepare(QProcess& process, const QString& hostPath, const QString& arguments,
             const std::optional<int>& windowStyle) {
    process.setProgram(hostPath);
    process.setArguments(splitArguments(arguments));
    process.setWorkingDirectory(HostPath(CurrentFolder()));
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    // Programs of the suite must find the same machine folder.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("TOLVEX_HOME"), MachineFolder());
    if (windowStyle)
        environment.insert(QStringLiteral("TOLVEX_WINDOW_STYLE"), QString::number(*windowStyle));
    process.setProcessEnvironment(environment);
    SetFree(process);
}

// Starts a program by its name, which may be in quotes.
bool start(const QString& program, const QString& arguments, ProcessWait wait, int stepMilliseconds,
           const std::optional<int>& windowStyle, QString* why) {
    QString name = program.trimmed();
    if (name.size() >= 2 && name.startsWith(u'"') && name.endsWith(u'"'))
        name = name.mid(1, name.size() - 2);
    const auto fail = [&](const QString& reason) {
        if (why)
            *why = QStringLiteral("\"%1\" %2.").arg(name, reason);
        return false;
    };
    const QString hostPath = findProgram(name);
    if (name.isEmpty() || hostPath.isEmpty())
        return fail(QStringLiteral("was not found"));

    QProcess process;
    prepare(process, hostPath, arguments, windowStyle);
    const bool waits = wait == ProcessWait::End || wait == ProcessWait::IdleThenEnd;
    bool started = false;
    if (waits) {
        process.start();
        started = process.waitForStarted(-1);
    } else {
        started = process.startDetached();
    }
    if (!started) {
        if (isWindowsProgram(hostPath))
            return fail(
                QStringLiteral("is a Windows program, and nothing on this system is registered to run it"));
        if (!MayAccess(hostPath, Access::Run))
            return fail(QStringLiteral("may not be run as a program"));
        return fail(QStringLiteral("could not be started"));
    }
    while (waits && !process.waitForFinished(std::clamp(stepMilliseconds, 1, longestRest)) &&
           process.state() != QProcess::NotRunning)
        prompts().processEvents();
    return true;
}

// Where the program of a command line ends.
qsizetype programLength(const QString& line) {
    if (line.startsWith(u'"')) {
        const qsizetype end = line.indexOf(u'"', 1);
        return end < 0 ? line.size() : end + 1;
    }
    for (qsizetype blank = line.indexOf(u' '); blank >= 0; blank = line.indexOf(u' ', blank + 1))
        if (!findProgram(line.left(blank)).isEmpty())
            return blank;
    return findProgram(line).isEmpty() && line.contains(u' ') ? line.indexOf(u' ') : line.size();
}

} // namespace

bool StartProcess(const QString& program, const QString& arguments, ProcessWait wait, int stepMilliseconds,
                  QString* why) {
    return start(program, arguments, wait, stepMilliseconds, std::nullopt, why);
}

bool StartCommandLine(const QString& commandLine, int windowStyle, QString* why) {
    const QString line = commandLine.trimmed();
    const qsizetype end = programLength(line);
    return start(line.left(end), line.mid(end), ProcessWait::InputIdle, 0, windowStyle, why);
}

} // namespace tolvex::platform
