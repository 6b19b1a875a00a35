// tolvexctl: every job of the configuration window from a shell.
#include "app/ctl/Asking.h"
#include "app/ctl/Completion.h"
#include "app/ctl/Help.h"
#include "app/ctl/Manual.h"
#include "app/ctl/TerminalPrompts.h"
#include "core/system/Product.h"

#include <QCoreApplication>

#include <cstdio>

using namespace tolvex::ctl;

namespace {

void print(const QString& text) {
    std::fputs(text.toUtf8().constData(), stdout);
}

int run(const CommandLine& line) {
    if (line.problem.isEmpty() && line.has("--version"))
        return print(QStringLiteral("tolvexctl %1\n").arg(tolvex::ProductVersion())), Done;
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
    int status = RunCommand(line, call);
    if (!output.finish(EndingOf(status), prompts.lastMessage())) {
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
    // For the build, which installs the page, and for shells, which complete words.
    if (given == QStringList{QStringLiteral("--print-manual-page")})
        return print(ManualPage()), Done;
    if (given.value(0) == QLatin1String("--complete"))
        return print(Complete(given.mid(1)).join(u'\n') + u'\n'), Done;
    return run(ParseCommandLine(given));
}
