#include "app/ctl/Asking.h"

#include "databases/store/Report.h"
#include "platform/Prompts.h"
#include "platform/host/LookOnly.h"
#include "platform/paths/Paths.h"

namespace tolvex::ctl {

namespace {

// Runs the routine of the command; errors that the databases kept silent make it fail.
int run(Call& call) {
    SilentErrors silent;
    QString why;
    int status = ResolveFiles(call, &why) ? call.command.run(call) : call.fail(why);
    for (const DatabaseError& error : silent.take())
        status = call.fail(QStringLiteral("%1 (error %2)").arg(error.text).arg(error.number), error.number);
    return status;
}

} // namespace

Output::Ending EndingOf(int status) {
    return status == Done     ? Output::Ending::Done
           : status == Failed ? Output::Ending::Failed
                              : Output::Ending::No;
}

bool SettleMachine(const CommandLine& line, StartUp& startUp, QString* why) {
    const auto set = [&](const char* option, QString& iniFile) {
        const auto file =
            line.has(option) ? FileArgument(line.option(option), BareFile::WindowsFolder, why) : QString();
        iniFile = file.value_or(QString());
        return file.has_value();
    };
    return platform::SetMachineFolder(line.option("--home"), why) && set("--ini", startUp.localIni) &&
           set("--sys-ini", startUp.systemIni);
}

int RunCommand(const CommandLine& line, Call& call) {
    if (!line.problem.isEmpty())
        return call.wrong(line.problem);
    std::optional<platform::LookOnly> looking;
    if (!call.command.changes || !call.command.changes(call))
        looking.emplace();
    QString why;
    return SettleMachine(line, call.station.startUp, &why) ? run(call) : call.fail(why);
}

Answer Ask(const QStringList& words, const StartUp& startUp) {
    const platform::LookOnly looking;
    platform::Prompts* const asking = platform::setPrompts(nullptr);
    const CommandLine line = ParseCommandLine(words);
    Output output = Output::Kept();
    Workstation station;
    station.startUp.localIni = startUp.localIni;
    station.startUp.systemIni = startUp.systemIni;
    Session session(station);
    Answer answer;
    if (line.command && line.problem.isEmpty()) {
        Call call{*line.command, output, session, station, line.arguments, line.options};
        answer.status = run(call);
    } else {
        output.setError(line.problem, 0);
    }
    answer.document = output.ended(EndingOf(answer.status), {});
    platform::setPrompts(asking);
    return answer;
}

} // namespace tolvex::ctl
