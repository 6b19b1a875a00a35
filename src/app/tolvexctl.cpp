// tolvexctl: every job of the configuration window from a shell.
#include "app/ctl/CommandLine.h"
#include "app/ctl/Help.h"
#include "app/ctl/TerminalPrompts.h"
#include "console/StartUp.h"
#include "platform/LookOnly.h"
#include "platform/Paths.h"

#include <QCoreApplication>

#include <cstdio>
#include <optional>

using namespace tolvex::ctl;

namespace {

void print(const QString& text) {
    std::fputs(text.toUtf8().constData(), stdout);
}

int run(const CommandLine& line) {
    Output output(line.has("--json"), line.has("--quiet"));
    if (!line.problem.isEmpty())
        return output.say(line.problem), Usage;
    if (line.has("--version"))
        return print(QStringLiteral("tolvexctl " TOLVEX_VERSION "\n")), Done;
    if (line.has("--help"))
        return print(line.command ? HelpFor(*line.command) : HelpForGroup(line.words)), Done;

    Call call{*line.command, output, line.arguments, line.options};
    std::optional<tolvex::platform::LookOnly> looking;
    if (!call.command.changes || !call.command.changes(call))
        looking.emplace();
    QString why;
    if (!tolvex::platform::SetMachineFolder(line.option("--home"), &why))
        return output.say(why), Failed;
    tolvex::SetIniFiles(FileArgument(line.option("--ini")), FileArgument(line.option("--sys-ini")));
    TerminalPrompts prompts(line.has("--yes")  ? TerminalPrompts::Answers::Yes
                            : line.has("--no") ? TerminalPrompts::Answers::No
                                               : TerminalPrompts::Answers::Ask,
                            line.has("--quiet"));
    tolvex::platform::setPrompts(&prompts);
    int status = line.command->run(call);
    if (!output.finish()) {
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
