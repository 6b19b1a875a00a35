#include "console/SearchDrives.h"

#include "core/report/ProblemReport.h"
#include "platform/files/Files.h"
#include "platform/paths/DriveAsker.h"

namespace tolvex {

namespace {

using platform::DriveAsker;
using platform::DriveType;

qint64 typeOfDrive(const QString& root) {
    const DriveType type = platform::FolderExists(root) ? platform::TypeOfDrive(root[0]) : DriveType::NoRoot;
    return static_cast<qint64>(type);
}

// The letters of all drives of a type, according to the answers for their roots.
QString lettersOf(const DriveAsker::Answers& types, DriveType type) {
    QString letters;
    for (auto answer = types.begin(); answer != types.end(); ++answer)
        if (answer.value() == static_cast<qint64>(type))
            letters += answer.key()[0];
    std::sort(letters.begin(), letters.end());
    return letters;
}

ExistingSetup search(bool networkOnly, DriveAsker& drives) {
    const auto progress =
        platform::prompts().beginProgress(QStringLiteral("Looking for existing Tolvex Information"), true);
    QStringList roots;
    for (char letter = 'A'; letter <= 'Z'; ++letter)
        roots += QLatin1Char(letter) + QStringLiteral(":\\");
    const std::optional<DriveAsker::Answers> types = drives.ask(roots, typeOfDrive, *progress);
    SetupSearch asked;
    asked.lettersOfType = [&types](DriveType type) {
        return types ? std::optional(lettersOf(*types, type)) : std::nullopt;
    };
    asked.fileLengths = [&](const QStringList& paths) {
        return drives.ask(paths, platform::FileSize, *progress);
    };
    return FindExistingSetup(networkOnly, asked);
}

} // namespace

ExistingSetup SearchDrives(bool networkOnly) {
    DriveAsker drives;
    ExistingSetup setup = search(networkOnly, drives);
    if (!setup.stopped && !drives.unreachable().isEmpty())
        ShowExclamation(
            QStringLiteral("Drives that do not answer were left out of the search: %1\n\nPlease check "
                           "their connection if your Tolvex system is there.")
                .arg(drives.unreachable()));
    return setup;
}

} // namespace tolvex
