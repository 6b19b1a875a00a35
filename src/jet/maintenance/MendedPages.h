// The pages of a damaged database for compaction: a page on which only the number of rows is damaged reads as
// it was. Its free space determines the number, so that no row is lost because of two bytes.
#pragma once

#include "jet/base/Pager.h"

#include <array>
#include <map>
#include <memory>
#include <vector>

namespace jet {

class MendedPages final : public Pager {
public:
    // `source` outlives this. Its pages must not change meanwhile.
    explicit MendedPages(Pager& source)
        : source_(source)
        , looked_(source.pageCount()) {}

    const std::uint8_t* read(PageNumber page) override;
    std::uint8_t* edit(PageNumber page) override { return source_.edit(page); }
    PageNumber allocate() override { return source_.allocate(); }
    void release(PageNumber page) override { source_.release(page); }
    PageNumber pageCount() override { return source_.pageCount(); }
    std::uint64_t version() override { return source_.version(); }
    void beginReading() override { source_.beginReading(); }
    void endReading() noexcept override { source_.endReading(); }
    void beginChange(bool undoable) override { source_.beginChange(undoable); }
    void commitChange() override { source_.commitChange(); }
    void rollbackChange() noexcept override { source_.rollbackChange(); }

private:
    using Page = std::array<std::uint8_t, PageSize>;

    Pager& source_;
    std::vector<bool> looked_;
    std::map<PageNumber, std::unique_ptr<Page>> mended_;
};

} // namespace jet
