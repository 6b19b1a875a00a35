// Configuration sets: the local ini files that this workstation can choose from.
#include "app/ctl/Commands.h"

#include "console/ConfigurationSets.h"
#include "platform/Prompts.h"
#include "platform/files/Files.h"

#include <algorithm>
#include <optional>

namespace tolvex::ctl {

namespace {

const QString Key = QString::fromUtf16(SetsRegistryKey);
constexpr qsizetype LongestDescription = 30;

const char* placeName(SetPlace place) {
    switch (place) {
    case SetPlace::Network:
        return "network";
    case SetPlace::NetworkDrive:
        return "networkdrive";
    case SetPlace::LocalDrive:
        break;
    }
    return "localdrive";
}

QList<ConfigurationSet> allSets() {
    return ListSets(Key, QString::fromUtf16(DefaultSetFile));
}

// A set by its file name, in either case.
std::optional<ConfigurationSet> findSet(const QString& file) {
    for (const ConfigurationSet& set : allSets())
        if (set.file.compare(file, Qt::CaseInsensitive) == 0)
            return set;
    return std::nullopt;
}

int unknown(const Call& call, const QString& file) {
    QStringList known;
    for (const ConfigurationSet& set : allSets())
        known += set.file;
    return call.no(
        QStringLiteral("There is no configuration set %1; there are %2.").arg(file, known.join(", ")));
}

int list(Call& call) {
    QJsonArray records;
    for (const ConfigurationSet& set : allSets())
        records += QJsonObject{{QStringLiteral("file"), set.file},
                               {QStringLiteral("description"), set.description},
                               {QStringLiteral("dataLocation"), set.location},
                               {QStringLiteral("place"), QLatin1String(placeName(set.place))}};
    call.output.records(records, {{"file", "File"},
                                  {"description", "Description"},
                                  {"dataLocation", "Data location"},
                                  {"place", "Place"}});
    return Done;
}

int tooLong(const Call& call) {
    return call.wrong(QStringLiteral("A description has at most %1 characters.").arg(LongestDescription));
}

int copy(Call& call) {
    const auto from = findSet(call.argument(0));
    if (!from)
        return unknown(call, call.argument(0));
    const QString file = SetFileName(call.argument(1).endsWith(QStringLiteral(".ini"), Qt::CaseInsensitive)
                                         ? call.argument(1).chopped(4)
                                         : call.argument(1));
    if (file.isEmpty())
        return call.wrong(QStringLiteral("You can only use letters and numbers"));
    if (findSet(file))
        return call.fail(QStringLiteral("There is a configuration set %1 already.").arg(file));
    if (call.argument(2).size() > LongestDescription)
        return tooLong(call);
    if (!CopySet(Key, from->file, file, call.argument(2)))
        return call.fail(QStringLiteral("%1 could not be copied to %2.").arg(from->file, file));
    return Done;
}

int rename(Call& call) {
    const auto set = findSet(call.argument(0));
    if (!set)
        return unknown(call, call.argument(0));
    if (call.argument(1).size() > LongestDescription)
        return tooLong(call);
    if (const int error = RenameSet(set->file, call.argument(1)))
        return call.fail(QStringLiteral("%1 could not be written (error %2).").arg(set->file).arg(error),
                         error);
    return Done;
}

int remove(Call& call) {
    const auto set = findSet(call.argument(0));
    if (!set)
        return unknown(call, call.argument(0));
    if (allSets().size() == 1)
        return call.no(QStringLiteral("You cannot delete the last Configuration Set"));
    const platform::Message question{QStringLiteral("Are you sure you want to delete the ") +
                                         set->description + QStringLiteral(" Configuration Set?"),
                                     platform::Icon::Question, platform::Buttons::YesNo,
                                     platform::Answer::No};
    if (platform::prompts().ask(question) != platform::Answer::Yes)
        return No;
    return DeleteSet(Key, set->file) ? Done : Failed;
}

} // namespace

CommandRows SetsCommands() {
    return {
        {"sets list", "", "List the configuration sets", list},
        Changing(
            {"sets copy", "FROM TO DESCRIPTION", "Copy a configuration set under a new file name", copy}),
        Changing({"sets rename", "SET DESCRIPTION", "Change the description of a configuration set", rename}),
        Changing({"sets delete", "SET", "Delete a configuration set and its file", remove}),
    };
}

} // namespace tolvex::ctl
