#include "platform/paths/FolderCache.h"

#include "platform/paths/PathParts.h"

namespace tolvex::platform {

namespace {

// Beyond this the cache is emptied; about 50 MB.
constexpr qsizetype mostNames = 300'000;

constexpr qint64 second = 1'000'000'000; // in nanoseconds

// The longest tick of a file system's clock: two ticks of the slowest kernel timer, or, where times have no
// fraction, the two seconds of the oldest disk formats plus a margin.
qint64 tickOf(const HostStatus& status) {
    return status.modified.nanoseconds == 0 ? second * 5 / 2 : second / 50;
}

bool sameState(const HostStatus& a, const HostStatus& b) {
    return a.isSameFile(b) && a.modified == b.modified && a.changed == b.changed;
}

} // namespace

void FolderCache::clear() {
    listings_.clear();
    nameCount_ = 0;
}

const FolderCache::Listing* FolderCache::listing(const QByteArray& folder) {
    const std::optional<HostStatus> status = StatusOf(folder);
    if (!status || !status->isFolder())
        return nullptr;
    auto known = listings_.find(folder);
    if (known != listings_.end()) {
        if (known->settled && sameState(known->status, *status))
            return &*known;
        nameCount_ -= known->names.size();
        listings_.erase(known);
    }
    if (nameCount_ > mostNames)
        clear();

    Listing& fresh = listings_[folder];
    fresh.status = *status;
    fresh.settled = NowInNanoseconds() - status->modified.inNanoseconds() > tickOf(*status);
    const std::optional<QByteArrayList> names = HostNamesIn(folder);
    fresh.readable = names.has_value();
    for (const QByteArray& name : names.value_or(QByteArrayList())) {
        const QString text = QString::fromUtf8(name);
        if (text.toUtf8() == name)
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
        // A folder that may be entered but not listed: names in it must be spelled exactly.
        return LinkStatusOf(folder + '/' + exact) ? std::optional(exact) : std::nullopt;
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
