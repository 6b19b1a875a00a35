// The pages of a database file as its user (FileUser.h) reads and changes them: a cache with a limit, and
// transactions that nest. Not for several threads.
#pragma once

#include "jet/base/Pager.h"
#include "jet/page/PageZero.h"
#include "jet/pager/OpenOptions.h"

#include <memory>
#include <string>

namespace jet {

class Storage;

class FilePager final : public Pager {
public:
    // Opens a Jet 4 file; what an earlier session left in its log is recovered. Throws FileNotFound,
    // Unrecognised, InvalidPassword, FileLocked, CannotOpenFile. A file that must not or can not be written
    // is opened for reading; changes then throw CannotUpdateReadOnly with the reason.
    FilePager(Storage& storage, const std::string& path, const OpenOptions& options);
    // Rolls back what is not committed and closes; errors are ignored (close() reports them).
    ~FilePager() override;
    FilePager(const FilePager&) = delete;
    FilePager& operator=(const FilePager&) = delete;

    const std::uint8_t* read(PageNumber page) override;
    std::uint8_t* edit(PageNumber page) override;
    PageNumber allocate() override;
    void release(PageNumber page) override;
    PageNumber pageCount() override;
    std::uint64_t version() override;

    void beginReading() override;
    void endReading() noexcept override;
    void beginChange(bool undoable) override;
    void commitChange() override;
    void rollbackChange() noexcept override;
    // How many changes are begun and not ended.
    int changeDepth() const;

    // Returns when all commits so far survive a power cut. Not inside a transaction.
    void flush();
    // Whether nobody else can open the file.
    bool isHeldAlone() const;
    // As such a user: brings everything into the file and removes the write-ahead log.
    void emptyLog();
    // Takes notice of what other programs have written, also of such that know nothing of the write-ahead
    // log.
    void refresh();
    // Brings everything into the file; the last user removes the write-ahead log and the lock file. Running
    // changes are rolled back. After an error everything committed is still in the log.
    void close();

    const PageZero& header() const;
    // Empty: pages may be changed. Otherwise why not.
    const std::string& readOnlyReason() const;

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace jet
