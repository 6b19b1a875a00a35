#include "app/ctl/Help.h"

#include "app/ctl/CommandLine.h"

#include <algorithm>

namespace tolvex::ctl {

namespace {

const QString synopsis = QStringLiteral("tolvexctl [OPTION]... COMMAND [ARGUMENT]...");

QString optionText(const Option& option) {
    const QString name = QLatin1String(option.name);
    return option.value ? name + u' ' + QLatin1String(option.value) : name;
}

QString usage(const Command& command) {
    QString text = QLatin1String(command.words);
    if (*command.arguments)
        text += u' ' + QLatin1String(command.arguments);
    for (const Option& option : command.options)
        text += QStringLiteral(" [%1]").arg(optionText(option));
    return text;
}

QString optionLines(const std::vector<Option>& options) {
    qsizetype width = 0;
    for (const Option& option : options)
        width = std::max(width, optionText(option).size());
    QString text;
    for (const Option& option : options)
        text += QStringLiteral("  %1  %2\n")
                    .arg(optionText(option).leftJustified(width), QLatin1String(option.help));
    return text;
}

// Text for the man macros: hyphens that are meant as such, and no line that begins with a request.
QString escaped(QString text) {
    text.replace(u'\\', QLatin1String("\\e")).replace(u'-', QLatin1String("\\-"));
    return text.startsWith(u'.') || text.startsWith(u'\'') ? QLatin1String("\\&") + text : text;
}

QString entry(const QString& term, const QString& text) {
    return QStringLiteral(".TP\n.B %1\n%2\n").arg(escaped(term), escaped(text));
}

} // namespace

QString HelpFor(const Command& command) {
    QString text = QStringLiteral("tolvexctl %1\n\n%2.\n").arg(usage(command), QLatin1String(command.help));
    if (!command.options.empty())
        text += u'\n' + optionLines(command.options);
    return text;
}

QString HelpForGroup(const QStringList& words) {
    const QString start = words.isEmpty() ? QString() : words.join(u' ') + u' ';
    QString text;
    if (words.isEmpty())
        text += synopsis + QLatin1String("\n\nSets up a workstation of the suite from a shell.\n\n");
    for (const Command& command : AllCommands())
        if (QString::fromLatin1(command.words).startsWith(start))
            text += QStringLiteral("  %1\n      %2\n").arg(usage(command), QLatin1String(command.help));
    if (words.isEmpty())
        text += QLatin1String("\nOptions:\n") + optionLines(GlobalOptions()) +
                QLatin1String("\nExit status: 0 done or yes, 1 no, 2 wrong usage, 3 failed.\n");
    return text;
}

QString ManualPage() {
    QString text = QStringLiteral(
        ".TH TOLVEXCTL 1 \"\" \"Tolvex Configuration\" \"User Commands\"\n"
        ".SH NAME\ntolvexctl \\- set up a workstation of the Tolvex suite from a shell\n"
        ".SH SYNOPSIS\n.B tolvexctl\n[\\fIOPTION\\fR]... \\fICOMMAND\\fR [\\fIARGUMENT\\fR]...\n"
        ".SH DESCRIPTION\nDoes every job of the configuration window without one: for scripts, remote "
        "shells\n"
        "and the set\\-up of many workstations. Paths of the suite are given as Windows paths\n"
        "(C:\\eTOLVEX\\eSYSTEM); where a FILE is asked for, a path of this system works too. A FILE without "
        "a\n"
        "folder lies in the current folder, but for ini files, which lie in the Windows folder.\n"
        "Without \\fB\\-\\-json\\fR the output is for people.\n"
        ".PP\nQuestions go to the terminal. Where there is none they get their default, or the answer that\n"
        "\\fB\\-\\-yes\\fR or \\fB\\-\\-no\\fR gives. Messages of the system go to standard error.\n"
        ".SH OPTIONS\n");
    for (const Option& option : GlobalOptions())
        text += entry(optionText(option), QLatin1String(option.help));
    text += QLatin1String(".TP\n.B \\-\\-\nends the options; what follows is taken as it is\n.SH COMMANDS\n");
    for (const Command& command : AllCommands()) {
        text += entry(usage(command), QLatin1String(command.help));
        for (const Option& option : command.options)
            text += QStringLiteral(".RS\n") + entry(optionText(option), QLatin1String(option.help)) +
                    QLatin1String(".RE\n");
    }
    text += QLatin1String(".SH EXIT STATUS\n");
    text += entry(QStringLiteral("0"), QStringLiteral("done, or the answer is yes"));
    text += entry(QStringLiteral("1"),
                  QStringLiteral("the answer is no: not configured, nothing found, check failed"));
    text += entry(QStringLiteral("2"), QStringLiteral("wrong usage; standard error says what was expected"));
    text += entry(QStringLiteral("3"), QStringLiteral("it failed; standard error says why"));
    text += QLatin1String(".SH ENVIRONMENT\n");
    text +=
        entry(QStringLiteral("TOLVEX_HOME"), QStringLiteral("the machine folder, where --home is not given"));
    return text;
}

// Completes commands word by word, options behind a hyphen, and files everywhere else.
QString BashCompletion() {
    QStringList options;
    for (const Option& option : GlobalOptions())
        options += QLatin1String(option.name);
    QString text = QStringLiteral("# bash completion for tolvexctl\n"
                                  "_tolvexctl() {\n"
                                  "    local word=${COMP_WORDS[COMP_CWORD]} words=\"\" next=\"\" i\n"
                                  "    COMPREPLY=()\n"
                                  "    for ((i = 1; i < COMP_CWORD; i++)); do\n"
                                  "        case ${COMP_WORDS[i]} in\n"
                                  "        --home | --ini | --sys-ini) ((i++)) ;;\n"
                                  "        -*) ;;\n"
                                  "        *) words+=\"${words:+ }${COMP_WORDS[i]}\" ;;\n"
                                  "        esac\n"
                                  "    done\n"
                                  "    local options=\"%1\"\n"
                                  "    case $words in\n")
                       .arg(options.join(u' '));
    QMap<QString, QStringList> groups;
    for (const Command& command : AllCommands()) {
        const QStringList words = QString::fromLatin1(command.words).split(u' ');
        for (qsizetype i = 0; i < words.size(); ++i) {
            QStringList& next = groups[words.mid(0, i).join(u' ')];
            if (!next.contains(words[i]))
                next += words[i];
        }
    }
    for (auto group = groups.cbegin(); group != groups.cend(); ++group)
        text += QStringLiteral("    \"%1\") next=\"%2\" ;;\n").arg(group.key(), group->join(u' '));
    text += QLatin1String("    esac\n    case $words in\n");
    for (const Command& command : AllCommands()) {
        QStringList own;
        for (const Option& option : command.options)
            own += QLatin1String(option.name);
        if (!own.isEmpty())
            text += QStringLiteral("    \"%1\"*) options+=\" %2\" ;;\n")
                        .arg(QLatin1String(command.words), own.join(u' '));
    }
    text += QLatin1String("    esac\n"
                          "    if [[ $word == -* ]]; then\n"
                          "        mapfile -t COMPREPLY < <(compgen -W \"$options\" -- \"$word\")\n"
                          "    elif [[ -n $next ]]; then\n"
                          "        mapfile -t COMPREPLY < <(compgen -W \"$next\" -- \"$word\")\n"
                          "    else\n"
                          "        mapfile -t COMPREPLY < <(compgen -f -- \"$word\")\n"
                          "    fi\n"
                          "}\n"
                          "complete -o filenames -F _tolvexctl tolvexctl\n");
    return text;
}

} // namespace tolvex::ctl
