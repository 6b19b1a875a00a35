// The commands of the station: lists, makes, changes and sends them.
#include "app/ctl/Commands.h"

#include "core/report/Folders.h"
#include "core/settings/Settings.h"
#include "network/commands/CommandFolder.h"
#include "network/commands/CommandRules.h"
#include "network/commands/CommandRunner.h"
#include "network/commands/CommandTrial.h"
#include "platform/CodePage.h"
#include "platform/Prompts.h"
#include "platform/files/Files.h"
#include "station/NetworkParts.h"

#include <QCoreApplication>

#include <cstdio>

namespace tolvex::ctl {

namespace {

using platform::Answer;
using platform::Buttons;
using platform::Icon;

// The folder of commands, or the exit status if there is none.
std::optional<CommandFolder> openFolder(Call& call, int& status) {
    if (!call.session.read()) {
        status = call.fail(QStringLiteral("No local ini file was chosen."));
        return std::nullopt;
    }
    if (!DirectoryExists(call.station.settings.DataLocation)) {
        status = call.no(QStringLiteral("This workstation has no data location that is there."));
        return std::nullopt;
    }
    return CommandFolder(call.station.settings.DataLocation);
}

// The folder if it has the command that the first argument names, or the exit status if it does not.
std::optional<CommandFolder> openFolderOfCommand(Call& call, int& status) {
    auto folder = openFolder(call, status);
    if (folder && !folder->has(call.argument(0))) {
        status = call.no(QStringLiteral("There is no command \"%1\".").arg(call.argument(0)));
        folder.reset();
    }
    return folder;
}

// "tcp" and "udp" are one type in the file.
QString typeWord(const CommandRecord& command) {
    if (command.Type == TcpIpCommand)
        if (const NamedValue* protocol = FindValue(CommandProtocols(), command.Protocol))
            return QLatin1String(protocol->word);
    const NamedValue* type = FindValue(CommandTypes(), command.Type);
    return type ? QLatin1String(type->word) : QString::number(command.Type);
}

QString wordOf(std::span<const NamedValue> values, qint32 value) {
    const NamedValue* row = FindValue(values, value);
    return row ? QLatin1String(row->word) : QString::number(value);
}

QString wordsOf(std::span<const NamedValue> values) {
    QStringList words;
    for (const NamedValue& row : values)
        words += QLatin1String(row.word);
    return words.join(QStringLiteral(", "));
}

// A command's text with escapes; for people no more of it than a few lines of a terminal.
QString textOf(const Call& call, const QByteArray& text) {
    constexpr qsizetype mostShown = 400;
    if (call.output.json() || text.size() <= mostShown)
        return ShowCommandText(text, false);
    return ShowCommandText(text.left(mostShown), false) +
           QStringLiteral("... (%1 bytes in all; --json shows them)").arg(text.size());
}

// ---- list, show

int list(Call& call) {
    int status = Done;
    const auto folder = openFolder(call, status);
    if (!folder)
        return status;
    QJsonArray records;
    QStringList unreadable;
    for (const ListedCommand& listed : folder->list()) {
        CommandRecord command;
        command.Type = listed.type;
        command = folder->read(listed.name).value_or(command);
        QJsonObject record{{QStringLiteral("name"), listed.name}};
        if (call.output.json()) {
            record[QStringLiteral("type")] = typeWord(command);
            record[QStringLiteral("leaveOpen")] = command.leaveOpen();
            record[QStringLiteral("useExisting")] = command.useExisting();
        } else {
            record[QStringLiteral("type")] = listed.typeText();
            record[QStringLiteral("leaveOpen")] = listed.leaveActiveText();
            record[QStringLiteral("useExisting")] = listed.useExistingText();
        }
        if (!listed.fault.isEmpty())
            unreadable += listed.name;
        records += record;
    }
    if (!unreadable.isEmpty())
        call.output.note(
            QStringLiteral("%1 of %2 files could not be read as commands: %3. \"tolvexctl commands "
                           "show\" says why.")
                .arg(unreadable.size())
                .arg(records.size())
                .arg(unreadable.join(QStringLiteral(", "))));
    call.output.records(records, {{"type", "Command Type"},
                                  {"name", "Command"},
                                  {"leaveOpen", "Leave Active?"},
                                  {"useExisting", "Use Existing?"}});
    return records.isEmpty() ? No : Done;
}

int show(Call& call) {
    int status = Done;
    const auto folder = openFolderOfCommand(call, status);
    if (!folder)
        return status;
    QString why;
    const auto command = folder->read(call.argument(0), &why);
    if (!command)
        return call.fail(why);
    const QString other = folder->otherSpelling(call.argument(0));
    QJsonObject record{{QStringLiteral("name"), other.isEmpty() ? call.argument(0).trimmed() : other},
                       {QStringLiteral("type"), typeWord(*command)},
                       {QStringLiteral("leaveOpen"), command->leaveOpen()},
                       {QStringLiteral("useExisting"), command->useExisting()},
                       {QStringLiteral("text"), textOf(call, command->Text)}};
    if (call.output.json())
        record[QStringLiteral("bytes")] = QString::fromLatin1(command->Text.toBase64());
    Columns columns{{"name", "Command"}, {"type", "Type"}};
    if (command->hasConnection()) {
        columns.push_back({"useExisting", "Use existing"});
        columns.push_back({"leaveOpen", "Leave open"});
        columns.push_back({"port", "Port"});
    }
    if (command->Type == SerialCommand) {
        record[QStringLiteral("port")] = command->SerialPort;
        record[QStringLiteral("settings")] = command->settingsText();
        record[QStringLiteral("handshaking")] = wordOf(CommandHandshakings(), command->Handshaking);
        columns.insert(columns.end(), {{"settings", "Settings"}, {"handshaking", "Handshaking"}});
    } else if (command->Type == TcpIpCommand) {
        record[QStringLiteral("port")] = command->IpPort;
        record[QStringLiteral("address")] = command->addressText();
        columns.push_back({"address", "Address"});
    } else if (command->Type == ExternalCommand) {
        record[QStringLiteral("windowStyle")] = wordOf(CommandWindowStyles(), command->WindowStyle);
        columns.push_back({"windowStyle", "Window"});
    }
    columns.push_back({"text", "Text"});
    call.output.record(record, columns);
    return Done;
}

// ---- add, edit

const std::vector<Option> fieldOptions = {
    {"--serial", "PORT", "send to serial port 1 to 4"},
    {"--settings", "TEXT", "settings of the serial port (9600,n,8,1)"},
    {"--handshaking", "none|xonxoff|rtscts|both", "handshaking of the serial port (none)"},
    {"--tcp", "HOST:PORT", "send over a TCP connection"},
    {"--udp", "HOST:PORT", "send as one datagram"},
    {"--external", nullptr, "start a program: the text is its command line"},
    {"--window", "STYLE",
     "window of the program: normal, background, maximized, minimized, minimized-background"},
    {"--use-existing", nullptr, "use a connection that is open"},
    {"--leave-open", nullptr, "leave the connection open"},
    {"--text", "TEXT", "what is sent"},
    {"--file", "FILE", "what is sent, byte for byte; - is standard input"},
    {"--escapes", nullptr, "the text holds \\r \\n \\t \\xNN \\\\"},
};

std::vector<Option> editOptions() {
    std::vector<Option> options = fieldOptions;
    options.insert(options.end(), {{"--new-connection", nullptr, "do not use an open connection"},
                                   {"--close", nullptr, "do not leave the connection open"},
                                   {"--name", "NAME", "give the command another name"}});
    return options;
}

// A value by its word; a sentence if there is none.
QString takeWord(std::span<const NamedValue> values, const QString& word, const char* what, qint32& value) {
    const NamedValue* row = FindWord(values, word);
    if (!row)
        return QStringLiteral("\"%1\" is not a %2; it can be %3.")
            .arg(word, QLatin1String(what), wordsOf(values));
    value = row->value;
    return {};
}

// Parses "host:port"; the host may be in brackets.
QString takeHost(const QString& given, qint32 protocol, CommandFields& fields) {
    const qsizetype colon = given.lastIndexOf(u':');
    if (colon < 1)
        return QStringLiteral("A host and a port are expected, \"studio2:4001\", not \"%1\".").arg(given);
    fields.type = TcpIpCommand;
    fields.protocol = protocol;
    fields.address = given.left(colon);
    if (fields.address.startsWith(u'[') && fields.address.endsWith(u']'))
        fields.address = fields.address.mid(1, fields.address.size() - 2);
    else if (fields.address.contains(u':'))
        return QStringLiteral("An address with colons stands in brackets, \"[::1]:4001\", not \"%1\".")
            .arg(given);
    fields.port = given.mid(colon + 1);
    return {};
}

// All of standard input, up to the limit of a command.
QByteArray readStandardInput() {
    QByteArray bytes;
    char piece[65536];
    while (bytes.size() < LongestCommandFile) {
        const size_t count = std::fread(piece, 1, sizeof piece, stdin);
        if (count == 0)
            break;
        bytes.append(piece, static_cast<qsizetype>(count));
    }
    return bytes;
}

QString takeText(const Call& call, CommandFields& fields) {
    if (call.has("--text") && call.has("--file"))
        return QStringLiteral("--text and --file exclude each other.");
    if (call.has("--file")) {
        QByteArray bytes;
        if (call.option("--file") == QLatin1String("-")) {
            bytes = readStandardInput();
        } else {
            QString why;
            const auto file = FileArgument(call.option("--file"), BareFile::ShellFolder, &why);
            if (!file)
                return why;
            const auto read = platform::ReadWholeFile(*file, LongestCommandFile);
            if (!read)
                return QStringLiteral("%1 could not be read.").arg(call.option("--file"));
            bytes = *read;
        }
        fields.storedText = bytes;
        fields.typedText.reset();
        if (call.has("--escapes")) {
            fields.typedText = platform::FromCodePage(bytes);
            fields.textForm = TextForm::Escaped;
        }
    } else if (call.has("--text")) {
        fields.typedText = call.option("--text");
        fields.textForm = call.has("--escapes") ? TextForm::Escaped : TextForm::AsItStands;
    }
    return {};
}

// Stores the options in the fields; a sentence about the first that is wrong.
QString takeFields(const Call& call, CommandFields& fields) {
    const int types = int(call.has("--serial")) + int(call.has("--tcp")) + int(call.has("--udp")) +
                      int(call.has("--external"));
    if (types > 1)
        return QStringLiteral("One of --serial, --tcp, --udp and --external is expected.");
    QString wrong;
    if (call.has("--serial")) {
        fields.type = SerialCommand;
        wrong = takeWord(CommandSerialPorts(), call.option("--serial"), "serial port of commands",
                         fields.serialPort);
    }
    if (call.has("--tcp"))
        wrong = takeHost(call.option("--tcp"), ProtocolTcp, fields);
    if (call.has("--udp"))
        wrong = takeHost(call.option("--udp"), ProtocolUdp, fields);
    if (call.has("--external"))
        fields.type = ExternalCommand;
    struct {
        const char* option;
        qint32 type;
    } const belongings[] = {
        {"--settings", SerialCommand}, {"--handshaking", SerialCommand}, {"--window", ExternalCommand}};
    for (const auto& row : belongings)
        if (wrong.isEmpty() && call.has(row.option) && fields.type != row.type)
            wrong = QStringLiteral("%1 does not belong to a command of this type.")
                        .arg(QLatin1String(row.option));
    if (call.has("--settings"))
        fields.settings = call.option("--settings");
    if (wrong.isEmpty() && call.has("--handshaking"))
        wrong =
            takeWord(CommandHandshakings(), call.option("--handshaking"), "handshaking", fields.handshaking);
    if (wrong.isEmpty() && call.has("--window"))
        wrong = takeWord(CommandWindowStyles(), call.option("--window"), "window style", fields.windowStyle);
    fields.useExisting = (fields.useExisting || call.has("--use-existing")) && !call.has("--new-connection");
    fields.leaveOpen = (fields.leaveOpen || call.has("--leave-open")) && !call.has("--close");
    return wrong.isEmpty() ? takeText(call, fields) : wrong;
}

// Checks the fields and asks questions as the editor does. The exit status if the command is refused.
std::optional<int> check(const Call& call, const CommandFields& fields) {
    bool emptyIsRight = false;
    for (auto fault = CheckCommand(fields); fault; fault = CheckCommand(fields, emptyIsRight)) {
        if (!fault->isQuestion)
            return call.wrong(fault->message);
        if (platform::prompts().ask({fault->message, Icon::Question, Buttons::YesNo}) != Answer::Yes)
            return No;
        emptyIsRight = true;
    }
    if (const QString hint = CommandHint(fields); !hint.isEmpty())
        call.output.note(QStringLiteral("No port will take these settings: ") + hint);
    return std::nullopt;
}

int add(Call& call) {
    int status = Done;
    const auto folder = openFolder(call, status);
    if (!folder)
        return status;
    CommandFields fields;
    fields.name = call.argument(0);
    if (const QString wrong = takeFields(call, fields); !wrong.isEmpty())
        return call.wrong(wrong);
    if (!call.has("--serial") && !call.has("--tcp") && !call.has("--udp") && !call.has("--external"))
        return call.wrong(QStringLiteral("One of --serial, --tcp, --udp and --external is expected."));
    if (const auto refused = check(call, fields))
        return *refused;
    if (folder->has(fields.name))
        return call.no(
            QStringLiteral("There is a command \"%1\" already; \"tolvexctl commands edit\" changes it.")
                .arg(fields.name.trimmed()));
    return folder->save(fields.name, CommandOf(fields)) ? Done : Failed;
}

int edit(Call& call) {
    int status = Done;
    const auto folder = openFolderOfCommand(call, status);
    if (!folder)
        return status;
    const QString name = call.argument(0);
    QString why;
    const auto before = folder->read(name, &why);
    if (!before)
        return call.fail(why);
    CommandFields fields = FieldsOf(call.has("--name") ? call.option("--name") : name, *before);
    if (const QString wrong = takeFields(call, fields); !wrong.isEmpty())
        return call.wrong(wrong);
    if (const QString unknown = UnknownTypeMessage(fields.type); !unknown.isEmpty())
        return call.fail(unknown);
    if (const auto refused = check(call, fields))
        return *refused;
    if (call.has("--name") && !folder->rename(name, fields.name))
        return Failed;
    return folder->save(fields.name, CommandOf(fields, *before)) ? Done : Failed;
}

// ---- delete

int remove(Call& call) {
    int status = Done;
    const auto folder = openFolderOfCommand(call, status);
    if (!folder)
        return status;
    const QString name = call.argument(0);
    QString why;
    for (const CommandUse& use : UsesOfCommand(call.station, name, &why))
        call.output.note(QStringLiteral("%1 names it: %2").arg(use.where, use.text));
    if (!why.isEmpty())
        call.output.note(why);
    const Answer answer =
        platform::prompts().ask({.text = QStringLiteral("Are you sure you want to delete this "
                                                        "command?"),
                                 .icon = Icon::Question,
                                 .buttons = Buttons::YesNo,
                                 .defaultAnswer = Answer::No});
    if (answer != Answer::Yes)
        return No;
    return folder->remove(name) ? Done : Failed;
}

// ---- run

// The result of a command, as one record.
class Outcome {
public:
    void take(const CommandEvent& event) {
        switch (event.kind) {
        case CommandEvent::Kind::Sent:
            sent_ += event.bytes;
            break;
        case CommandEvent::Kind::Answer:
            answer_ += event.bytes;
            break;
        case CommandEvent::Kind::Failed:
            error_ = event.text;
            break;
        default:
            break;
        }
        if (!event.peer.isEmpty())
            peer_ = event.peer;
    }
    bool failed() const { return !error_.isEmpty(); }
    const QString& error() const { return error_; }
    void show(const Call& call, const QString& name, bool withAnswer) const {
        QJsonObject record{{QStringLiteral("name"), name},
                           {QStringLiteral("to"), peer_},
                           {QStringLiteral("bytes"), sent_.size()},
                           {QStringLiteral("text"), ShowCommandText(sent_, false)}};
        Columns columns{{"name", "Command"}, {"to", "To"}, {"bytes", "Bytes"}, {"text", "Sent"}};
        if (withAnswer) {
            record[QStringLiteral("answer")] = ShowCommandText(answer_, false);
            record[QStringLiteral("answerBytes")] = QString::fromLatin1(answer_.toBase64());
            columns.push_back({"answer", "Answer"});
        }
        call.output.record(record, columns);
    }

private:
    QString peer_;
    QByteArray sent_;
    QByteArray answer_;
    QString error_;
};

int run(Call& call) {
    int status = Done;
    const auto folder = openFolder(call, status);
    if (!folder)
        return status;
    const QString name = call.argument(0).trimmed();
    if (!folder->has(name))
        return call.no(QStringLiteral("There is no command \"%1\".").arg(name));
    QString why;
    const auto command = folder->read(name, &why);
    if (!command)
        return call.fail(why);
    Outcome outcome;
    const CommandEvents events = [&outcome](const CommandEvent& event) { outcome.take(event); };
    const auto wait = [] { QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents); };
    if (call.has("--answer")) {
        CommandTrial trial(events);
        trial.start(name, *command);
        while (trial.running())
            wait();
    } else {
        CommandRunner runner(call.station.settings.DataLocation, events);
        if (!runner.PerformCommand(name, true))
            return call.fail(outcome.error());
        while (runner.busy() && !outcome.failed())
            wait();
    }
    if (outcome.failed())
        return call.fail(outcome.error());
    outcome.show(call, name, call.has("--answer"));
    return Done;
}

} // namespace

CommandRows CommandCommands() {
    return {
        {"commands list", "", "List the commands of the station", list},
        {"commands show", "NAME", "Show a command; control characters as escapes", show},
        Changing({"commands add", "NAME", "Make a command", add, fieldOptions}),
        Changing({"commands edit", "NAME", "Change a command; other fields stay", edit, editOptions()}),
        Changing({"commands delete", "NAME", "Delete a command, after listing what names it", remove}),
        Changing({"commands run",
                  "NAME",
                  "Really send a command; a connection that it leaves open ends with this program",
                  run,
                  {{"--answer", nullptr, "wait three seconds for an answer and show it"}}}),
    };
}

} // namespace tolvex::ctl
