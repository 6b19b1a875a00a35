#include "app/ctl/Completion.h"

#include "app/ctl/Asking.h"
#include "databases/suite/DatabaseList.h"
#include "platform/files/Files.h"
#include "platform/host/LookOnly.h"
#include "platform/paths/Paths.h"

namespace tolvex::ctl {

namespace {

// The source of candidates for an argument.
struct Source {
    const char* commands;     // beginning with these words
    const char* argument;     // or value of an option
    const char* asked;        // the command that lists them; words in capitals are earlier arguments
    const char* member;       // of its records; null: the names of the members of its one record
    const char* about = "";   // the member that describes a candidate
    const char* choices = ""; // instead of a command: the candidates themselves, separated by "|"
};

constexpr char listedByKind[] = "0|1|2|4|11|14|19";

// The first matching row counts.
constexpr Source sources[] = {
    {"settings", "SECTION", "settings list", "section"},
    {"settings", "KEY", "settings list SECTION", "key", "help"},
    {"profile", "SECTION", "profile sections FILE", "section"},
    {"profile", "KEY", "profile keys FILE SECTION", "key"},
    {"registry", "KEY", "registry list", "key"},
    {"registry", "NAME", "registry list KEY", "name", "value"},
    {"sets copy", "FROM", "sets list", "file", "description"},
    {"sets", "SET", "sets list", "file", "description"},
    {"terminals", "ID", "terminals list", "id", "idName"},
    {"commands", "NAME", "commands list", "name", "type"},
    {"commands", "PORT", "ports list", "port", "description"},
    {"clock", "PORT", "ports list", "port", "description"},
    {"audio test", "PLAYER", nullptr, nullptr, "", "1|2|3|4|5|6"},
    {"audio players", "DEVICE", "audio devices", "name", "direction"},
    {"audio", "TAG", "audio formats", "tag", "name"},
    {"automation set", "KEY", "automation show", nullptr},
    {"automation settings", "ITEM", "automation settings list", "item", "value"},
    {"automation", "DATABASE", "automation list", "fileName", "description"},
    {"db settings", "ITEM", "db settings FILE list", "item", "value"},
    {"db create", "N", nullptr, nullptr, "", listedByKind},
    {"db find", "N", nullptr, nullptr, "", listedByKind},
    {"db validate", "N", nullptr, nullptr, "", listedByKind},
    {"db", "TABLE", "db tables FILE", "table"},
    {"hardware", "CARD", nullptr, nullptr, "", "1|2|3"},
    {"hardware card", "TYPE", nullptr, nullptr, "", "disabled|rs232|advantech|joystick"},
};

// The line being typed, up to its last word.
struct Line {
    CommandLine given;
    QString word; // the last one, or the value in "--option=value"
    StartUp startUp;
    QStringList candidates;

    void offer(const QString& value, const QString& about = {}) {
        if (value.isEmpty() || value.contains(u'\n') || !value.startsWith(word, Qt::CaseInsensitive))
            return;
        const QString line = about.isEmpty() ? value : value + u'\t' + about.simplified();
        if (!candidates.contains(line))
            candidates += line;
    }
};

QStringList argumentNames(const Command& command) {
    return QString::fromLatin1(command.arguments).split(u' ', Qt::SkipEmptyParts);
}

QString bare(QString name) {
    return name.remove(u'[').remove(u']');
}

// The names of the given arguments, in order, and after them those that may come next: several if an argument
// is optional.
struct Aligned {
    QStringList given;
    QStringList next;
};

Aligned align(const Line& line) {
    const QStringList names = argumentNames(*line.given.command);
    Aligned aligned;
    qsizetype at = 0;
    const auto leftOut = [&](const QString& text) { // an optional one, before a choice that was given
        return names.value(at).startsWith(u'[') && bare(names.value(at + 1)).split(u'|').contains(text);
    };
    for (const QString& argument : line.given.arguments) {
        at += leftOut(argument) ? 1 : 0;
        aligned.given += bare(names.value(at));
        if (names.value(at + 1) != QLatin1String("..."))
            ++at;
    }
    aligned.next += bare(names.value(at));
    if (names.value(at).startsWith(u'[') && names.value(at + 1).contains(u'|'))
        aligned.next += bare(names.value(at + 1));
    return aligned;
}

// The words of the command to ask; empty if one of its arguments is still missing.
QStringList askedWords(const Line& line, const Source& source) {
    const QStringList names = align(line).given;
    QStringList words;
    for (const QString& word : QString::fromLatin1(source.asked).split(u' ')) {
        const qsizetype argument = names.indexOf(word);
        if (argument < 0 && word == word.toUpper())
            return {};
        words += argument < 0 ? word : line.given.arguments[argument];
    }
    return words;
}

QString textOf(const QJsonValue& value) {
    return value.isObject() || value.isArray() ? QString() : value.toVariant().toString();
}

void offerFrom(Line& line, const Source& source) {
    for (const QString& choice : QString::fromLatin1(source.choices).split(u'|'))
        line.offer(choice);
    if (!source.asked)
        return;
    const QStringList words = askedWords(line, source);
    const QJsonDocument answer = words.isEmpty() ? QJsonDocument() : Ask(words, line.startUp).document;
    const QJsonObject record = answer.object();
    if (!source.member && !record.contains(QLatin1String("error")))
        for (auto member = record.begin(); member != record.end(); ++member)
            line.offer(member.key(), textOf(member.value()));
    if (source.member)
        for (const QJsonValue value : answer.array())
            line.offer(textOf(value[QLatin1String(source.member)]),
                       textOf(value[QLatin1String(source.about)]));
}

// Drives, and the contents of the folder of a partial path.
void offerPaths(Line& line, bool foldersOnly) {
    const qsizetype end = line.word.lastIndexOf(u'\\') + 1;
    if (end == 0)
        for (char16_t drive = u'A'; drive <= u'Z'; ++drive)
            if (platform::LogicalDrives() & (1U << (drive - u'A')))
                line.offer(QString(QChar(drive)) + QStringLiteral(":\\"));
    if (end == 0)
        return;
    const QString folder = line.word.left(end);
    for (const QString& name : platform::FolderNames(folder)) {
        const bool isFolder = platform::FolderExists(folder + name);
        if (isFolder || !foldersOnly)
            line.offer(folder + name + (isFolder ? QStringLiteral("\\") : QString()));
    }
}

// The databases of the station, in the folders of its data location.
void offerDatabases(Line& line) {
    const Answer status = Ask({QStringLiteral("status")}, line.startUp);
    const QString data = status.document[QLatin1String("dataLocation")].toString();
    if (data.isEmpty())
        return;
    for (const QString& name : platform::FolderNames(data))
        for (const QString& file : DatabaseFilesIn(data + u'\\' + name))
            line.offer(file);
}

void offerArgument(Line& line, const QString& name) {
    for (const QString& choice : name.split(u'|'))
        if (name.contains(u'|'))
            line.offer(choice);
    const QString words = line.given.command ? QLatin1String(line.given.command->words) : QLatin1String();
    const bool newName = words == u"commands add";
    for (const Source& source : sources)
        if (!newName && name == QLatin1String(source.argument) &&
            (words + u' ').startsWith(QLatin1String(source.commands) + u' '))
            return offerFrom(line, source);
    const bool folder = name == u"DIR" || name == u"FOLDER";
    if (!folder && name != u"FILE" && !name.endsWith(u".INI"))
        return;
    if (words.startsWith(u"db ") && name == u"FILE" && !line.word.contains(u'\\'))
        offerDatabases(line);
    if (name != u"DIR")
        offerPaths(line, folder);
    line.candidates += folder ? QStringLiteral(":folders") : QStringLiteral(":files");
}

void offerWords(Line& line) {
    const QStringList words = line.given.words;
    const QString start = words.isEmpty() ? QString() : words.join(u' ') + u' ';
    for (const Command& command : AllCommands()) {
        const QString name = QLatin1String(command.words);
        if (!name.startsWith(start))
            continue;
        const QString rest = name.mid(start.size());
        const bool whole = !rest.contains(u' ');
        line.offer(rest.section(u' ', 0, 0), whole ? QLatin1String(command.help) : QLatin1String());
    }
}

void offerOptions(Line& line) {
    if (line.given.command)
        for (const Option& option : line.given.command->options)
            line.offer(QLatin1String(option.name), QLatin1String(option.help));
    for (const Option& option : GlobalOptions())
        line.offer(QLatin1String(option.name), QLatin1String(option.help));
}

} // namespace

QStringList Complete(const QStringList& words) {
    QStringList before = words;
    const platform::LookOnly looking;
    Line line;
    line.word = before.isEmpty() ? QString() : before.takeLast();
    QString why;
    const bool ended = before.contains(QLatin1String("--"));
    // The value of an option is its own word or follows "=".
    QString optionName = before.isEmpty() || ended ? QString() : before.last();
    QString prefix;
    if (!ended && line.word.startsWith(QLatin1String("--")) && line.word.contains(u'=')) {
        optionName = line.word.section(u'=', 0, 0);
        prefix = optionName + u'=';
        line.word.remove(0, prefix.size());
    }
    const bool asksValue = optionName.startsWith(QLatin1String("--")) && optionName != QLatin1String("--");
    line.given = ParseCommandLine(asksValue && prefix.isEmpty() ? before.mid(0, before.size() - 1) : before);
    const Option* option = asksValue ? FindOption(optionName, line.given.command) : nullptr;
    if (asksValue && prefix.isEmpty() && !(option && option->value)) {
        option = nullptr; // a flag: a separate word follows
        line.given = ParseCommandLine(before);
    }
    if (!ended && !option && line.word.startsWith(u'-')) {
        offerOptions(line);
    } else if (!option && !line.given.command) {
        offerWords(line);
    } else if (SettleMachine(line.given, line.startUp, &why)) {
        const QStringList names = option ? QStringList{QLatin1String(option->value)} : align(line).next;
        for (const QString& name : names)
            offerArgument(line, name);
    }
    for (QString& candidate : line.candidates)
        if (!candidate.startsWith(u':'))
            candidate.prepend(prefix);
    return line.candidates;
}

} // namespace tolvex::ctl
