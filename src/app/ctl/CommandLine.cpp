#include "app/ctl/CommandLine.h"

#include <algorithm>
#include <numeric>

namespace tolvex::ctl {

namespace {

const Command* findCommand(const QStringList& words) {
    const QString joined = words.join(u' ');
    for (const Command& command : AllCommands())
        if (joined == QLatin1String(command.words))
            return &command;
    return nullptr;
}

// Whether longer commands begin with these words.
bool isGroup(const QStringList& words) {
    const QString start = words.join(u' ') + u' ';
    return std::any_of(AllCommands().begin(), AllCommands().end(), [&start](const Command& command) {
        return QString::fromLatin1(command.words).startsWith(start);
    });
}

QString suggestion(const QString& nearest) {
    return nearest.isEmpty() ? QString() : QStringLiteral(" Did you mean \"%1\"?").arg(nearest);
}

QString unknownCommand(const QStringList& words) {
    const QString given = words.join(u' ');
    const QString start = words.size() > 1 ? words.first() + u' ' : QString();
    QStringList candidates;
    for (const Command& command : AllCommands()) {
        const QString name = QString::fromLatin1(command.words);
        if (name.startsWith(start))
            candidates += name;
        if (start.isEmpty())
            candidates += name.section(u' ', 0, 0);
    }
    return QStringLiteral("There is no command \"%1\".").arg(given) +
           suggestion(NearestMatch(given, candidates)) +
           QStringLiteral(" \"tolvexctl --help\" lists them all.");
}

QString unknownOption(const QString& name, const Command* command) {
    QStringList candidates;
    for (const Option& option : GlobalOptions())
        candidates += QLatin1String(option.name);
    if (command)
        for (const Option& option : command->options)
            candidates += QLatin1String(option.name);
    return QStringLiteral("There is no option \"%1\"%2.")
               .arg(name,
                    command ? QStringLiteral(" of \"%1\"").arg(QLatin1String(command->words)) : QString()) +
           suggestion(NearestMatch(name, candidates));
}

// Takes the option at `at`, with its value, which may be the next word.
QString takeOption(const QStringList& given, qsizetype& at, CommandLine& line) {
    const QString name = given[at].section(u'=', 0, 0);
    const bool hasValue = given[at].contains(u'=');
    const Option* option = FindOption(name, line.command);
    if (!option)
        return unknownOption(name, line.command);
    if (!option->value && hasValue)
        return QStringLiteral("Option \"%1\" takes no value.").arg(name);
    if (!option->value) {
        line.options[name] = QString();
        return {};
    }
    if (!hasValue && at + 1 >= given.size())
        return QStringLiteral("Option \"%1\" needs a value: %1 %2.").arg(name, QLatin1String(option->value));
    line.options[name] = hasValue ? given[at].section(u'=', 1) : given[++at];
    return {};
}

// A word that is not an option: of the command while it continues, else an argument.
void takeWord(const QString& word, CommandLine& line) {
    if (line.command || (!line.words.isEmpty() && !isGroup(line.words))) {
        line.arguments += word;
        return;
    }
    line.words += word;
    line.command = findCommand(line.words);
}

QString checkCommand(const CommandLine& line) {
    if (line.has("--help") || line.has("--version"))
        return line.command || line.words.isEmpty() || isGroup(line.words) ? QString()
                                                                           : unknownCommand(line.words);
    if (line.words.isEmpty())
        return QStringLiteral("A command is expected; \"tolvexctl --help\" lists them.");
    if (!line.command && isGroup(line.words)) {
        QStringList next;
        for (const Command& command : AllCommands())
            if (const QString name = QString::fromLatin1(command.words);
                name.startsWith(line.words.join(u' ') + u' '))
                next += name.section(u' ', static_cast<int>(line.words.size()));
        return QStringLiteral("Behind \"%1\" one of these is expected: %2.")
            .arg(line.words.join(u' '), next.join(QLatin1String(", ")));
    }
    if (!line.command)
        return unknownCommand(line.words);
    const Command& command = *line.command;
    if (line.arguments.size() < command.fewest() ||
        (command.most() >= 0 && line.arguments.size() > command.most()))
        return QStringLiteral("Expected: tolvexctl %1 %2")
            .arg(QLatin1String(command.words), QLatin1String(command.arguments))
            .trimmed();
    return {};
}

} // namespace

const std::vector<Option>& GlobalOptions() {
    static const std::vector<Option> options = {
        {"--home", "DIR", "the machine folder (else $TOLVEX_HOME, else $XDG_DATA_HOME/tolvex)"},
        {"--ini", "FILE", "the local ini file"},
        {"--sys-ini", "FILE", "the system ini file"},
        {"--json", nullptr, "one JSON document on standard output"},
        {"--yes", nullptr, "answer Yes to every question"},
        {"--no", nullptr, "answer No to every question"},
        {"--quiet", nullptr, "no notes on standard error"},
        {"--help", nullptr, "show how a command is used"},
        {"--version", nullptr, "show the version of the program"},
    };
    return options;
}

const Option* FindOption(const QString& name, const Command* command) {
    for (const Option& option : GlobalOptions())
        if (name == QLatin1String(option.name))
            return &option;
    if (command)
        for (const Option& option : command->options)
            if (name == QLatin1String(option.name))
                return &option;
    return nullptr;
}

CommandLine ParseCommandLine(const QStringList& given) {
    CommandLine line;
    bool optionsEnded = false;
    for (qsizetype at = 0; at < given.size() && line.problem.isEmpty(); ++at) {
        if (!optionsEnded && given[at] == QLatin1String("--"))
            optionsEnded = true;
        else if (!optionsEnded && given[at].startsWith(QLatin1String("--")))
            line.problem = takeOption(given, at, line);
        else if (!optionsEnded && given[at] == QLatin1String("-h"))
            line.options[QStringLiteral("--help")] = QString();
        else
            takeWord(given[at], line);
    }
    // Errors in the words are reported in the requested form, wherever that option is.
    if (!line.problem.isEmpty() && given.contains(QLatin1String("--json")))
        line.options[QStringLiteral("--json")] = QString();
    if (line.problem.isEmpty())
        line.problem = checkCommand(line);
    if (line.problem.isEmpty() && line.has("--yes") && line.has("--no"))
        line.problem = QStringLiteral("Either --yes or --no is expected, not both.");
    return line;
}

QString NearestMatch(const QString& word, const QStringList& candidates) {
    QString nearest;
    qsizetype best = std::max<qsizetype>(2, word.size() / 3) + 1;
    for (const QString& candidate : candidates) {
        // Edit distance, row by row; a candidate of very different length cannot be close.
        if (qAbs(candidate.size() - word.size()) >= best)
            continue;
        std::vector<qsizetype> row(static_cast<size_t>(candidate.size()) + 1);
        std::iota(row.begin(), row.end(), 0);
        for (qsizetype i = 0; i < word.size(); ++i) {
            qsizetype diagonal = std::exchange(row[0], i + 1);
            for (qsizetype j = 0; j < candidate.size(); ++j) {
                const auto at = static_cast<size_t>(j);
                const qsizetype changed = diagonal + (word[i] == candidate[j] ? 0 : 1);
                diagonal = row[at + 1];
                row[at + 1] = std::min({changed, row[at] + 1, diagonal + 1});
            }
        }
        if (row.back() < best) {
            best = row.back();
            nearest = candidate;
        }
    }
    return nearest;
}

} // namespace tolvex::ctl
