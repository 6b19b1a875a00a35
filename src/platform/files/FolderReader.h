// The names in a folder one after the other, in the order of the disk: for folders so large, or so far away,
// that one listing would hold up a window. FolderNames (Files.h) gives all of them sorted.
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

    // False where the folder is missing or may not be read; it then has no names.
    bool isOpen() const;

    // The next name of a file or folder, without "." and ".."; false at the end. Names that are not UTF-8 are
    // passed over. A name that comes or goes meanwhile may be given or not. Cost: a quarter of a microsecond,
    // and a system call for some hundred names.
    bool next(QString& name);

private:
    struct Stream;
    std::unique_ptr<Stream> stream_;
};

} // namespace tolvex::platform
