#include "jet/pager/MemoryPager.h"

#include "jet/base/Damage.h"

#include <cstring>

namespace jet {

MemoryPager::MemoryPager(PageNumber pages) {
    while (pageCount() < pages)
        append();
}

MemoryPager::MemoryPager(const Bytes& image)
    : mapped_(true) {
    for (std::size_t at = 0; at + PageSize <= image.size(); at += PageSize)
        std::memcpy(pages_[append()]->data(), image.data() + at, PageSize);
}

PageNumber MemoryPager::append() {
    pages_.push_back(std::make_unique<Page>());
    pages_.back()->fill(0);
    return pageCount() - 1;
}

const std::uint8_t* MemoryPager::read(PageNumber page) {
    if (page >= pages_.size())
        Damaged(page, "lies beyond the end of the file");
    return pages_[page]->data();
}

void MemoryPager::checkWritable() const {
    if (!readOnlyReason_.empty())
        throw Error(ErrorNumber::CannotUpdateReadOnly, readOnlyReason_);
}

void MemoryPager::beginChange(bool) {
    checkWritable();
}

std::uint8_t* MemoryPager::edit(PageNumber page) {
    checkWritable();
    if (page >= pages_.size())
        Damaged(page, "lies beyond the end of the file");
    return pages_[page]->data();
}

PageNumber MemoryPager::allocate() {
    checkWritable();
    PageNumber page = 0;
    if (mapped_) {
        page = free_.allocate([this] { return append(); });
    } else if (released_.empty()) {
        page = append();
    } else {
        page = released_.back();
        released_.pop_back();
    }
    pages_[page]->fill(0);
    return page;
}

void MemoryPager::release(PageNumber page) {
    checkWritable();
    if (mapped_)
        free_.release(page);
    else
        released_.push_back(page);
}

Bytes MemoryPager::image() const {
    Bytes bytes;
    bytes.reserve(pages_.size() * PageSize);
    for (const auto& page : pages_)
        bytes.insert(bytes.end(), page->begin(), page->end());
    return bytes;
}

} // namespace jet
