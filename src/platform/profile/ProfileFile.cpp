#include "platform/profile/ProfileFile.h"

#include "platform/CodePage.h"
#include "platform/files/FileCache.h"
#include "platform/files/FileGroup.h"
#include "platform/files/FileUpdate.h"
#include "platform/paths/PathParts.h"
#include "platform/paths/Paths.h"
#include "platform/profile/ProfileCheck.h"
#include "platform/profile/ProfileDocument.h"

#include <utility>

namespace tolvex::platform {

namespace {

// No profile is longer; what is holds something else.
constexpr qint64 longestFile = 64 << 20;

FileCache<ProfileDocument>& cache() {
    static FileCache<ProfileDocument> files(longestFile);
    return files;
}

std::shared_ptr<const ProfileDocument> open(const QString& file) {
    const QString path = HostPath(file, BareName::WindowsFolder);
    return path.isEmpty() ? nullptr : cache().open(path);
}

std::optional<QString> find(const QString& section, const QString& key, const QString& file) {
    const auto document = open(file);
    return document ? document->value(section, key) : std::nullopt;
}

// What arrives in a buffer of `size` characters, the ending zero counted: without one pair of enclosing
// quotes. They are looked for in the whole text and taken off after the cut, so that a buffer too short by
// the closing quote alone loses one character more.
QString inBuffer(QString text, int size) {
    if (size <= 0)
        return {};
    const bool quoted =
        text.size() > 1 && (text.front() == u'"' || text.front() == u'\'') && text.front() == text.back();
    if (!quoted)
        return text.left(size - 1);
    text.remove(0, 1);
    const bool fits = text.size() <= size;
    text.truncate(size - 1);
    if (fits && !text.isEmpty())
        text.chop(1);
    return text;
}

// A default loses trailing blanks; of one that is nothing else, one stays.
QString asDefault(QString text) {
    while (text.size() > 1 && text.back() == u' ')
        text.chop(1);
    return text;
}

int profileError(int fileError) {
    switch (fileError) {
    case NoError:
        return ProfileOk;
    case FileNotFound:
        return ProfileFileNotFound;
    case PathNotFound:
        return ProfilePathNotFound;
    case PathFileAccess:
        return ProfileAccessDenied;
    case PermissionDenied:
        return ProfileSharingViolation;
    case DiskFull:
        return ProfileDiskFull;
    case BadFileNumber:
        return ProfileInvalidName;
    default:
        return ProfileDeviceError;
    }
}

// Why a name leads to no file; ProfileOk when it leads to one.
int nameError(const QString& file) {
    if (file.contains(u'*') || file.contains(u'?'))
        return ProfileInvalidName;
    if (!HostPath(file, BareName::WindowsFolder).isEmpty())
        return ProfileOk;
    if (file.trimmed().isEmpty())
        return ProfileAccessDenied;
    return file.startsWith(QLatin1String("\\\\")) ? ProfilePathNotFound : ProfileFileNotFound;
}

} // namespace

QString ProfilePath(const QString& file) {
    return IsBareName(file) ? WindowsFolder() + u'\\' + file : file;
}

qint32 LeadingInteger(const QString& value) {
    qsizetype at = 0;
    while (at < value.size() && (value[at] == u' ' || value[at] == u'\t'))
        ++at;
    const bool negative = at < value.size() && value[at] == u'-';
    if (at < value.size() && (negative || value[at] == u'+'))
        ++at;
    quint32 number = 0;
    for (; at < value.size() && value[at] >= u'0' && value[at] <= u'9'; ++at)
        number = number * 10 + (value[at].unicode() - u'0');
    return static_cast<qint32>(negative ? 0u - number : number);
}

QString ProfileText(const QString& section, const QString& key, const QString& fallback, const QString& file,
                    int bufferSize) {
    const std::optional<QString> found = find(section, key, file);
    return inBuffer(found ? *found : asDefault(fallback), bufferSize);
}

qint32 ProfileInteger(const QString& section, const QString& key, qint32 fallback, const QString& file) {
    const std::optional<QString> found = find(section, key, file);
    return found ? LeadingInteger(inBuffer(*found, INT_MAX)) : fallback;
}

QStringList ProfileSections(const QString& file) {
    const auto document = open(file);
    return document ? document->sections() : QStringList();
}

QStringList ProfileKeys(const QString& section, const QString& file) {
    const auto document = open(file);
    return document ? document->keys(section) : QStringList();
}

bool ProfileKeyExists(const QString& section, const QString& key, const QString& file) {
    return find(section, key, file).has_value();
}

int WriteProfileText(const QString& section, const QString& key, const QString& value, const QString& file) {
    ProfileBatch batch(file);
    if (key.isNull())
        batch.removeSection(section);
    else if (value.isNull())
        batch.remove(section, key);
    else
        batch.put(section, key, value);
    return batch.commit();
}

ProfileBatch::ProfileBatch(const QString& file)
    : file_(file) {}

void ProfileBatch::put(const QString& section, const QString& key, const QString& value) {
    // Empty text is a value too, null or not.
    changes_.append(
        {section, key.isNull() ? QLatin1String("") : key, value.isNull() ? QLatin1String("") : value});
}

void ProfileBatch::put(const QString& section, const QString& key, qint64 value) {
    put(section, key, QString::number(value));
}

void ProfileBatch::remove(const QString& section, const QString& key) {
    changes_.append({section, key.isNull() ? QLatin1String("") : key, {}});
}

void ProfileBatch::removeSection(const QString& section) {
    changes_.append({section, {}, {}});
}

int ProfileBatch::fault() const {
    for (const Change& change : changes_)
        if (change.section.isNull())
            return ProfileFileNotFound;
    return nameError(file_);
}

// What the batch makes of a file's bytes.
FileChange ProfileBatch::applyTo(const std::optional<QByteArray>& now) const {
    ProfileDocument document(now.value_or(QByteArray()));
    if (!document.valid())
        return FileChange{{}, DeviceIoError};
    for (const Change& change : changes_) {
        if (change.key.isNull())
            document.removeSection(change.section);
        else if (change.value.isNull())
            document.remove(change.section, change.key);
        else
            document.set(change.section, change.key, change.value);
    }
    return FileChange{document.bytes()};
}

int ProfileBatch::commit() {
    if (changes_.isEmpty())
        return ProfileOk;
    if (const int error = fault())
        return error;
    const int error = UpdateHostFile(HostPath(file_, BareName::WindowsFolder), longestFile,
                                     [this](const std::optional<QByteArray>& now) { return applyTo(now); });
    if (error == NoError)
        changes_.clear();
    return profileError(error);
}

int CheckProfileWrite(const QString& file) {
    if (const int error = nameError(file))
        return error;
    return profileError(CheckUpdate(HostPath(file, BareName::WindowsFolder), longestFile));
}

int ProfileGroup::commit() {
    QList<GroupMember> members;
    for (const ProfileBatch& batch : batches) {
        failed = batch.file_;
        if (const int error = batch.fault())
            return error;
        members.append({ProfilePath(batch.file_),
                        [&batch](const std::optional<QByteArray>& now) { return batch.applyTo(now); }});
    }
    const GroupResult result = UpdateTogether(members, longestFile, record, stamp);
    failed = result.path;
    backups = result.backups;
    return profileError(result.error);
}

void ForgetProfiles() {
    cache().clear();
}

} // namespace tolvex::platform
