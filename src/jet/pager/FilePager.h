// Reads and changes the pages of a database file for its user (FileUser.h): a bounded cache, and nested
// transactions. Not thread-safe.
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
    // Opens a Jet 4 file, and recovers what an earlier session left in its log. Throws FileNotFound,
    // Unrecognised, InvalidPassword, FileLocked, CannotOpenFile. A file that must not or cannot be written is
    // opened for reading; changes then throw CannotUpdateReadOnly with the reason.
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
    // The number of open changes.
    int changeDepth() const;

    // Returns when all commits so far are durable. Not inside a transaction.
    void flush();
    // Whether nobody else can open the file.
    bool isHeldAlone() const;
    // In that case: brings everything into the file and removes the write-ahead log.
    void emptyLog();
    // Reads what other programs have written, including
    // programs that do not know the write-ahead log.
    void refresh();
    // Brings everything into the file; the last user removes the write-ahead log and the lock file. Open
    // changes are rolled back. After an error everything committed is still in the log.
    void close();

    const PageZero& header() const;
    // Empty: pages may be changed. Otherwise the reason why not.
    const std::string& readOnlyReason() const;

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace jet
