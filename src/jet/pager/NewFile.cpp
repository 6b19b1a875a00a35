#include "jet/pager/NewFile.h"

#include "jet/base/Damage.h"
#include "jet/base/Value.h"
#include "jet/page/DataPage.h"

#include <cstring>

namespace jet {

namespace {

constexpr std::uint32_t mapPageOwner = 1;
constexpr PageNumber mapPage = 1;
constexpr std::size_t stretchPages = 64; // most that is written at once
constexpr int mapHead = 5;               // kind and first page, before the bits

} // namespace

NewFile::NewFile(StorageFile& file, const PageZero& header)
    : file_(file)
    , key_(header.databaseKey)
    , free_(*this, {mapPage, 0}) {
    append();
    EncodePageZero(header, frame(0).bytes);
    append();
    std::uint8_t* page = frame(mapPage).bytes.data();
    datapage::Format(page, mapPageOwner);
    Bytes map(UsageMapRowLength, 0xFF);
    std::memset(map.data(), 0, mapHead);
    map[mapHead] = 0xFC; // pages 0 and 1 are in use
    datapage::Add(page, map);
    datapage::Add(page, Bytes(UsageMapRowLength, 0));
}

std::uint8_t* NewFile::edit(PageNumber page) {
    Frame& one = frame(page);
    one.dirty = true;
    return one.bytes.data();
}

PageNumber NewFile::allocate() {
    const PageNumber before = pageCount();
    const PageNumber page = free_.allocate([this] { return append(); });
    if (page < before)
        std::memset(edit(page), 0, PageSize);
    return page;
}

PageNumber NewFile::append() {
    frames_.emplace_back();
    const PageNumber page = pageCount() - 1;
    Frame& fresh = insert(page);
    fresh.bytes.fill(0);
    fresh.dirty = true;
    return page;
}

NewFile::Frame& NewFile::frame(PageNumber page) {
    if (page >= frames_.size())
        Damaged(page, "lies beyond the end of the file");
    if (frames_[page] != nullptr) {
        frames_[page]->used = true;
        return *frames_[page];
    }
    Frame& back = insert(page);
    const std::size_t length = file_.read(std::uint64_t{page} * PageSize, back.bytes.data(), PageSize);
    if (length != PageSize)
        throw Error(ErrorNumber::DiskIo, "page " + std::to_string(page) + " could not be read back");
    if (key_ != 0 && page != 0)
        CryptPage(key_, page, back.bytes);
    return back;
}

NewFile::Frame& NewFile::insert(PageNumber page) {
    if (resident_.size() >= CachedPages)
        makeRoom();
    // Not made by make_unique: the bytes need no zeroing.
    frames_[page] = std::unique_ptr<Frame>(new Frame); // NOLINT(modernize-make-unique)
    resident_.push_back(page);
    return *frames_[page];
}

// Evicts the page that was not used for the longest time (second chance).
void NewFile::makeRoom() {
    for (;;) {
        const PageNumber page = resident_.front();
        resident_.pop_front();
        Frame& candidate = *frames_[page];
        if (!candidate.used) {
            if (candidate.dirty)
                write(page);
            frames_[page].reset();
            return;
        }
        candidate.used = false;
        resident_.push_back(page);
    }
}

// Writes a page and the changed pages that follow it.
void NewFile::write(PageNumber page) {
    stretch_.clear();
    for (PageNumber next = page; next < pageCount() && stretch_.size() < stretchPages * PageSize; ++next) {
        Frame* one = frames_[next].get();
        if (one == nullptr || !one->dirty)
            break;
        stretch_.insert(stretch_.end(), one->bytes.begin(), one->bytes.end());
        if (key_ != 0 && next != 0)
            CryptPage(key_, next, {stretch_.data() + stretch_.size() - PageSize, PageSize});
        one->dirty = false;
    }
    file_.write(std::uint64_t{page} * PageSize, stretch_.data(), stretch_.size());
    file_.beginFlush(std::uint64_t{page} * PageSize, stretch_.size());
}

void NewFile::finish() {
    for (PageNumber page = 0; page < pageCount(); ++page) {
        if (frames_[page] != nullptr && frames_[page]->dirty)
            write(page);
    }
    file_.flush();
}

} // namespace jet
