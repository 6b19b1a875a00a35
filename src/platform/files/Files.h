// Files and folders by Windows path. Each call resolves its path (Paths.h), does one thing and returns the
// platform's run-time error number, which the system's reports show.
#pragma once

#include "platform/host/FileError.h"

#include <QByteArray>
#include <QDateTime>
#include <QFile>
#include <QStringList>

#include <memory>
#include <optional>

namespace tolvex::platform {

// Length in bytes of a file, or -1 if it is missing, a folder, or unreadable.
qint64 FileSize(const QString& path);
bool FileExists(const QString& path);
bool FolderExists(const QString& path);

// Local time of the last change; not valid if the file is missing.
QDateTime FileModified(const QString& path);

// Makes one folder in an existing one. FileError number;
// PathFileAccess if something of that name exists.
int MakeFolder(const QString& path);

// Names in a folder, files and folders, sorted without regard to case, without "." and "..". Empty if it is
// unreadable.
QStringList FolderNames(const QString& path);

// FileError numbers. Copy overwrites its target all or nothing.
int RemoveFile(const QString& path);
int RenameFile(const QString& from, const QString& to);
int CopyWholeFile(const QString& from, const QString& to);

// The whole file, or nothing if it cannot be read or is longer than `limit` bytes.
std::optional<QByteArray> ReadWholeFile(const QString& path, qint64 limit = 1LL << 30);

// Reads up to `most` of the first bytes of a file into `bytes` and returns their number, or -1 if it cannot
// be read.
qint64 ReadFileStart(const QString& path, char* bytes, qint64 most);

// Replaces (or makes) a file as a whole: written beside, flushed, renamed, folder flushed. Any failure leaves
// the old file whole. FileError number.
int ReplaceWholeFile(const QString& path, const QByteArray& bytes);

// Appends to a file, which is made if missing. FileError number.
int AppendToFile(const QString& path, const QByteArray& bytes);

// A file of fixed records, numbered from 1, shared for reading and writing with other programs and changed in
// place. Not copyable; the destructor closes the file.
//
// Errors of all calls: FileNotFound if the file was removed or replaced after it was opened, DeviceIoError if
// its disk or share failed, BadRecordNumber below 1.
class RecordFile {
public:
    // The open file, or null with the FileError in *error: BadRecordLength for a
    // length below 1, PathFileAccess for anything but a file. `create` makes a
    // missing one. A file that cannot be opened for writing, and any file while
    // a LookOnly exists (LookOnly.h), is opened read-only (see writable()).
    static std::unique_ptr<RecordFile> open(const QString& path, int recordLength, bool create,
                                            int* error = nullptr);
    virtual ~RecordFile() = default;

    virtual bool writable() const = 0;
    // Whole records in the file as it is now; a remainder shorter than a record does not count. 0 if the file
    // is gone.
    virtual qint64 count() const = 0;
    // Reads exactly one record. FileError: PastEndOfFile beyond the last whole record. On an error `record`
    // is untouched. Sees at once what other programs of this machine wrote and, on a share, within a quarter
    // of a second what other machines wrote. No system call in the common case: records come from pages of
    // the file shared with every program that has it open, checked against the disk ten times a second.
    virtual int read(qint64 number, char* record) = 0;
    // Reads `count` records from `first` on at once, each as read() would: for going through a file. False if
    // one of them needs read() to be fetched or to report its error; `records` is then undefined. Cost: one
    // system call for all of them.
    virtual bool readAhead(qint64 first, qint64 count, char* records) = 0;
    // Writes exactly one record; the file grows if `number` is above count(), and the records between are
    // zeros. PathFileAccess if the file is open read-only. A record that does not fit on the disk leaves the
    // file at its old length.
    virtual int write(qint64 number, const char* record) = 0;
    // Appends `copies` equal records in as few writes as possible, all or none.
    virtual int append(const QByteArray& record, qint64 copies) = 0;
};

} // namespace tolvex::platform
