// The pages of one open database, as the layers above see them: cached, changed in transactions, allocated
// and freed. Tables, rows, long values, indexes and usage maps never use the file directly.
//
// Every operation that reads more than one page runs inside a Reading, every operation that changes pages
// inside a Changing: a Reading sees one state of the file, a Changing leaves all of its changes or none. Both
// nest, and cost almost nothing if nested or if the file is not shared.
#pragma once

#include <cstdint>

namespace jet {

inline constexpr std::uint32_t PageSize = 4096;
using PageNumber = std::uint32_t;
inline constexpr PageNumber MaximumPages = 0x80000000 / PageSize; // files end at 2 GB

class Pager {
public:
    virtual ~Pager() = default;
    // The bytes of a page for reading. Valid until the next call that is not read(), pageCount() or
    // version(), or until 100 other pages have been read: copy what must live longer. Throws ReadVerification
    // for a page beyond the end.
    virtual const std::uint8_t* read(PageNumber page) = 0;
    // The bytes of a page for changing; from now on the page belongs to the running transaction. Valid as for
    // read(): writing through the pointer after another edit() may be lost.
    virtual std::uint8_t* edit(PageNumber page) = 0;
    // A new page, zeroed, from the free map or appended, and ready for edit(). The caller sets the owner's
    // map.
    virtual PageNumber allocate() = 0;
    // Returns a page to the free map. The caller has cleared the owner's map.
    virtual void release(PageNumber page) = 0;
    virtual PageNumber pageCount() = 0;
    // Increases with every edit() and whenever a rollback or another program's change may have altered pages:
    // anything derived from pages is still true while the number is the same.
    virtual std::uint64_t version() { return 0; }

    // Used by Reading and Changing.
    virtual void beginReading() {}
    virtual void endReading() noexcept {}
    // `undoable`: if this nested change is rolled back it is undone page by page, and the outer one
    // continues; otherwise the outer transaction must be rolled back as well. An undoable one costs a copy of
    // each page at its first change.
    virtual void beginChange(bool undoable) { static_cast<void>(undoable); }
    virtual void commitChange() {}
    virtual void rollbackChange() noexcept {}
};

// The operation in this scope sees one state of the file, the newest at its beginning.
class Reading {
public:
    explicit Reading(Pager& pager)
        : pager_(pager) {
        pager_.beginReading();
    }
    ~Reading() { pager_.endReading(); }
    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;

private:
    Pager& pager_;
};

// The changes in this scope are one transaction, or join the running one. Without commit() they are rolled
// back. The constructor and commit() throw (CannotUpdateReadOnly, RecordLocked, DiskFull, DiskIo).
class Changing {
public:
    enum Kind { Plain, Undoable };
    explicit Changing(Pager& pager, Kind kind = Plain)
        : pager_(pager) {
        pager_.beginChange(kind == Undoable);
    }
    ~Changing() {
        if (!done_)
            pager_.rollbackChange();
    }
    Changing(const Changing&) = delete;
    Changing& operator=(const Changing&) = delete;
    void commit() {
        pager_.commitChange();
        done_ = true;
    }

private:
    Pager& pager_;
    bool done_ = false;
};

} // namespace jet
