#include "platform/files/FileGroup.h"

#include "platform/host/FileLock.h"
#include "platform/host/Replacement.h"
#include "platform/paths/ResolvedPath.h"

#include <QCryptographicHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <memory>
#include <vector>

namespace tolvex::platform {

namespace {

constexpr qint64 longestRecord = 1 << 20;
const QString recordFormat = QStringLiteral("tolvex-interrupted-change");

// How long to wait for another group.
constexpr int recordWait = 3000; // milliseconds

QString hashOf(const QByteArray& bytes) {
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
}

bool isThere(const QString& hostPath) {
    return LinkStatusOf(HostName(hostPath)).has_value();
}

// A file of a group while the group changes.
struct Part {
    QString path;
    QString host;
    std::unique_ptr<FileLock> lock;
    std::optional<QByteArray> before;
    QByteArray after;
    QString backup; // Windows path; empty if there was no file
    std::unique_ptr<Replacement> replacement;
};

class Group {
public:
    Group(qint64 limit, const QString& stamp)
        : limit_(limit)
        , stamp_(stamp) {}

    // The steps, each for all files. On the first failure they fill in the result and return false.
    bool read(const QList<GroupMember>& members);
    bool copyAndPrepare();
    bool writeRecord(const QString& hostRecord);
    // Removes the record once all files have their new bytes. False if something failed and not every file
    // could be restored; the record then stays for the next start.
    bool putInPlace(const QString& hostRecord);
    // After a failure that left every file unchanged, the copies are not needed.
    void dropBackups();

    bool isEmpty() const { return parts_.empty(); }
    GroupResult result;

private:
    bool fail(const Part& part, int error);
    Part* partOf(const GroupMember& member);
    bool readPart(Part& part);
    bool putBack(std::size_t count);

    qint64 limit_;
    QString stamp_;
    std::vector<Part> parts_;
};

bool Group::fail(const Part& part, int error) {
    result.error = error;
    result.path = part.path;
    return false;
}

bool Group::readPart(Part& part) {
    part.lock = std::make_unique<FileLock>(part.host);
    if (!part.lock->held())
        return fail(part, part.lock->error());
    int error = NoError;
    part.before = ReadHostFile(part.host, limit_, &error);
    if (!part.before && error != FileNotFound)
        return fail(part, error);
    part.after = part.before.value_or(QByteArray());
    return true;
}

// The entry for a member's file, read on first use. Null,
// with the result filled in, if it cannot be read.
Part* Group::partOf(const GroupMember& member) {
    const ResolvedPath at(member.path);
    Part fresh;
    fresh.path = member.path;
    if (const int error = at.asNew(); error != NoError) {
        fail(fresh, error);
        return nullptr;
    }
    fresh.host = FollowLinks(at.host).value_or(at.host);
    for (Part& part : parts_)
        if (part.host == fresh.host)
            return &part;
    if (!readPart(fresh))
        return nullptr;
    parts_.push_back(std::move(fresh));
    return &parts_.back();
}

bool Group::read(const QList<GroupMember>& members) {
    for (const GroupMember& member : members) {
        Part* part = partOf(member);
        if (!part)
            return false;
        const bool isNew = !part->before && part->after.isEmpty();
        FileChange change = member.change(isNew ? std::nullopt : std::optional(part->after));
        if (change.error != NoError)
            return fail(*part, change.error);
        if (change.bytes)
            part->after = *change.bytes;
    }
    std::erase_if(parts_, [](const Part& part) { return part.before == part.after; });
    return true;
}

bool Group::copyAndPrepare() {
    for (Part& part : parts_) {
        if (part.before) {
            part.backup = QStringLiteral("%1.%2.bak").arg(part.path, stamp_);
            for (int n = 2; isThere(ResolvedPath(part.backup).host); ++n)
                part.backup = QStringLiteral("%1.%2.%3.bak").arg(part.path, stamp_).arg(n);
            if (const int error = ReplaceHostFile(ResolvedPath(part.backup).host, *part.before))
                return fail(part, error);
            result.backups += part.backup;
        }
        part.replacement = std::make_unique<Replacement>(part.host);
        part.replacement->write(part.after.constData(), part.after.size());
        if (const int error = part.replacement->prepare())
            return fail(part, error);
    }
    return true;
}

bool Group::writeRecord(const QString& hostRecord) {
    QJsonArray files;
    for (const Part& part : parts_)
        files += QJsonObject{{QStringLiteral("path"), part.path},
                             {QStringLiteral("backup"), part.backup},
                             {QStringLiteral("after"), hashOf(part.after)}};
    const QJsonObject all{{QStringLiteral("format"), recordFormat}, {QStringLiteral("files"), files}};
    result.error = ReplaceHostFile(hostRecord, QJsonDocument(all).toJson());
    // It may exist all the same, but is perhaps not flushed.
    return result.error == NoError || (RemoveHostFile(hostRecord), false);
}

// Restores the old bytes of the first `count` files. False if one could not be restored.
bool Group::putBack(std::size_t count) {
    bool good = true;
    for (std::size_t i = 0; i < count; ++i) {
        const Part& part = parts_[i];
        if (ReadHostFile(part.host, limit_) == part.before)
            continue;
        const int error = part.before ? ReplaceHostFile(part.host, *part.before) : RemoveHostFile(part.host);
        good = good && error == NoError;
    }
    return good;
}

bool Group::putInPlace(const QString& hostRecord) {
    for (std::size_t i = 0; i < parts_.size(); ++i)
        if (const int error = parts_[i].replacement->commit(); error != NoError) {
            fail(parts_[i], error);
            return putBack(i + 1) && RemoveHostFile(hostRecord) == NoError;
        }
    result.error = RemoveHostFile(hostRecord);
    // A record left behind would later undo a complete change.
    return result.error == NoError || (putBack(parts_.size()) && RemoveHostFile(hostRecord) == NoError);
}

void Group::dropBackups() {
    for (const QString& backup : std::exchange(result.backups, {}))
        RemoveHostFile(ResolvedPath(backup).host);
}

// A file named in a record.
struct Recorded {
    QString path;
    QString backup;
    QString after;
};

// The files of a record; nothing if it is not a record.
std::optional<std::vector<Recorded>> readRecord(const QString& hostRecord) {
    const QByteArray bytes = ReadHostFile(hostRecord, longestRecord).value_or(QByteArray());
    const QJsonObject all = QJsonDocument::fromJson(bytes).object();
    if (all[QStringLiteral("format")].toString() != recordFormat)
        return std::nullopt;
    std::vector<Recorded> files;
    const QJsonArray listed = all[QStringLiteral("files")].toArray();
    for (const auto& value : listed) {
        const QJsonObject file = value.toObject();
        files.push_back({file[QStringLiteral("path")].toString(), file[QStringLiteral("backup")].toString(),
                         file[QStringLiteral("after")].toString()});
    }
    return files;
}

bool holdsNewBytes(const Recorded& file, qint64 limit) {
    const auto now = ReadHostFile(ResolvedPath(file.path).host, limit);
    return now && hashOf(*now) == file.after;
}

// Restores one file if it has its new bytes; FileError.
int restore(const Recorded& file, qint64 limit, UndoneGroup& undone) {
    const QString host = ResolvedPath(file.path).host;
    const FileLock lock(host);
    if (!lock.held())
        return lock.error();
    int missing = NoError;
    const auto old =
        file.backup.isEmpty() ? std::nullopt : ReadHostFile(ResolvedPath(file.backup).host, limit, &missing);
    if (!holdsNewBytes(file, limit)) {
        if (missing == NoError && ReadHostFile(host, limit) != old)
            undone.changedSince += file.path;
        return NoError;
    }
    if (missing != NoError)
        return missing;
    const int error = old ? ReplaceHostFile(host, *old) : RemoveHostFile(host);
    if (error == NoError)
        undone.restored += file.path;
    return error;
}

} // namespace

GroupResult UpdateTogether(const QList<GroupMember>& members, qint64 limit, const QString& record,
                           const QString& stamp) {
    Group group(limit, stamp);
    group.result.path = record;
    const QString hostRecord = ResolvedPath(record).host;
    const FileLock lock(hostRecord, recordWait);
    if (!lock.held()) {
        group.result.error = lock.error();
        return group.result;
    }
    if (isThere(hostRecord)) {
        group.result.error = FileAlreadyExists;
        return group.result;
    }
    if (!group.read(members) || group.isEmpty())
        return group.result;
    bool clean = true;
    if (group.copyAndPrepare() && group.writeRecord(hostRecord))
        clean = group.putInPlace(hostRecord);
    if (clean && group.result.error != NoError)
        group.dropBackups();
    return group.result;
}

bool GroupWasInterrupted(const QString& record) {
    const QString hostRecord = ResolvedPath(record).host;
    return isThere(hostRecord) && !FileLock::isHeld(hostRecord) && isThere(hostRecord);
}

UndoneGroup UndoInterruptedGroup(const QString& record) {
    constexpr qint64 limit = INT_MAX;
    UndoneGroup undone;
    const QString hostRecord = ResolvedPath(record).host;
    if (!isThere(hostRecord))
        return undone;
    const FileLock lock(hostRecord, 0);
    if (!lock.held() || !isThere(hostRecord))
        return undone;
    undone.found = true;
    const auto files = readRecord(hostRecord);
    if (!files) {
        undone.error = DeviceIoError;
        return undone;
    }
    const bool complete = std::all_of(files->begin(), files->end(),
                                      [](const Recorded& file) { return holdsNewBytes(file, limit); });
    for (const Recorded& file : *files)
        if (const int error = complete ? NoError : restore(file, limit, undone); error != NoError)
            undone.error = error;
    if (undone.error == NoError)
        undone.error = RemoveHostFile(hostRecord);
    return undone;
}

} // namespace tolvex::platform
