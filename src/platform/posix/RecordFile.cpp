#include "platform/SteadyTime.h"
#include "platform/files/Files.h"
#include "platform/host/HostFiles.h"
#include "platform/host/LookOnly.h"
#include "platform/paths/ResolvedPath.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/HostCalls.h"
#include "platform/posix/SharedPages.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <limits>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace tolvex::platform {

namespace {

// How long the mapped pages are trusted without a check: for the file's length and existence; and, over a
// network, where pages are a copy, for their contents.
constexpr std::chrono::milliseconds trustLocal{100};
constexpr std::chrono::milliseconds trustNetwork{250};

constexpr qint64 mostBytesAtOnce = 1 << 20;

bool isAllZero(const std::vector<char>& bytes) {
    return bytes[0] == 0 && std::memcmp(bytes.data(), bytes.data() + 1, bytes.size() - 1) == 0;
}

class MappedRecordFile : public RecordFile {
public:
    MappedRecordFile(Descriptor file, QString host, bool writable, int recordLength)
        : file_(std::move(file))
        , host_(std::move(host))
        , writable_(writable)
        , network_(OnNetwork(host_))
        , recordLength_(recordLength)
        , scratch_(static_cast<size_t>(recordLength)) {}

    bool writable() const override { return writable_; }

    qint64 count() const override {
        struct stat info {};
        return ::fstat(file_.get(), &info) == 0 && info.st_nlink > 0 ? info.st_size / recordLength_ : 0;
    }

    int read(qint64 number, char* record) override {
        if (number < 1)
            return BadRecordNumber;
        if (number > std::numeric_limits<qint64>::max() / recordLength_)
            return PastEndOfFile;
        const qint64 offset = (number - 1) * recordLength_;
        const qint64 end = offset + recordLength_;
        if (SteadyTime() >= trustedUntil_ || end > size_)
            if (const int error = look(); error != NoError)
                return error;
        if (end > size_)
            return PastEndOfFile;
        if (end > pages_.length() || !pages_.copy(offset, recordLength_, scratch_.data())) {
            pages_.unmap();
            if (const int error = readFromDisk(offset); error != NoError)
                return error;
        } else if (isAllZero(scratch_)) {
            // Beyond the new end of a truncated file, the rest of its page reads as zeros.
            const int error = look();
            if (error != NoError || end > size_)
                return error != NoError ? error : PastEndOfFile;
        }
        std::memcpy(record, scratch_.data(), scratch_.size());
        return NoError;
    }

    bool readAhead(qint64 first, qint64 count, char* records) override {
        if (first < 1 || count < 1 || first > std::numeric_limits<qint64>::max() / recordLength_ - count)
            return false;
        const qint64 offset = (first - 1) * recordLength_;
        const qint64 length = count * recordLength_;
        const qint64 end = offset + length;
        const bool isTrusted = SteadyTime() < trustedUntil_ && end <= pages_.length();
        if ((!isTrusted && look() != NoError) || end > pages_.length())
            return false;
        const bool isCopied = pages_.copy(offset, length, records);
        // Bytes cut off meanwhile may have read as zeros.
        if (isCopied && this->count() * recordLength_ >= end)
            return true;
        pages_.unmap();
        trustedUntil_ = {};
        return false;
    }

    int write(qint64 number, const char* record) override {
        if (number < 1)
            return BadRecordNumber;
        if (number > std::numeric_limits<qint64>::max() / recordLength_)
            return DiskFull;
        return put((number - 1) * recordLength_, QByteArray::fromRawData(record, recordLength_), 1);
    }

    int append(const QByteArray& record, qint64 copies) override {
        if (record.size() != recordLength_)
            return BadRecordLength;
        if (copies <= 0)
            return NoError;
        return put(count() * recordLength_, record, copies);
    }

private:
    // Updates to the current file: its length, and its pages if they must be mapped again.
    int look() {
        struct stat info {};
        if (::fstat(file_.get(), &info) != 0)
            return DeviceIoError;
        if (info.st_nlink == 0)
            return FileNotFound;
        // A new map of a file on a share makes the system check its copy.
        if (network_ || info.st_size != pages_.length())
            pages_.map(file_.get(), info.st_size);
        size_ = info.st_size;
        trustedUntil_ = SteadyTime() + (network_ ? trustNetwork : trustLocal);
        return NoError;
    }

    int readFromDisk(qint64 offset) {
        size_t done = 0;
        while (done < scratch_.size()) {
            const ssize_t got = ::pread(file_.get(), scratch_.data() + done, scratch_.size() - done,
                                        offset + static_cast<qint64>(done));
            if (got == 0)
                return PastEndOfFile;
            if (got < 0 && errno != EINTR)
                return DeviceIoError;
            done += static_cast<size_t>(std::max<ssize_t>(got, 0));
        }
        return NoError;
    }

    // Writes `copies` of a record from `offset` on. A partial write is taken back.
    int put(qint64 offset, const QByteArray& record, qint64 copies) {
        if (!writable_)
            return PathFileAccess;
        if (const int error = look(); error != NoError)
            return error;
        if (copies > (std::numeric_limits<qint64>::max() - offset) / recordLength_)
            return DiskFull;
        const qint64 before = size_;
        const qint64 end = offset + copies * recordLength_;
        const QByteArray bytes =
            copies == 1 ? record
                        : record.repeated(std::clamp<qint64>(mostBytesAtOnce / recordLength_, 1, copies));
        int failed = 0;
        qint64 at = offset;
        while (at < end && failed == 0) {
            // A write begins where the last one ended, which may be inside a record.
            const qint64 begin = (at - offset) % recordLength_;
            const qint64 length = std::min<qint64>(bytes.size() - begin, end - at);
            const ssize_t now =
                ::pwrite(file_.get(), bytes.constData() + begin, static_cast<size_t>(length), at);
            if (now > 0)
                at += now;
            else if (now == 0 || errno != EINTR)
                failed = now == 0 ? ENOSPC : errno;
        }
        // Unless another program wrote after it meanwhile.
        struct stat info {};
        if (failed != 0 && at > before && ::fstat(file_.get(), &info) == 0 && info.st_size == at &&
            ::ftruncate(file_.get(), before) != 0)
            failed = EIO;
        const int looked = look();
        return failed != 0 ? FileErrorFor(failed, host_) : looked;
    }

    Descriptor file_;
    QString host_;
    bool writable_;
    bool network_;
    qint64 recordLength_;
    std::vector<char> scratch_;
    SharedPages pages_;
    qint64 size_ = 0;
    std::chrono::milliseconds trustedUntil_{0};
};

} // namespace

std::unique_ptr<RecordFile> RecordFile::open(const QString& path, int recordLength, bool create, int* error) {
    const auto fail = [error](int number) {
        if (error)
            *error = number;
        return nullptr;
    };
    if (recordLength < 1)
        return fail(BadRecordLength);
    const ResolvedPath at(path);
    const bool mayChange = !LookingOnly();
    if (const int refused = create && mayChange ? at.asNew() : at.error; refused != NoError)
        return fail(refused);
    constexpr int flags = O_CLOEXEC | O_NONBLOCK;
    const int wanted = !mayChange ? O_RDONLY : create ? O_RDWR | O_CREAT : O_RDWR;
    Descriptor file(::open(at.name.constData(), flags | wanted, 0666));
    const bool writable = file.open() && mayChange;
    if (!file.open()) {
        const int refused = FileErrorFor(errno, at.host);
        if (refused == PathFileAccess || refused == PermissionDenied)
            file = Descriptor(::open(at.name.constData(), flags | O_RDONLY));
        if (!file.open())
            return fail(refused);
    }
    struct stat info {};
    if (::fstat(file.get(), &info) != 0 || !S_ISREG(info.st_mode))
        return fail(PathFileAccess);
    if (error)
        *error = NoError;
    return std::make_unique<MappedRecordFile>(std::move(file), at.host, writable, recordLength);
}

} // namespace tolvex::platform
