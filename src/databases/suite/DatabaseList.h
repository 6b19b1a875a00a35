// The databases of a folder as a chooser lists them: one after the other, from a drive that may be slow or
// gone.
#pragma once

#include "platform/paths/DriveAsker.h"

#include <QDateTime>

namespace tolvex {

struct ListedDatabase {
    QString path;
    QString fileName;           // with its extension
    QString baseName;           // without
    std::optional<qint32> type; // nothing: it has no description
    QString description;
    float version = 0;
    QString lastAccessed; // as it stands there
    qint64 size = 0;      // bytes
    QDateTime modified;
    QStringList openOn; // computers that have it open
    int error = 0;      // why it could not be read, with the engine's sentence
    QString errorText;
};

// Full names of the files "*.mdb" of a folder, in any case, sorted.
QStringList DatabaseFilesIn(const QString& folder);

// Reads one; the database is opened as any other is. May be called in any thread that owns its path state.
ListedDatabase LookAtDatabase(const QString& path);

class DatabaseLister {
public:
    explicit DatabaseLister(std::chrono::milliseconds patience = platform::DrivePatience)
        : asker_(patience) {}

    // Gives each database of the folder to `found`, in the order of their names, as soon as it is read;
    // events run meanwhile. False when `progress` stopped it.
    bool list(const QString& folder, platform::Progress& progress,
              const std::function<void(const ListedDatabase& database)>& found);
    // Whether the drive did not answer any more.
    bool gaveUp() const { return !asker_.unreachable().isEmpty(); }

private:
    platform::DriveAsker asker_;
};

} // namespace tolvex
