#include "app/ctl/Manual.h"

#include "app/ctl/CommandLine.h"
#include "app/ctl/Help.h"
#include "core/system/Product.h"

namespace tolvex::ctl {

namespace {

// A term and its meaning.
struct Entry {
    const char* term;
    const char* text;
};

constexpr char description[] =
    "Does every job of the configuration window without one: for scripts, remote shells and the set-up of "
    "many "
    "workstations. Paths of the suite are given as Windows paths (C:\\TOLVEX\\SYSTEM); where a FILE is asked "
    "for, "
    "a path of this system works too. A FILE without a folder lies in the current folder, but for ini files, "
    "which lie in the Windows folder. Quote a path that has a backslash, or the shell takes it away. Without "
    "--json the output is for people.";

constexpr char questions[] = "Questions go to the terminal. Where there is none they get their default, or "
                             "the answer that --yes or --no "
                             "gives. Messages of the system go to standard error.";

constexpr Entry exitStatus[] = {
    {"0", "done, or the answer is yes"},
    {"1", "the answer is no: not configured, nothing found, check failed"},
    {"2", "wrong usage; standard error says what was expected"},
    {"3", "it failed; standard error says why"},
};

constexpr Entry environment[] = {
    {"TOLVEX_HOME", "the machine folder, if --home is not given"},
    {"XDG_DATA_HOME",
     "holds the machine folder \"tolvex\" where neither is given; ~/.local/share without it"},
    {"ALSA_CONFIG_PATH", "the sound system's own configuration: which wave devices there are"},
    {"ODBCSYSINI", "the folder of the driver manager's odbcinst.ini: which drivers --connect may name"},
};

constexpr Entry files[] = {
    {"~/.local/share/tolvex", "the machine folder"},
    {"dosdevices/", "in it, a link or folder for each drive (c:, m:), serial port (com1) and share (unc/)"},
    {"C:\\WINDOWS\\TOLVEX.INI", "the local ini file: the settings of this workstation"},
    {"<data location>\\TLVX_SYS.INI", "the system ini file: the settings of the station"},
    {"system.reg", "in the machine folder, the registry values of the suite"},
    {"C:\\DEBUGFILES", "the daily debug logs, when the window was started with /DEBUG"},
};

constexpr Entry examples[] = {
    {"tolvexctl --yes autoconfig local", "make this machine a station of its own, asking nothing"},
    {"tolvexctl status --json", "what is configured and what is missing, for a script"},
    {"tolvexctl settings set AudioWall CartMinimumWidth 3000", "change a setting"},
    {"tolvexctl db query 'C:\\TOLVEX\\SYSTEM\\USERS\\USERS25.MDB' 'SELECT * FROM Users'", "ask a database"},
};

// Text for the man macros: real hyphens and backslashes,
// and no line that begins with a request.
QString escaped(QString text) {
    text.replace(u'\\', QLatin1String("\\e")).replace(u'-', QLatin1String("\\-"));
    return text.startsWith(u'.') || text.startsWith(u'\'') ? QLatin1String("\\&") + text : text;
}

QString entry(const QString& term, const QString& text) {
    // Quotation marks: a term of several words is one argument of the macro.
    return QStringLiteral(".TP\n.B \"%1\"\n%2\n")
        .arg(escaped(term).replace(u'"', QLatin1String("\"\"")), escaped(text));
}

QString section(const char* heading) {
    return QStringLiteral(".SH %1\n").arg(QLatin1String(heading));
}

template<size_t Count>
QString section(const char* heading, const Entry (&entries)[Count]) {
    QString text = section(heading);
    for (const Entry& each : entries)
        text += entry(QLatin1String(each.term), QLatin1String(each.text));
    return text;
}

QString optionEntries(const std::vector<Option>& options) {
    QString text;
    for (const Option& option : options)
        text += entry(OptionText(option), QLatin1String(option.help));
    return text;
}

} // namespace

QString ManualPage() {
    QString text = QStringLiteral(".TH TOLVEXCTL 1 \"\" \"%1 %2\" \"User Commands\"\n")
                       .arg(QLatin1String(ProductName), ProductVersion());
    text += section("NAME") +
            QLatin1String("tolvexctl \\- set up a workstation of the Tolvex suite from a shell\n");
    text += section("SYNOPSIS") +
            QLatin1String(".B tolvexctl\n[\\fIOPTION\\fR]... \\fICOMMAND\\fR [\\fIARGUMENT\\fR]...\n");
    text += section("DESCRIPTION") + escaped(QLatin1String(description)) + QLatin1String("\n.PP\n") +
            escaped(QLatin1String(questions)) + u'\n';
    text += section("OPTIONS") + optionEntries(GlobalOptions()) +
            entry(QStringLiteral("--"), QStringLiteral("ends the options; what follows is taken as it is"));
    text += section("COMMANDS");
    for (const Command& command : AllCommands()) {
        text += entry(UsageOf(command), QLatin1String(command.help));
        if (!command.options.empty())
            text += QLatin1String(".RS\n") + optionEntries(command.options) + QLatin1String(".RE\n");
    }
    text += section("EXIT STATUS", exitStatus) + section("ENVIRONMENT", environment) +
            section("FILES", files) + section("EXAMPLES", examples);
    text += section("SEE ALSO") + QLatin1String(".BR tolvex\\-config (1)\n");
    return text;
}

} // namespace tolvex::ctl
