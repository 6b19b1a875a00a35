#include "app/ctl/Help.h"

#include "app/ctl/CommandLine.h"

#include <algorithm>

namespace tolvex::ctl {

namespace {

const QString synopsis = QStringLiteral("tolvexctl [OPTION]... COMMAND [ARGUMENT]...");

QString optionLines(const std::vector<Option>& options) {
    qsizetype width = 0;
    for (const Option& option : options)
        width = std::max(width, OptionText(option).size());
    QString text;
    for (const Option& option : options)
        text += QStringLiteral("  %1  %2\n")
                    .arg(OptionText(option).leftJustified(width), QLatin1String(option.help));
    return text;
}

} // namespace

QString OptionText(const Option& option) {
    const QString name = QLatin1String(option.name);
    return option.value ? name + u' ' + QLatin1String(option.value) : name;
}

QString UsageOf(const Command& command) {
    QString text = QLatin1String(command.words);
    if (*command.arguments)
        text += u' ' + QLatin1String(command.arguments);
    for (const Option& option : command.options)
        text += QStringLiteral(" [%1]").arg(OptionText(option));
    return text;
}

QString HelpFor(const Command& command) {
    QString text = QStringLiteral("tolvexctl %1\n\n%2.\n").arg(UsageOf(command), QLatin1String(command.help));
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
            text += QStringLiteral("  %1\n      %2\n").arg(UsageOf(command), QLatin1String(command.help));
    if (words.isEmpty())
        text += QLatin1String("\nOptions:\n") + optionLines(GlobalOptions()) +
                QLatin1String("\nExit status: 0 done or yes, 1 no, 2 wrong usage, 3 failed.\n"
                              "\"man tolvexctl\" has files, variables and examples.\n");
    return text;
}

} // namespace tolvex::ctl
