// tolvexctl: every job of the configuration window from a shell.
#include "app/ctl/CommandLine.h"
#include "app/ctl/Help.h"
#include "app/ctl/TerminalPrompts.h"
#include "databases/store/Report.h"
#include "platform/host/LookOnly.h"
#include "platform/paths/Paths.h"

#include <QCoreApplication>

#include <cstdio>
#include <optional>

using namespace tolvex::ctl;

namespace {

void print(const QString& text) {
    std::fputs(text.toUtf8().constData(), stdout);
}

Output::Ending endingOf(int status) {
    return status == Done     ? Output::Ending::Done
           : status == Failed ? Output::Ending::Failed
                              : Output::Ending::No;
}

// The ini files that the options name. False, with a sentence in *why, when one cannot be reached.
bool setIniFiles(const CommandLine& line, tolvex::StartUp& startUp, QString* why) {
    QMap<QString, QString> files;
    for (const char* option : {"--ini", "--sys-ini"}) {
        if (!line.has(option))
            continue;
        const auto file = FileArgument(line.option(option), BareFile::WindowsFolder, why);
        if (!file)
            return false;
        files[QLatin1String(option)] = *file;
    }
    startUp.localIni = files[QStringLiteral("--ini")];
    startUp.systemIni = files[QStringLiteral("--sys-ini")];
    return true;
}

int start(const CommandLine& line, Call& call) {
    std::optional<tolvex::platform::LookOnly> looking;
    if (!call.command.changes || !call.command.changes(call))
        looking.emplace();
    QString why;
    if (!tolvex::platform::SetMachineFolder(line.option("--home"), &why) ||
        !setIniFiles(line, call.station.startUp, &why) || !ResolveFiles(call, &why))
        return call.fail(why);
    return line.command->run(call);
}

int run(const CommandLine& line) {
    if (line.problem.isEmpty() && line.has("--version"))
        return print(QStringLiteral("tolvexctl " TOLVEX_VERSION "\n")), Done;
    if (line.problem.isEmpty() && line.has("--help"))
        return print(line.command ? HelpFor(*line.command) : HelpForGroup(line.words)), Done;

    Output output(line.has("--json"), line.has("--quiet"));
    TerminalPrompts prompts(line.has("--yes")  ? TerminalPrompts::Answers::Yes
                            : line.has("--no") ? TerminalPrompts::Answers::No
                                               : TerminalPrompts::Answers::Ask,
                            line.has("--quiet"));
    tolvex::platform::setPrompts(&prompts);
    static const Command none{"", "", "", nullptr};
    tolvex::Workstation station;
    tolvex::Session session(station);
    Call call{line.command ? *line.command : none, output, session, station, line.arguments, line.options};
    tolvex::SilentErrors silent;
    int status = line.problem.isEmpty() ? start(line, call) : call.wrong(line.problem);
    for (const tolvex::DatabaseError& error : silent.take())
        status = call.fail(QStringLiteral("%1 (error %2)").arg(error.text).arg(error.number), error.number);
    if (!output.finish(endingOf(status), prompts.lastMessage())) {
        output.say(QStringLiteral("Standard output did not take everything."));
        status = Failed;
    }
    tolvex::platform::setPrompts(nullptr);
    return status;
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const QStringList given = QCoreApplication::arguments().mid(1);
    // What the build installs beside the program.
    if (given == QStringList{QStringLiteral("--print-manual-page")})
        return print(ManualPage()), Done;
    if (given == QStringList{QStringLiteral("--print-bash-completion")})
        return print(BashCompletion()), Done;
    return run(ParseCommandLine(given));
}
