// The write-ahead log beside a database: whole pages as transactions left them, each under a checksum that
// continues the one before, so that the log is valid up to the first page that did not get there.
// docs/formats/jet.md has its bytes. The pager above decides when it is written, flushed and emptied, and
// holds the locks.
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
    // The number that ties a log to its database: made of page zero, which changes when the file is replaced
    // by another or when another engine writes to it (the commit bytes).
    static std::uint64_t IdentityOf(const std::uint8_t* pageZero);

    // Opens the log of a database. Null: there is none, or it is of another database, or was never finished
    // being made and so holds nothing.
    static std::unique_ptr<WriteAheadLog> open(Storage& storage, const std::string& path, bool readOnly,
                                               std::uint64_t identity);
    // Whether others may read and publish at the same time: both then lock the log for that moment, which
    // also makes other machines see what was written to a share.
    void setShared(bool shared) { shared_ = shared; }
    // Makes an empty log. One that is of another database is kept under another name.
    static std::unique_ptr<WriteAheadLog> create(Storage& storage, const std::string& path,
                                                 std::uint64_t identity, PageNumber pages);

    const State& state() const { return state_; }
    // Frames with those of the running transaction.
    std::uint32_t end() const { return end_; }

    // Reads what the other users have published. Changes nothing but state() and end(). False: nothing new.
    bool refresh();
    // Finds the committed frames by their checksums alone, for use when no other user lives and the published
    // state cannot be trusted.
    void recover();

    // The pages of frames from..to-1.
    void pagesOf(std::uint32_t from, std::uint32_t to,
                 const std::function<void(std::uint32_t, PageNumber)>& each);
    void read(std::uint32_t frame, std::uint8_t* into);

    // Appends a page for the running transaction. `commitPages`: not 0 for its last page, the count of pages
    // of the database. It is in the file only after publish() or writeOut().
    void append(PageNumber page, const std::uint8_t* bytes, PageNumber commitPages);
    void writeOut();
    // Makes the appended frames committed ones, which other users see from now on.
    void publish(PageNumber pages);
    // Forgets the appended frames.
    void rollback() noexcept;

    // Returns when all published frames survive a power cut. A log whose flush failed once cannot be trusted
    // to be on the disk any more, so that every later flush fails too; the next opening recovers what is
    // there.
    void flush();
    // Empties the log: its pages are in the database for good. If it throws, the log is empty all the same,
    // and appending tries again to bring that to the disk before anything else.
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
