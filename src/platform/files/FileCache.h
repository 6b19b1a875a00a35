// Text files that are read often and rarely change: each is kept in parsed form while the file stays the
// same. Bounded in memory; the file used last is always kept.
#pragma once

#include "platform/host/HostFiles.h"

#include <QList>

#include <memory>

namespace tolvex::platform {

// Identifies the state of a file without reading it.
struct FileStamp {
    quint64 device = 0;
    quint64 number = 0;
    qint64 size = 0;
    HostTime modified;
    HostTime changed;

    bool operator==(const FileStamp&) const = default;
};

// Nothing if there is no such regular file. Cost: one stat.
std::optional<FileStamp> StampOf(const QString& hostPath);

// Whether another write could still leave the same stamp: file systems count time in steps, of up to 2
// seconds.
bool IsFresh(const FileStamp& stamp);

// `Document` is constructed from the bytes of a file, or from none, and has valid() and cost() in bytes.
template<class Document>
class FileCache {
public:
    // `limit`: longer files count as unreadable. `budget`: memory for all documents together.
    explicit FileCache(qint64 limit, qsizetype budget = 64 << 20)
        : limit_(limit)
        , budget_(budget) {}

    // The file as it is now; null if it cannot be read. Cost: one stat while it is unchanged; while its last
    // change is recent, its bytes are compared as well.
    std::shared_ptr<const Document> open(const QString& hostPath) {
        const std::optional<FileStamp> stamp = StampOf(hostPath);
        const qsizetype at = indexOf(hostPath);
        if (stamp && at >= 0 && entries_[at].stamp == *stamp && isSame(entries_[at])) {
            entries_.move(at, 0);
            return entries_[0].document;
        }
        if (at >= 0)
            entries_.removeAt(at);
        std::optional<QByteArray> bytes = stamp ? ReadHostFile(hostPath, limit_) : std::nullopt;
        if (!bytes)
            return nullptr;
        auto document = std::make_shared<const Document>(*bytes);
        if (!document->valid())
            return nullptr;
        if (!IsFresh(*stamp))
            bytes->clear();
        entries_.prepend({hostPath, *stamp, *bytes, document});
        shrink();
        return document;
    }

    void clear() { entries_.clear(); }

private:
    struct Entry {
        QString path;
        FileStamp stamp;
        QByteArray bytes; // while the stamp alone proves nothing
        std::shared_ptr<const Document> document;
    };
    // One entry per file, few enough for a linear search.
    static constexpr qsizetype mostFiles = 32;

    qsizetype indexOf(const QString& path) const {
        for (qsizetype i = 0; i < entries_.size(); ++i)
            if (entries_[i].path == path)
                return i;
        return -1;
    }

    bool isSame(Entry& entry) {
        if (entry.bytes.isEmpty())
            return true;
        const bool settled = !IsFresh(entry.stamp);
        if (ReadHostFile(entry.path, limit_) != entry.bytes)
            return false;
        if (settled)
            entry.bytes.clear();
        return true;
    }

    void shrink() {
        qsizetype used = 0;
        for (qsizetype i = 0; i < entries_.size(); ++i) {
            used += entries_[i].document->cost() + entries_[i].bytes.size();
            if (i > 0 && (used > budget_ || i >= mostFiles)) {
                entries_.resize(i);
                return;
            }
        }
    }

    qint64 limit_;
    qsizetype budget_;
    QList<Entry> entries_;
};

} // namespace tolvex::platform
