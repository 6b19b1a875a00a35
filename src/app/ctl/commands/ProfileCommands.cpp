// The private profile operations on any file.
#include "app/ctl/Commands.h"

#include "core/settings/StoredSettings.h"
#include "platform/CodePage.h"
#include "platform/files/Files.h"
#include "platform/profile/ProfileFile.h"

namespace tolvex::ctl {

namespace {

using namespace platform;

// Long enough for any value.
constexpr int wholeValue = 1 << 26;

int nothing(const Call& call) {
    const QString file = ProfilePath(call.path(0));
    if (!FileExists(file))
        return call.no(QStringLiteral("There is no file %1.").arg(file));
    return call.no(
        call.arguments.size() > 2
            ? QStringLiteral("%1 has no key %3 in section %2.").arg(file, call.argument(1), call.argument(2))
        : call.arguments.size() > 1
            ? QStringLiteral("%1 has nothing in section %2.").arg(file, call.argument(1))
            : QStringLiteral("%1 has no section.").arg(file));
}

bool isThere(const Call& call) {
    return ProfileKeyExists(call.argument(1), call.argument(2), call.path(0));
}

int get(Call& call) {
    if (!isThere(call) && call.arguments.size() < 4)
        return nothing(call);
    call.output.value(
        "value", ProfileText(call.argument(1), call.argument(2), call.argument(3), call.path(0), wholeValue));
    return Done;
}

int getInteger(Call& call) {
    bool good = true;
    const int fallback = call.arguments.size() < 4 ? 0 : call.argument(3).toInt(&good);
    if (!good)
        return call.wrong(QStringLiteral("The default is a whole number, not \"%1\".").arg(call.argument(3)));
    if (!isThere(call) && call.arguments.size() < 4)
        return nothing(call);
    call.output.value("value", ProfileInteger(call.argument(1), call.argument(2), fallback, call.path(0)));
    return Done;
}

// Why a key under these names could not be read back; empty if it could.
QString unreadable(const QString& section, const QString& key, const QString& value) {
    for (const QString& text : {section, key, value}) {
        if (text.contains(u'\n') || text.contains(u'\r'))
            return QStringLiteral("Names and values are one line each.");
        if (FromCodePage(ToCodePage(text)) != text)
            return QStringLiteral("\"%1\" has a character that the suite's files cannot hold.").arg(text);
    }
    if (section.trimmed().isEmpty() || key.trimmed().isEmpty())
        return QStringLiteral("A section and a key have names that are not empty.");
    if (section.contains(u']'))
        return QStringLiteral("The name of a section holds no \"]\".");
    if (key.contains(u'=') || key.trimmed().startsWith(u';') || key.trimmed().startsWith(u'['))
        return QStringLiteral("The name of a key holds no \"=\" and does not begin with \";\" or \"[\".");
    return {};
}

int write(Call& call, const QString& value) {
    const QString file = call.path(0);
    const QString key = call.arguments.size() > 2 ? call.argument(2) : QString();
    const int error = WriteProfileText(call.argument(1), key, value, file);
    return error == ProfileOk ? Done : call.fail(ProfileErrorText(error, ProfilePath(file)), error);
}

int set(Call& call) {
    const QString value = call.argument(3);
    if (const QString why = unreadable(call.argument(1), call.argument(2), value); !why.isEmpty())
        return call.wrong(why);
    const int status = write(call, value.isNull() ? QStringLiteral("") : value);
    const QString readBack = ProfileText(call.argument(1), call.argument(2), {}, call.path(0), wholeValue);
    if (status != Done)
        return status;
    if (readBack != value)
        call.output.note(
            QStringLiteral("It reads back as \"%1\": outer blanks and quotes do not count.").arg(readBack));
    if (call.output.json())
        call.output.value("value", readBack);
    return Done;
}

int remove(Call& call) {
    const QString file = call.path(0);
    const bool present =
        call.arguments.size() > 2
            ? isThere(call)
            : ProfileSections(file).contains(call.argument(1).trimmed(), Qt::CaseInsensitive);
    return present ? write(call, QString()) : nothing(call);
}

int list(Call& call, const QStringList& names, const char* key, const char* heading) {
    QJsonArray records;
    for (const QString& name : names)
        records += QJsonObject{{QLatin1String(key), name}};
    if (!names.isEmpty() || call.output.json())
        call.output.records(records, {{key, heading}});
    return names.isEmpty() ? nothing(call) : Done;
}

int sections(Call& call) {
    return list(call, ProfileSections(call.path(0)), "section", "Section");
}

int keys(Call& call) {
    return list(call, ProfileKeys(call.argument(1), call.path(0)), "key", "Key");
}

} // namespace

CommandRows ProfileCommands() {
    CommandRows rows = {
        {"profile get", "FILE SECTION KEY [DEFAULT]", "Print the text of a key of an ini file", get},
        {"profile getint", "FILE SECTION KEY [DEFAULT]", "Print the whole number that a key begins with",
         getInteger},
        Changing({"profile set", "FILE SECTION KEY VALUE",
                  "Write one key of an ini file, leaving every other byte alone", set}),
        Changing(
            {"profile delete", "FILE SECTION [KEY]", "Remove a key, or a section with its keys", remove}),
        {"profile sections", "FILE", "List the sections of an ini file", sections},
        {"profile keys", "FILE SECTION", "List the keys of a section", keys},
    };
    for (Command& row : rows)
        row = ForIniFiles(row);
    return rows;
}

} // namespace tolvex::ctl
