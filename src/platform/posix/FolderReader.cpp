#include "platform/files/FolderReader.h"

#include "platform/paths/ResolvedPath.h"

#include <dirent.h>

namespace tolvex::platform {

struct FolderReader::Stream {
    explicit Stream(const QString& path) {
        const ResolvedPath at(path);
        folder = at.error == NoError ? ::opendir(at.name.constData()) : nullptr;
    }
    ~Stream() {
        if (folder)
            ::closedir(folder);
    }
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    DIR* folder;
};

FolderReader::FolderReader(const QString& path)
    : stream_(std::make_unique<Stream>(path)) {}

FolderReader::~FolderReader() = default;

bool FolderReader::isOpen() const {
    return stream_->folder != nullptr;
}

bool FolderReader::next(QString& name) {
    while (const struct dirent* entry = stream_->folder ? ::readdir(stream_->folder) : nullptr) {
        const QByteArrayView bytes(entry->d_name);
        if (bytes == "." || bytes == ".." || !bytes.isValidUtf8())
            continue;
        name = QString::fromUtf8(bytes);
        return true;
    }
    return false;
}

} // namespace tolvex::platform
