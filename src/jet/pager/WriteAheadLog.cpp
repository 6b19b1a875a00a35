#include "jet/pager/WriteAheadLog.h"

#include "jet/base/Damage.h"
#include "jet/base/LittleEndian.h"

#include <bit>
#include <chrono>
#include <cstring>
#include <random>

namespace jet {

namespace {

// The header: a fixed part and, in a sector of its own because it changes with every commit, the published
// state.
constexpr char Magic[] = "JETREDO1";
constexpr std::size_t MagicLength = 8;
constexpr std::size_t SaltAt = 8;
constexpr std::size_t IdentityAt = 16;
constexpr std::size_t GenerationAt = 24;
constexpr std::size_t HeaderSumAt = 32;
constexpr std::size_t HeaderLength = 40;
constexpr std::size_t StateAt = 512; // generation, frames, pages, chain, frames before, 0, checksum
constexpr std::size_t StateLength = 40;
constexpr std::size_t FramesAt = 1024;
constexpr std::uint64_t StateByte = std::uint64_t{1} << 40; // a byte after every log, locked around the state

// A frame: page number, page count of the database if this ends a transaction, checksum; then the page.
constexpr std::size_t FrameHead = 16;
constexpr std::size_t FrameLength = FrameHead + PageSize;
constexpr std::uint32_t FramesInBuffer = 64;

// Checksum of a number of bytes that is a multiple of 8, continuing `seed`: in four lanes, which the
// processor handles in parallel.
std::uint64_t checksum(std::uint64_t seed, const std::uint8_t* bytes, std::size_t length) {
    constexpr std::uint64_t Prime = 0x9E3779B97F4A7C15;
    std::uint64_t lanes[4] = {seed, seed ^ Prime, ~seed, seed + Prime};
    for (std::size_t at = 0; at < length; at += 8) {
        std::uint64_t& lane = lanes[at / 8 % 4];
        lane = std::rotl((lane ^ Load64(bytes + at)) * Prime, 29);
    }
    std::uint64_t sum = length;
    for (const std::uint64_t lane : lanes)
        sum = (sum ^ (lane ^ lane >> 32)) * Prime;
    return sum ^ sum >> 29;
}

std::uint64_t frameChecksum(std::uint64_t chain, PageNumber page, PageNumber commitPages,
                            const std::uint8_t* bytes) {
    return checksum(chain ^ (static_cast<std::uint64_t>(page) << 32 | commitPages), bytes, PageSize);
}

std::uint64_t offsetOf(std::uint32_t frame) {
    return FramesAt + static_cast<std::uint64_t>(frame) * FrameLength;
}

std::uint64_t freshSalt() {
    std::random_device device;
    const auto now = static_cast<std::uint64_t>(std::chrono::system_clock::now().time_since_epoch().count());
    return (static_cast<std::uint64_t>(device()) << 32 | device()) ^ now;
}

void encodeState(const WriteAheadLog::State& state, std::uint8_t* at) {
    Store64(at, state.generation);
    Store32(at + 8, state.frames);
    Store32(at + 12, state.pages);
    Store64(at + 16, state.chain);
    Store32(at + 24, state.previousFrames);
    Store32(at + 28, 0);
    Store64(at + 32, checksum(0, at, 32));
}

// Keeps a log under another name, and earlier kept ones too.
void setAside(Storage& storage, const std::string& path) {
    for (int number = 1;; ++number) {
        try {
            return storage.publish(path, path + "-unused" + (number == 1 ? "" : std::to_string(number)));
        } catch (const Error& error) {
            if (error.code() != ErrorNumber::DatabaseExists)
                throw;
        }
    }
}

} // namespace

std::uint64_t WriteAheadLog::IdentityOf(const std::uint8_t* pageZero) {
    return checksum(1, pageZero, PageSize);
}

std::unique_ptr<WriteAheadLog> WriteAheadLog::open(Storage& storage, const std::string& path, bool readOnly,
                                                   std::uint64_t identity) {
    if (!storage.exists(path))
        return nullptr;
    std::unique_ptr<WriteAheadLog> log(
        new WriteAheadLog(storage.open(path, readOnly ? Storage::Open::ReadOnly : Storage::Open::ReadWrite)));
    return log->readHeader() && log->identity_ == identity ? std::move(log) : nullptr;
}

std::unique_ptr<WriteAheadLog> WriteAheadLog::create(Storage& storage, const std::string& path,
                                                     std::uint64_t identity, PageNumber pages) {
    if (storage.exists(path) && WriteAheadLog(storage.open(path, Storage::Open::ReadOnly)).readHeader())
        setAside(storage, path); // of a file that was replaced, or changed by a program without logs
    else
        storage.remove(path);
    std::unique_ptr<WriteAheadLog> log(new WriteAheadLog(storage.open(path, Storage::Open::CreateNew)));
    log->identity_ = identity;
    log->salt_ = freshSalt();
    log->startAfter({1, 0, pages, log->salt_, 0});
    log->writeHeader();
    return log;
}

void WriteAheadLog::startAfter(const State& state) {
    state_ = state;
    buffered_ = 0;
    end_ = state.frames;
    endChain_ = state.chain;
}

bool WriteAheadLog::readHeader() {
    std::uint8_t head[HeaderLength];
    if (file_->read(0, head, HeaderLength) != HeaderLength || std::memcmp(head, Magic, MagicLength) != 0 ||
        Load64(head + HeaderSumAt) != checksum(0, head, HeaderSumAt))
        return false;
    salt_ = Load64(head + SaltAt);
    identity_ = Load64(head + IdentityAt);
    State state;
    if (!readState(state) || state.generation != Load64(head + GenerationAt))
        state = {Load64(head + GenerationAt), 0, 0, salt_, 0};
    startAfter(state);
    return true;
}

bool WriteAheadLog::readState(State& state) {
    std::uint8_t at[StateLength];
    if (file_->read(StateAt, at, StateLength) != StateLength || Load64(at + 32) != checksum(0, at, 32))
        return false;
    state = {Load64(at), Load32(at + 8), Load32(at + 12), Load64(at + 16), Load32(at + 24)};
    return true;
}

// Keeps the published state locked.
class WriteAheadLog::StateLock {
public:
    StateLock(const WriteAheadLog& log, bool exclusive)
        : file_(log.shared_ ? log.file_.get() : nullptr) {
        if (file_ != nullptr && !file_->lock(StateByte, 1, exclusive, true))
            throw Error(ErrorNumber::RecordLocked, "the write-ahead log");
    }
    ~StateLock() {
        try {
            if (file_ != nullptr)
                file_->unlock(StateByte, 1);
        } catch (const Error&) {
            // Closing the file releases it.
        }
    }
    StateLock(const StateLock&) = delete;
    StateLock& operator=(const StateLock&) = delete;

private:
    StorageFile* file_;
};

void WriteAheadLog::writeHeader() {
    std::uint8_t head[StateAt + StateLength] = {};
    std::memcpy(head, Magic, MagicLength);
    Store64(head + SaltAt, salt_);
    Store64(head + IdentityAt, identity_);
    Store64(head + GenerationAt, state_.generation);
    Store64(head + HeaderSumAt, checksum(0, head, HeaderSumAt));
    encodeState(state_, head + StateAt);
    file_->write(0, head, sizeof(head));
}

bool WriteAheadLog::refresh() {
    State state;
    const StateLock lock(*this, false);
    if (!readState(state))
        throw Error(ErrorNumber::Corrupt, "the write-ahead log is damaged");
    if (state == state_)
        return false;
    startAfter(state);
    return true;
}

void WriteAheadLog::recover() {
    State state{state_.generation, 0, 0, salt_, 0};
    std::vector<std::uint8_t> bytes(FrameLength);
    std::uint64_t chain = salt_;
    const std::uint64_t size = file_->size();
    for (std::uint32_t frame = 0; offsetOf(frame + 1) <= size; ++frame) {
        file_->read(offsetOf(frame), bytes.data(), FrameLength);
        const PageNumber page = Load32(bytes.data());
        const PageNumber commitPages = Load32(bytes.data() + 4);
        chain = frameChecksum(chain, page, commitPages, bytes.data() + FrameHead);
        if (chain != Load64(bytes.data() + 8))
            break;
        if (commitPages != 0)
            state = {state.generation, frame + 1, commitPages, chain, 0};
    }
    startAfter(state);
}

void WriteAheadLog::pagesOf(std::uint32_t from, std::uint32_t to,
                            const std::function<void(std::uint32_t, PageNumber)>& each) {
    for (std::uint32_t frame = from; frame < to; ++frame) {
        std::uint8_t page[4];
        if (file_->read(offsetOf(frame), page, sizeof(page)) != sizeof(page))
            throw Error(ErrorNumber::Corrupt, "the write-ahead log is cut off");
        each(frame, Load32(page));
    }
}

void WriteAheadLog::read(std::uint32_t frame, std::uint8_t* into) {
    const std::uint32_t written = end_ - buffered_;
    if (frame >= written) {
        std::memcpy(into, buffer_.data() + (frame - written) * FrameLength + FrameHead, PageSize);
        return;
    }
    if (file_->read(offsetOf(frame) + FrameHead, into, PageSize) != PageSize)
        throw Error(ErrorNumber::Corrupt, "the write-ahead log is cut off");
}

void WriteAheadLog::append(PageNumber page, const std::uint8_t* bytes, PageNumber commitPages) {
    finishReset();
    if (buffered_ == FramesInBuffer)
        writeOut();
    buffer_.resize(FramesInBuffer * FrameLength);
    std::uint8_t* at = buffer_.data() + buffered_ * FrameLength;
    endChain_ = frameChecksum(endChain_, page, commitPages, bytes);
    Store32(at, page);
    Store32(at + 4, commitPages);
    Store64(at + 8, endChain_);
    std::memcpy(at + FrameHead, bytes, PageSize);
    ++buffered_;
    ++end_;
}

void WriteAheadLog::writeOut() {
    if (buffered_ != 0)
        file_->write(offsetOf(end_ - buffered_), buffer_.data(), buffered_ * FrameLength);
    buffered_ = 0;
}

void WriteAheadLog::publish(PageNumber pages) {
    const StateLock lock(*this, true);
    writeOut();
    State state = state_;
    state.frames = end_;
    state.pages = pages;
    state.chain = endChain_;
    std::uint8_t at[StateLength];
    encodeState(state, at);
    file_->write(StateAt, at, StateLength);
    state_ = state;
}

void WriteAheadLog::rollback() noexcept {
    const bool written = end_ - buffered_ > state_.frames;
    startAfter(state_);
    if (!written)
        return;
    try {
        // Required, not just tidy: the written frames may be a whole transaction whose publishing failed.
        file_->truncate(offsetOf(end_));
    } catch (const Error&) {
        // The next transaction overwrites it.
    }
}

void WriteAheadLog::flush() {
    if (flushFailed_)
        throw Error(ErrorNumber::DiskIo, "the write-ahead log could not be flushed before");
    flushFailed_ = true;
    file_->flush();
    flushFailed_ = false;
}

void WriteAheadLog::reset(PageNumber pages) {
    salt_ = freshSalt();
    startAfter({state_.generation + 1, 0, pages, salt_, state_.frames});
    resetPending_ = true;
    finishReset();
    try {
        file_->truncate(FramesAt);
    } catch (const Error&) {
        // Old frames no longer match any checksum; they only take up space.
    }
}

void WriteAheadLog::finishReset() {
    if (!resetPending_)
        return;
    // The new header must be on the disk before the old frames are overwritten: an old header with some of
    // its frames would restore old pages.
    writeHeader();
    flush();
    resetPending_ = false;
}

} // namespace jet
