#include "databases/compaction/CompactionStorage.h"

#include "jet/Database.h"
#include "jet/Design.h"
#include "jet/Error.h"

#include <algorithm>
#include <cstring>

namespace tolvex {

namespace {

constexpr std::uint64_t StepBytes = 256 * 1024; // written between checks of the Stop button
// The definitions of the system tables, in pages 2 to 5 of every database, begin with these bytes.
constexpr std::uint8_t DefinitionPage[] = {0x02, 0x01};
constexpr jet::PageNumber systemPages[] = {2, 3, 4, 5};

// Passes everything on to the file below.
class PassingFile : public jet::StorageFile {
public:
    explicit PassingFile(std::unique_ptr<StorageFile> file)
        : file_(std::move(file)) {}
    std::uint64_t size() override { return file_->size(); }
    std::size_t read(std::uint64_t offset, void* into, std::size_t length) override {
        return file_->read(offset, into, length);
    }
    void write(std::uint64_t offset, const void* from, std::size_t length) override {
        file_->write(offset, from, length);
    }
    void truncate(std::uint64_t size) override { file_->truncate(size); }
    void flush() override { file_->flush(); }
    bool lock(std::uint64_t offset, std::uint64_t length, bool exclusive, bool wait) override {
        return file_->lock(offset, length, exclusive, wait);
    }
    void unlock(std::uint64_t offset, std::uint64_t length) override { file_->unlock(offset, length); }
    std::optional<std::uint64_t> findLock(std::uint64_t offset, std::uint64_t length) override {
        return file_->findLock(offset, length);
    }
    bool isNow(const std::string& path) override { return file_->isNow(path); }
    void takeRightsOf(const std::string& path) override { file_->takeRightsOf(path); }

private:
    std::unique_ptr<StorageFile> file_;
};

// The source with another first page.
class PatchedFile final : public PassingFile {
public:
    PatchedFile(std::unique_ptr<StorageFile> file, const jet::Bytes& firstPage)
        : PassingFile(std::move(file))
        , firstPage_(firstPage) {}
    std::size_t read(std::uint64_t offset, void* into, std::size_t length) override {
        const std::size_t got = PassingFile::read(offset, into, length);
        if (offset < firstPage_.size())
            std::memcpy(into, firstPage_.data() + offset,
                        std::min<std::size_t>(got, firstPage_.size() - static_cast<std::size_t>(offset)));
        return got;
    }

private:
    const jet::Bytes& firstPage_;
};

// The target: writing to it is the progress.
class CountedFile final : public PassingFile {
public:
    CountedFile(std::unique_ptr<StorageFile> file, platform::Progress& progress, std::uint64_t expected)
        : PassingFile(std::move(file))
        , progress_(progress)
        , expected_(expected) {}
    void write(std::uint64_t offset, const void* from, std::size_t length) override {
        PassingFile::write(offset, from, length);
        written_ = std::max(written_, offset + length);
        if (written_ < shown_ + StepBytes)
            return;
        shown_ = written_;
        if (!progress_.step(static_cast<qint64>(std::min(written_, expected_)),
                            static_cast<qint64>(expected_)))
            throw CompactionStopped{};
    }

private:
    platform::Progress& progress_;
    std::uint64_t expected_;
    std::uint64_t written_ = 0;
    std::uint64_t shown_ = 0;
};

} // namespace

CompactionStorage::CompactionStorage(const std::string& source, platform::Progress* progress)
    : files_(jet::MachineStorage())
    , source_(files_.resolve(source))
    , progress_(progress) {}

bool CompactionStorage::replaceFirstPage() {
    const auto file = files_.open(source_, Open::ReadOnly);
    for (const jet::PageNumber page : systemPages) {
        std::uint8_t start[sizeof DefinitionPage] = {};
        if (file->read(std::uint64_t{page} * jet::PageSize, start, sizeof start) != sizeof start ||
            std::memcmp(start, DefinitionPage, sizeof start) != 0)
            return false;
    }
    firstPage_ = jet::FreshDatabase({});
    firstPage_.resize(jet::PageSize);
    return true;
}

std::unique_ptr<jet::StorageFile> CompactionStorage::open(const std::string& path, Open how) {
    auto file = files_.open(path, how);
    // A source opened for reading only is copied as it is.
    if (path == source_ && how == Open::ReadWrite && !firstPage_.empty())
        return std::make_unique<PatchedFile>(std::move(file), firstPage_);
    if (how == Open::CreateNew && progress_) {
        const std::uint64_t expected = files_.open(source_, Open::ReadOnly)->size();
        return std::make_unique<CountedFile>(std::move(file), *progress_, expected);
    }
    return file;
}

} // namespace tolvex
