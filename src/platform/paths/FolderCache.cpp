#include "platform/paths/FolderCache.h"

#include "platform/paths/PathParts.h"

#include <ctime>
#include <memory>

#include <dirent.h>

namespace tolvex::platform {

namespace {

// Beyond this the cache begins anew; about 50 MB.
constexpr qsizetype mostNames = 300'000;

constexpr qint64 second = 1'000'000'000;

qint64 nanoseconds(const struct timespec& time) {
    return qint64{time.tv_sec} * second + time.tv_nsec;
}

// The longest tick of a file system's clock: two of the slowest kernel timer, or, where times have no
// fraction, the two seconds of the oldest disk formats and a bit.
qint64 tickOf(const struct stat& info) {
    return info.st_mtim.tv_nsec == 0 ? second * 5 / 2 : second / 50;
}

bool sameState(const struct stat& a, const struct stat& b) {
    return a.st_ino == b.st_ino && a.st_dev == b.st_dev && nanoseconds(a.st_mtim) == nanoseconds(b.st_mtim) &&
           nanoseconds(a.st_ctim) == nanoseconds(b.st_ctim);
}

QByteArray pathIn(const QByteArray& folder, const QByteArray& name) {
    return folder + '/' + name;
}

} // namespace

void FolderCache::clear() {
    listings_.clear();
    nameCount_ = 0;
}

const FolderCache::Listing* FolderCache::listing(const QByteArray& folder) {
    struct stat info {};
    if (::stat(folder.constData(), &info) != 0 || !S_ISDIR(info.st_mode))
        return nullptr;
    auto known = listings_.find(folder);
    if (known != listings_.end()) {
        if (known->settled && sameState(known->info, info))
            return &*known;
        nameCount_ -= known->names.size();
        listings_.erase(known);
    }
    if (nameCount_ > mostNames)
        clear();

    Listing& fresh = listings_[folder];
    fresh.info = info;
    struct timespec now {};
    ::clock_gettime(CLOCK_REALTIME, &now);
    fresh.settled = nanoseconds(now) - nanoseconds(info.st_mtim) > tickOf(info);
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(::opendir(folder.constData()), &::closedir);
    fresh.readable = stream != nullptr;
    while (const struct dirent* entry = stream ? ::readdir(stream.get()) : nullptr) {
        const QByteArray name(entry->d_name);
        const QString text = QString::fromUtf8(name);
        if (text.toUtf8() == name && name != "." && name != "..")
            fresh.names.insert(FoldName(text), name);
    }
    nameCount_ += fresh.names.size();
    return &fresh;
}

std::optional<QByteArray> FolderCache::find(const QByteArray& folder, const QString& name, bool* isFolder) {
    const Listing* names = listing(folder);
    if (isFolder)
        *isFolder = names != nullptr;
    if (!names)
        return std::nullopt;
    const QByteArray exact = name.toUtf8();
    if (!names->readable) {
        // A folder that may be entered but not listed: names in it must be spelled as they are.
        struct stat info {};
        if (::lstat(pathIn(folder, exact).constData(), &info) == 0)
            return exact;
        return std::nullopt;
    }
    const QString folded = FoldName(name);
    std::optional<QByteArray> best;
    const auto consider = [&best](const QByteArray& candidate) {
        if (!best || candidate < *best)
            best = candidate;
    };
    const auto [first, last] = names->names.equal_range(folded);
    for (auto it = first; it != last; ++it) {
        if (*it == exact)
            return exact;
        consider(*it);
    }
    if (!best && folded.contains(u'~'))
        for (const QByteArray& candidate : names->names)
            if (ShortName(QString::fromUtf8(candidate)) == folded)
                consider(candidate);
    return best;
}

bool FolderCache::hasShortName(const QByteArray& folder, const QString& name) {
    return find(folder, ShortName(name)) == name.toUtf8();
}

} // namespace tolvex::platform
