// Reads the names in a folder one by one, in disk order: for folders so large, or so far away, that one
// listing would block a window. FolderNames (Files.h) returns all of them sorted.
#pragma once

#include <QString>

#include <memory>

namespace tolvex::platform {

class FolderReader {
public:
    // Opens the folder at a Windows path.
    explicit FolderReader(const QString& path);
    ~FolderReader();
    FolderReader(const FolderReader&) = delete;
    FolderReader& operator=(const FolderReader&) = delete;

    // False if the folder is missing or unreadable; it then has no names.
    bool isOpen() const;

    // The next name of a file or folder, without "." and ".."; false at the end. Names that are not UTF-8 are
    // skipped. Whether a name that is added or removed meanwhile is returned is undefined. Cost: a quarter of
    // a microsecond, and a system call for every few hundred names.
    bool next(QString& name);

private:
    struct Stream;
    std::unique_ptr<Stream> stream_;
};

} // namespace tolvex::platform
