// Lists the databases of a folder one after the other, for a chooser. The drive may be slow or gone.
#pragma once

#include "platform/paths/DriveAsker.h"

#include <QDateTime>

namespace tolvex {

struct ListedDatabase {
    QString path;
    QString fileName;           // with its extension
    QString baseName;           // without
    std::optional<qint32> type; // none: it has no description
    QString description;
    float version = 0;
    QString lastAccessed; // as stored
    qint64 size = 0;      // bytes
    QDateTime modified;
    QStringList openOn;      // computers that have it open
    bool isCutShort = false; // it can be opened, but its end is missing: it does not end with a whole page
    int error = 0;           // why it could not be read, with the engine's text
    QString errorText;
};

// What is wrong with a database that is cut short, a sentence.
QString CutShortText(const QString& name);

// Full names of the files "*.mdb" of a folder, in any case, sorted.
QStringList DatabaseFilesIn(const QString& folder);

// Reads one, which is opened as any other database. Can be called in any thread that owns its path state.
ListedDatabase LookAtDatabase(const QString& path);

class DatabaseLister {
public:
    explicit DatabaseLister(std::chrono::milliseconds patience = platform::DrivePatience)
        : asker_(patience) {}

    // Calls `found` for each database of the folder as soon as it is read, in the order of the names. Events
    // run meanwhile. False when `progress` stopped it.
    bool list(const QString& folder, platform::Progress& progress,
              const std::function<void(const ListedDatabase& database)>& found);
    // True when the drive did not answer any more.
    bool gaveUp() const { return !asker_.unreachable().isEmpty(); }

private:
    platform::DriveAsker asker_;
};

} // namespace tolvex
