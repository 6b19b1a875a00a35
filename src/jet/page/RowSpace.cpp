#include "jet/page/RowSpace.h"

#include "jet/base/Damage.h"
#include "jet/page/DataPage.h"

namespace jet {

namespace {

constexpr int WorthOffering = 128; // pages with less room are not tried
constexpr int Candidates = 4;      // pages tried before a new one is allocated

} // namespace

bool RowSpace::fits(PageNumber page, int length) const {
    const std::uint8_t* bytes = pager_->read(page);
    return datapage::IsDataPage(bytes) && datapage::Owner(bytes) == owner_ && datapage::Fits(bytes, length) &&
           owned_.contains(page);
}

RowPointer RowSpace::put(std::span<const std::uint8_t> row, std::uint16_t flags) {
    const int length = static_cast<int>(row.size());
    PageNumber page = roomy_;
    if (page == 0 || page >= pager_->pageCount() || !fits(page, length)) {
        // Others are tried in turn, so that the search does not always try the same few.
        PageNumber candidate = free_.next(page + 1);
        page = 0;
        for (int tried = 0; tried < Candidates; ++tried) {
            if (candidate == 0 && (candidate = free_.next(0)) == 0)
                break;
            if (fits(candidate, length) && datapage::IsSound(pager_->read(candidate))) {
                page = candidate;
                break;
            }
            if (!fits(candidate, WorthOffering))
                free_.remove(candidate);
            candidate = free_.next(candidate + 1);
        }
        if (page == 0) {
            page = newPage();
            free_.add(page);
        }
        roomy_ = page;
    }
    std::uint8_t* bytes = pager_->edit(page);
    const std::uint8_t slot = datapage::Add(bytes, row, flags);
    if (!datapage::Fits(bytes, WorthOffering))
        free_.remove(page);
    return {page, slot};
}

PageNumber RowSpace::newPage() {
    const PageNumber page = pager_->allocate();
    datapage::Format(pager_->edit(page), owner_);
    owned_.add(page);
    return page;
}

void RowSpace::noteRoom(PageNumber page) {
    if (datapage::Fits(pager_->read(page), WorthOffering))
        free_.add(page);
}

void RowSpace::remove(RowPointer at) {
    if (!owned_.contains(at.page) || datapage::Owner(pager_->read(at.page)) != owner_)
        Damaged(at.page, "holds a row of something else");
    std::uint8_t* bytes = pager_->edit(at.page);
    datapage::Remove(bytes, at.page, at.row);
    if (datapage::HasRows(bytes, at.page))
        return noteRoom(at.page);
    owned_.remove(at.page);
    free_.remove(at.page);
    pager_->release(at.page);
}

} // namespace jet
