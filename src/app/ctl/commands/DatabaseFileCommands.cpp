// Copies, renames and deletes database files by the rules of the window that chooses databases.
#include "app/ctl/Commands.h"

#include "core/report/Folders.h"
#include "core/text/PathNames.h"
#include "databases/suite/DatabaseFiles.h"
#include "databases/suite/DatabaseInformation.h"
#include "databases/suite/DatabaseKinds.h"
#include "databases/suite/DatabaseNames.h"
#include "platform/Prompts.h"

#include <optional>

namespace tolvex::ctl {

namespace {

// The file as it was named if it is there, else with the extension of databases.
QString namedFile(const Call& call) {
    return FileLength(call.path(0)) >= 0 ? call.path(0) : WithDatabaseExtension(call.path(0));
}

// The exit status when the file is not there.
std::optional<int> missing(const Call& call, const QString& file) {
    if (FileLength(file) > 0)
        return std::nullopt;
    return call.no(QStringLiteral("There is no database %1.").arg(file));
}

int failure(const Call& call, const QString& what, const DatabaseError& error) {
    return call.fail(QStringLiteral("%1: %2 (error %3)").arg(what, error.text).arg(error.number),
                     error.number);
}

int copy(Call& call) {
    const QString from = namedFile(call);
    if (const auto status = missing(call, from))
        return *status;
    if (const QString why = DatabaseNameFault(call.argument(1)); !why.isEmpty())
        return call.wrong(why);
    const QString to = FolderOf(from, true) + call.argument(1) + QStringLiteral(".MDB");
    if (FileLength(to) >= 0)
        return call.fail(QStringLiteral("A database with this name already exists"),
                         platform::FileAlreadyExists);
    try {
        const auto progress = platform::prompts().beginProgress(QStringLiteral("Copying Database..."), true);
        if (!CopyDatabase(from, to, [&](qint64 done, qint64 total) { return progress->step(done, total); }))
            return No;
    } catch (const DatabaseError& error) {
        return failure(call, from, error);
    }
    return Done;
}

int rename(Call& call) {
    const QString from = namedFile(call);
    if (const auto status = missing(call, from))
        return *status;
    const QString name = RenamedDatabase(call.argument(1));
    if (const QString why = FileNameFault(name); !why.isEmpty())
        return call.wrong(why);
    const QString to = FolderOf(from, true) + name;
    if (FileLength(to) >= 0)
        return call.fail(QStringLiteral("A database with that name already exists"),
                         platform::FileAlreadyExists);
    try {
        RenameDatabaseFile(from, to);
    } catch (const DatabaseError& error) {
        return failure(call, from, error);
    }
    return Done;
}

int remove(Call& call) {
    const QString file = namedFile(call);
    if (const auto status = missing(call, file))
        return *status;
    if (const QStringList users = ComputersUsing(file); !users.isEmpty())
        return call.fail(QStringLiteral("%1 is open on %2.").arg(file, users.join(QStringLiteral(", "))));
    DatabaseInformation information;
    const bool isKnown = GetDatabaseInformation(file, &information, false) == 0;
    const DatabaseKind* kind = isKnown ? FindDatabaseKind(information.Type) : nullptr;
    const QString title = QLatin1String(kind && kind->title ? kind->title : "Database");
    for (const QString& question : DeletionQuestions(title, information.Description))
        if (platform::prompts().ask({question, platform::Icon::Question, platform::Buttons::YesNo,
                                     platform::Answer::No}) != platform::Answer::Yes)
            return No;
    try {
        if (RemoveDatabaseFile(file))
            call.output.note(QStringLiteral("%1 is now in the trash.").arg(file));
    } catch (const DatabaseError& error) {
        return failure(call, file, error);
    }
    return Done;
}

} // namespace

CommandRows DatabaseFileCommands() {
    return {
        Changing(
            {"db copy", "FILE NAME", "Copy a database that nobody has open, under a name beside it", copy}),
        Changing(
            {"db rename", "FILE NAME", "Give a database that nobody has open another file name", rename}),
        Changing({"db delete", "FILE", "Delete a database that nobody has open, to the trash if there is one",
                  remove}),
    };
}

} // namespace tolvex::ctl
