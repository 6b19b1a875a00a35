#include "audio/transfers/TransportLists.h"

#include "core/report/ProblemReport.h"
#include "core/settings/SettingCheck.h"
#include "core/text/PathNames.h"
#include "platform/files/Files.h"

#include <QSet>

namespace tolvex {

namespace {

const QString extension = QStringLiteral(".OTL");

// What a file system holds: bytes on one, characters on another.
constexpr qsizetype longestFileName = 255;

} // namespace

QString TransportListFile(const QString& directory, const QString& name) {
    return directory + u'\\' + name + extension;
}

bool TransportListExists(const QString& directory, const QString& name) {
    return !directory.isEmpty() && !name.isEmpty() &&
           platform::FileExists(TransportListFile(directory, name));
}

QStringList TransportLists(const QString& directory, const QStringList& known) {
    if (directory.isEmpty())
        return {};
    const QSet<QString> listed(known.begin(), known.end());
    QStringList names;
    for (const QString& file : platform::FolderNames(directory)) {
        if (!file.endsWith(extension, Qt::CaseInsensitive) || file.size() == extension.size())
            continue;
        const QString name = file.chopped(extension.size());
        if (listed.contains(name) || platform::FileExists(directory + u'\\' + file))
            names += name;
    }
    return names;
}

QString ListNameFault(const QString& name) {
    if (name.trimmed().isEmpty())
        return QStringLiteral("A transport list needs a name.");
    const QString file = name.trimmed() + extension;
    if (const QString fault = FileNameFault(file); !fault.isEmpty())
        return fault + u'.';
    if (file.toUtf8().size() > longestFileName)
        return QStringLiteral("The name is too long: a file name has room for %1 characters.")
            .arg(longestFileName - extension.size());
    QString why;
    if (!CheckSettingValue(RowOf<&Settings::OPALDefault>(), name, &why))
        return QStringLiteral("A transport list cannot be called \"%1\": %2.").arg(name.trimmed(), why);
    return {};
}

SetupOutcome AddTransportList(const QString& directory, const QString& given) {
    if (const QString fault = ListNameFault(given); !fault.isEmpty())
        return {fault};
    const QString name = given.trimmed();
    if (TransportListExists(directory, name))
        return {QStringLiteral("You already have an Opal Transport list called ") + name};
    // Appending nothing makes a file, and leaves one alone that somebody else made just now.
    const QString file = TransportListFile(directory, name);
    if (const int error = platform::AppendToFile(file, {}))
        return {ProblemReport(QStringLiteral("creating the Opal Transport List ") + file, error, true),
                {},
                error};
    return {};
}

platform::Message DeletionQuestion(const QString& name) {
    return {.text = QStringLiteral("Are you sure you want to delete the '%1' Opal Transport List?").arg(name),
            .icon = platform::Icon::Question,
            .buttons = platform::Buttons::YesNo,
            .defaultAnswer = platform::Answer::No};
}

SetupOutcome DeleteTransportList(const QString& directory, const QString& name) {
    const QString file = TransportListFile(directory, name);
    if (const int error = platform::RemoveFile(file))
        return {ProblemReport(QStringLiteral("deleting the Opal Transport List ") + file, error, true),
                {},
                error};
    return {};
}

} // namespace tolvex
