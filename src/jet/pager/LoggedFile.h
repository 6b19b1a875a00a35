// The pages of a database in its file and in the write-ahead log beside it: which of the two has the newest
// state of each page, how a transaction's pages get into the log, and the log into the file.
// docs/formats/jet.md describes the protocol. The pager above holds the locks for each step.
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

    // Opens the database, for reading if no more is wanted or allowed, and reads its first page. Throws the
    // errors of opening, and Unrecognised. `cache`: pages that need not be read to be copied.
    LoggedFile(Storage& storage, const std::string& path, const PageCache& cache, bool readOnly);

    StorageFile& file() { return *file_; }
    bool isWritable() const { return writable_; }
    const PageZero& header() const { return header_; }
    // Whether others use the log at the same time; set before the log is first looked for.
    void setShared(bool shared) { shared_ = shared; }

    // Of the database, including those appended by the running transaction.
    PageNumber pages() const { return pages_; }
    PageNumber append();
    void cutTo(PageNumber pages) { pages_ = pages; }
    // The file's own count, unless a log has another.
    void countPages();
    // The newest state of a page.
    void read(PageNumber page, std::uint8_t* into);

    // Looks for a log left by a session that died, perhaps in a power cut: from now on, everything that its
    // checksums prove is valid. Not while others write. False: there is none.
    bool recoverLog();
    enum class News { None, Pages, Everything };
    // Reads what others have published. `changed` is called for pages that have changed; Everything: all
    // others may have changed, too.
    News takeNews(const OnPage& changed);
    // Publishes a recovered log to the others.
    void publishLog() { log_->publish(pages_); }

    // Writes a page of the running transaction to the log before its end, so that memory stays bounded.
    void spill(const PageCache::Frame& frame);
    // One of the pages that were spilled; 0: none.
    PageNumber spilledPage() const { return spilled_.empty() ? 0 : spilled_.back().first; }
    // Ends the transaction with the rest of its pages, at least one.
    void commit(const std::vector<PageCache::Frame*>& rest);
    // Discards the spilled pages; calls `dropped` for each.
    void rollback(const OnPage& dropped);

    // Committed frames in the log.
    std::uint32_t logLength() const { return log_ == nullptr ? 0 : log_->state().frames; }
    // Whether a power cut, or the loss of the share, could still lose commits of this program.
    bool isFlushed() const { return flushed_; }
    void flushLog();
    // Brings the log into the file and empties it. Nobody else may read or write meanwhile.
    void emptyLog();
    // As the only user: brings the log into the file and removes it.
    void retireLog();
    // As the last user, without write access to the file: removes a log that holds nothing.
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
    // Pages of the transaction that are already in the log, with their previous entry of frameOf_.
    std::vector<std::pair<PageNumber, std::uint32_t>> spilled_;
};

} // namespace jet
