// The write-ahead log beside a database: whole pages as left by transactions, each under a checksum that
// continues the previous one, so that the log is valid up to the first page that was not written.
// docs/formats/jet.md describes its bytes. The pager above decides when it is written, flushed and emptied,
// and holds the locks.
#pragma once

#include "jet/base/Pager.h"
#include "jet/base/Storage.h"

#include <array>
#include <functional>
#include <vector>

namespace jet {

class WriteAheadLog {
public:
    // Frames are numbered from 0; frame and page count fit in 32 bits because files end at 2 GB.
    struct State {
        std::uint64_t generation = 0;     // grows whenever the log is emptied
        std::uint32_t frames = 0;         // committed ones
        PageNumber pages = 0;             // pages of the database after them
        std::uint64_t chain = 0;          // checksum of the last one
        std::uint32_t previousFrames = 0; // how many the last generation had when it was emptied
        bool operator==(const State&) const = default;
    };

    static std::string PathFor(const std::string& database) { return database + "-redo"; }
    // The number that ties a log to its database: derived from page zero, which changes when the file is
    // replaced or another engine writes to it (the commit bytes).
    static std::uint64_t IdentityOf(const std::uint8_t* pageZero);

    // Opens the log of a database. Null: there is none, or it belongs to another database, or was never
    // completed and so holds nothing.
    static std::unique_ptr<WriteAheadLog> open(Storage& storage, const std::string& path, bool readOnly,
                                               std::uint64_t identity);
    // Whether others may read and publish at the same time: both then lock the log for that moment, which
    // also makes writes to a share visible to other machines.
    void setShared(bool shared) { shared_ = shared; }
    // Makes an empty log. An existing one of another database is kept under another name.
    static std::unique_ptr<WriteAheadLog> create(Storage& storage, const std::string& path,
                                                 std::uint64_t identity, PageNumber pages);

    const State& state() const { return state_; }
    // Frames, including those of the running transaction.
    std::uint32_t end() const { return end_; }

    // Reads what the other users have published. Changes only state() and end(). False: nothing new.
    bool refresh();
    // Finds the committed frames by their checksums alone, for when there is no other user and the published
    // state cannot be trusted.
    void recover();

    // The pages of frames from..to-1.
    void pagesOf(std::uint32_t from, std::uint32_t to,
                 const std::function<void(std::uint32_t, PageNumber)>& each);
    void read(std::uint32_t frame, std::uint8_t* into);

    // Appends a page for the running transaction. `commitPages`: for its last page the page count of the
    // database, else 0. It is in the file only after publish() or writeOut().
    void append(PageNumber page, const std::uint8_t* bytes, PageNumber commitPages);
    void writeOut();
    // Commits the appended frames: other users see them from now on.
    void publish(PageNumber pages);
    // Discards the appended frames.
    void rollback() noexcept;

    // Returns when all published frames are durable. After a failed
    // flush the log on disk cannot be trusted any more, so every
    // later flush fails too; the next opening recovers what is there.
    void flush();
    // Empties the log: its pages are in the database for good. Even if it throws the log is empty, and the
    // next append first tries again to bring that to the disk.
    void reset(PageNumber pages);

private:
    class StateLock;
    explicit WriteAheadLog(std::unique_ptr<StorageFile> file)
        : file_(std::move(file)) {}
    bool readHeader();
    bool readState(State& state);
    void writeHeader();
    void startAfter(const State& state);
    void finishReset();

    std::unique_ptr<StorageFile> file_;
    std::uint64_t salt_ = 0;
    std::uint64_t identity_ = 0;
    State state_;
    std::uint32_t end_ = 0;
    std::uint64_t endChain_ = 0;
    std::uint32_t buffered_ = 0; // frames at the end that are not written yet
    bool resetPending_ = false;  // the header of the empty log is not on the disk yet
    bool flushFailed_ = false;
    bool shared_ = false;
    std::vector<std::uint8_t> buffer_;
};

} // namespace jet
