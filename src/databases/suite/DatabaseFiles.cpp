#include "databases/suite/DatabaseFiles.h"

#include "core/report/Folders.h"
#include "core/report/ProblemReport.h"
#include "core/text/PathNames.h"
#include "databases/jet/JetDatabase.h"
#include "jet/Database.h"
#include "jet/DatabaseUsers.h"
#include "platform/files/FileCache.h"
#include "platform/files/FileCopy.h"
#include "platform/files/Trash.h"
#include "platform/paths/Paths.h"

namespace tolvex {

namespace {

constexpr const char* LogSuffix = "-redo"; // of the engine's write-ahead log beside a database

[[noreturn]] void fail(int error, const QString& path) {
    throw DatabaseError{error, path + QStringLiteral(": ") + ErrorText(error)};
}

void expect(int error, const QString& path) {
    if (error != platform::NoError)
        fail(error, path);
}

// While it lives nobody else can open the database, and everything that was written to it is in its file.
class HeldAlone {
public:
    // A file that may not be written cannot be locked against others. With ReadOnlyToo it is only certain
    // that nobody has it open now: whoever reads it compares its stamp afterwards.
    enum class Files { Writable, ReadOnlyToo };
    explicit HeldAlone(const QString& path, Files files = Files::Writable)
        : database_(open(path, files)) {}

private:
    static jet::Database open(const QString& path, Files files) {
        try {
            jet::OpenOptions options;
            options.readOnly = true;
            options.exclusive = true;
            jet::Database database = jet::Database::open(EnginePath(path), options);
            if (database.isHeldAlone())
                database.emptyLog();
            else if (files == Files::Writable || FileLength(path + QLatin1String(LogSuffix)) > 0)
                throw jet::Error(jet::ErrorNumber::CannotUpdateReadOnly,
                                 path.toStdString() + ": the file may not be written");
            return database;
        } catch (const jet::Error& error) {
            throw FromEngine(error, path);
        }
    }

    jet::Database database_;
};

std::optional<platform::FileStamp> stampOf(const QString& path) {
    return platform::StampOf(platform::HostPath(path));
}

// Lock files of either spelling that a program which died has left.
void removeLockFiles(const QString& path) {
    for (const char* extension : {".LDB", ".ldb"})
        if (const QString lock = PathWithoutExtension(path) + QLatin1String(extension);
            platform::FileExists(lock))
            expect(platform::RemoveFile(lock), lock);
}

} // namespace

bool CopyDatabaseFile(const QString& from, const QString& to,
                      const std::function<bool(qint64 done, qint64 total)>& step) {
    if (platform::FileExists(to))
        fail(platform::FileAlreadyExists, to);
    const HeldAlone held(from, HeldAlone::Files::ReadOnlyToo);
    const auto before = stampOf(from);
    bool stopped = false;
    expect(platform::CopyInSteps(from, to, step, &stopped), to);
    if (!stopped && stampOf(from) != before) {
        platform::RemoveFile(to);
        throw DatabaseError{static_cast<int>(jet::ErrorNumber::CannotStart),
                            from + QStringLiteral(" was changed while it was being copied.")};
    }
    return !stopped;
}

void RenameDatabaseFile(const QString& from, const QString& to) {
    const HeldAlone held(from);
    expect(platform::RenameFile(from, to), to);
    removeLockFiles(from);
}

bool RemoveDatabaseFile(const QString& path) {
    const HeldAlone held(path);
    removeLockFiles(path);
    if (platform::MoveToTrash(path))
        return true;
    expect(platform::RemoveFile(path), path);
    return false;
}

QStringList ComputersUsing(const QString& path) {
    QStringList computers;
    try {
        const jet::DatabaseUsers users = jet::FindDatabaseUsers(jet::MachineStorage(), EnginePath(path));
        for (const std::string& name : users.computers)
            computers += QString::fromStdString(name);
        if (computers.isEmpty() && users.any)
            computers += QStringLiteral("another program");
    } catch (const jet::Error&) {
        return {};
    } catch (const DatabaseError&) {
        return {};
    }
    computers.removeDuplicates();
    return computers;
}

} // namespace tolvex
