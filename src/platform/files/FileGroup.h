// Changing several files as one: all of them, or none.
//
// Every file is locked, read, changed and written beside before the first one gets its new bytes; then only
// names change. When one of these changes fails, the files before it get their old bytes back. For a process
// that dies in between there is a record, a small file that says which files were to change and where their
// old bytes lie; whoever starts next puts them back (UndoInterruptedGroup).
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
    QString path;        // the file that it is about
    QStringList backups; // copies of the files as they were, beside them
};

// Copies each file that changes to "<path>.<stamp>.bak" (or "....<n>.bak" where that name is taken) and
// applies the changes. `record` is the Windows path of the record, which is there only while the files
// change; another group with the same record waits, and one that was interrupted has to be undone first
// (FileAlreadyExists). Files of more than `limit` bytes are refused (DeviceIoError).
GroupResult UpdateTogether(const QList<GroupMember>& members, qint64 limit, const QString& record,
                           const QString& stamp);

// Whether a group was interrupted: its record is there, and nobody is at work on it.
bool GroupWasInterrupted(const QString& record);

struct UndoneGroup {
    bool found = false;  // there was a record
    int error = NoError; // why the record is still there: files could not be put back
    QStringList restored;
    QStringList changedSince; // left as they are: they hold neither the old bytes nor the new ones
};

// Puts the files of an interrupted group back as they were before it, and removes the record. A group of
// which every file had its new bytes is complete: nothing is put back.
UndoneGroup UndoInterruptedGroup(const QString& record);

} // namespace tolvex::platform
