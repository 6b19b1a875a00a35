// A database with its pages in memory: for building a new
// file, for reading the older format, and for tests.
#pragma once

#include "jet/base/Value.h"
#include "jet/page/UsageMap.h"

#include <array>
#include <memory>
#include <string>
#include <vector>

namespace jet {

class MemoryPager final : public Pager {
public:
    // Pages that belong to no database: allocate() reuses the page released last, or appends.
    explicit MemoryPager(PageNumber pages = 1);
    // A database image, a whole number of pages: its own map of free pages serves allocate() and release().
    explicit MemoryPager(const Bytes& image);
    MemoryPager(const MemoryPager&) = delete;
    MemoryPager& operator=(const MemoryPager&) = delete;

    const std::uint8_t* read(PageNumber page) override;
    std::uint8_t* edit(PageNumber page) override;
    PageNumber allocate() override;
    void release(PageNumber page) override;
    PageNumber pageCount() override { return static_cast<PageNumber>(pages_.size()); }

    // From now on every change throws CannotUpdateReadOnly with this reason.
    void setReadOnly(std::string reason) { readOnlyReason_ = std::move(reason); }
    void beginChange(bool undoable) override;

    // All pages, one after the other.
    Bytes image() const;

private:
    using Page = std::array<std::uint8_t, PageSize>;
    PageNumber append();
    void checkWritable() const;

    std::vector<std::unique_ptr<Page>> pages_;
    std::vector<PageNumber> released_;
    std::string readOnlyReason_;
    bool mapped_ = false; // the image has a map of free pages
    FreeMap free_{*this, {1, 0}};
};

} // namespace jet
