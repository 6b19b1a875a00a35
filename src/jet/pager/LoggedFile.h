// The pages of a database as they lie in its file and in the write-ahead log beside it: which of the two
// holds the newest state of each page, how a transaction's pages get into the log, and the log into the file.
// docs/formats/jet.md states the protocol. The pager above holds the locks that each step needs.
#pragma once

#include "jet/page/PageZero.h"
#include "jet/pager/PageCache.h"
#include "jet/pager/WriteAheadLog.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace jet {

class LoggedFile {
public:
    using OnPage = std::function<void(PageNumber)>;

    // Opens the database, for reading if that is all that is wanted or allowed, and reads its first page.
    // Throws what opening throws, and Unrecognised. `cache`: pages that need not be read to be copied.
    LoggedFile(Storage& storage, const std::string& path, const PageCache& cache, bool readOnly);

    StorageFile& file() { return *file_; }
    bool isWritable() const { return writable_; }
    const PageZero& header() const { return header_; }
    // Whether others use the log at the same time; to be told before the log is first looked for.
    void setShared(bool shared) { shared_ = shared; }

    // Of the database, with those that the running transaction has appended.
    PageNumber pages() const { return pages_; }
    PageNumber append();
    void cutTo(PageNumber pages) { pages_ = pages; }
    // As many as the file has, unless there is a log to say it.
    void countPages();
    // The newest state of a page.
    void read(PageNumber page, std::uint8_t* into);

    // Looks for a log that a session has left which died, perhaps with the power: what the checksums in it
    // prove counts from now on. Not while others write. False: there is none.
    bool recoverLog();
    enum class News { None, Pages, Everything };
    // Takes notice of what others have published. `changed` is called for pages that are not as before;
    // Everything: and all others may have changed, too.
    News takeNews(const OnPage& changed);
    // Tells the others of a log that was recovered.
    void publishLog() { log_->publish(pages_); }

    // Puts a page of the running transaction into the log before its end, so that memory stays bounded.
    void spill(const PageCache::Frame& frame);
    // One of the pages that were spilled; 0: none.
    PageNumber spilledPage() const { return spilled_.empty() ? 0 : spilled_.back().first; }
    // Ends the transaction with the rest of its pages, at least one.
    void commit(const std::vector<PageCache::Frame*>& rest);
    // Forgets what was spilled; `dropped` is called for the pages.
    void rollback(const OnPage& dropped);

    // Committed pages in the log, each state counted.
    std::uint32_t logLength() const { return log_ == nullptr ? 0 : log_->state().frames; }
    // Whether commits of this program could still be lost with the power, or with the share.
    bool isFlushed() const { return flushed_; }
    void flushLog();
    // Brings the log into the file and empties it. Nobody else reads or writes meanwhile.
    void emptyLog();
    // As the only user: brings the log into the file and removes it.
    void retireLog();
    // As the last user, who may not write the file: removes a log that holds nothing.
    void removeEmptyLog();
    // The object can only be destroyed afterwards.
    void closeFiles();

private:
    PageNumber pagesInFile();
    bool findLog();
    void takeFrames(std::uint32_t from, const OnPage& changed);
    void forgetFrames();
    void setFrame(PageNumber page, std::uint32_t frame);
    void ensureLog();
    void writePages();

    Storage& storage_;
    std::string path_;
    const PageCache& cache_;
    std::unique_ptr<StorageFile> file_;
    bool writable_;
    bool shared_ = true;
    PageZero header_;
    std::uint64_t identity_ = 0;
    std::unique_ptr<WriteAheadLog> log_; // null: there is none yet
    bool flushed_ = true;
    PageNumber pages_ = 0;
    std::vector<std::uint32_t> frameOf_; // per page: 1 + its newest frame in the log, 0: it is in the file
    std::vector<PageNumber> logged_;     // pages whose entry is not 0
    // Pages of the transaction that are in the log already, with their entry of frameOf_ before.
    std::vector<std::pair<PageNumber, std::uint32_t>> spilled_;
};

} // namespace jet
