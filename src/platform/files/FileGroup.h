// Changes several files together: all of them, or none.
//
// Every file is locked, read, changed and written beside before the first one gets its new bytes; after that
// only names change. If one of these changes fails, the files before it get their old bytes back. A record, a
// small file, covers a process that dies in between: it lists the files and where their old bytes lie, and
// the next program to start restores them (UndoInterruptedGroup).
#pragma once

#include "platform/files/FileUpdate.h"

#include <QList>
#include <QStringList>

namespace tolvex::platform {

struct GroupMember {
    QString path; // a Windows path; several members may name one file and are applied in turn
    FileChanger change;
};

struct GroupResult {
    int error = NoError; // FileError
    QString path;        // the file that failed
    QStringList backups; // copies of the original files, beside them
};

// Copies each file that changes to "<path>.<stamp>.bak" (or "....<n>.bak" if that name is taken) and applies
// the changes. `record` is the Windows path of the record, which exists only while the files change; another
// group with the same record waits, and an interrupted one must be undone first (FileAlreadyExists). Files of
// more than `limit` bytes are refused (DeviceIoError).
GroupResult UpdateTogether(const QList<GroupMember>& members, qint64 limit, const QString& record,
                           const QString& stamp);

// Whether a group was interrupted: its record exists, and no program is working on it.
bool GroupWasInterrupted(const QString& record);

struct UndoneGroup {
    bool found = false;  // there was a record
    int error = NoError; // why the record still exists: files could not be restored
    QStringList restored;
    QStringList changedSince; // left unchanged: they hold neither the old bytes nor the new ones
};

// Restores the files of an interrupted group and removes the record. If every file already has its new bytes
// the group is complete, and nothing is restored.
UndoneGroup UndoInterruptedGroup(const QString& record);

} // namespace tolvex::platform
