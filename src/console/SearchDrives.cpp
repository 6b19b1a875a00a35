#include "console/SearchDrives.h"

#include "core/Folders.h"
#include "core/ProblemReport.h"
#include "platform/AskDrives.h"
#include "platform/Files.h"
#include "platform/Prompts.h"

namespace tolvex {

namespace {

using platform::DriveType;

qint64 typeOfDrive(const QString& root) {
    const DriveType type = platform::FolderExists(root) ? platform::TypeOfDrive(root[0]) : DriveType::NoRoot;
    return static_cast<qint64>(type);
}

// One search: what was asked of the drives, and which of them keep silent.
class Asking {
public:
    SetupSearch search() {
        return {[this](DriveType type) { return lettersOfType(type); },
                [this](const QStringList& paths) { return ask(paths, platform::FileSize); }};
    }
    const QString& silent() const { return silent_; }

private:
    std::optional<SetupSearch::Lengths> ask(const QStringList& paths,
                                            const platform::DriveQuestion& question) {
        const platform::DriveAnswers answers = platform::AskDrives(paths, question, *progress_);
        for (const QChar letter : answers.unreachable)
            if (!silent_.contains(letter))
                silent_ += letter;
        return answers.stopped ? std::nullopt : std::optional(answers.values);
    }

    std::optional<QString> lettersOfType(DriveType type) {
        QStringList roots;
        for (char letter = 'A'; letter <= 'Z'; ++letter)
            roots += QLatin1Char(letter) + QStringLiteral(":\\");
        if (!types_)
            types_ = ask(roots, typeOfDrive);
        if (!types_)
            return std::nullopt;
        QString letters;
        for (const QString& root : std::as_const(roots))
            if (types_->value(root) == static_cast<qint64>(type))
                letters += root[0];
        return letters;
    }

    std::unique_ptr<platform::Progress> progress_ =
        platform::prompts().beginProgress(QStringLiteral("Looking for existing Tolvex Information"), true);
    std::optional<SetupSearch::Lengths> types_; // by root
    QString silent_;
};

} // namespace

ExistingSetup SearchDrives(bool networkOnly) {
    ExistingSetup setup;
    QString silent;
    {
        Asking asking;
        setup = FindExistingSetup(networkOnly, asking.search());
        silent = asking.silent();
    }
    if (setup.stopped)
        return setup;
    for (const QChar letter : std::as_const(silent))
        ShowExclamation(
            QStringLiteral("Drive %1: does not answer and was left out of the search. Please check "
                           "its connection if your Tolvex system is there.")
                .arg(letter));
    return setup;
}

} // namespace tolvex
