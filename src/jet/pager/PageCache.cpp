#include "jet/pager/PageCache.h"

namespace jet {

void PageCache::link(Frame& frame) {
    frame.used = clock_;
    frame.newer = nullptr;
    frame.older = newest_;
    (newest_ != nullptr ? newest_->newer : oldest_) = &frame;
    newest_ = &frame;
    ++cleanCount_;
}

void PageCache::unlink(Frame& frame) {
    (frame.newer != nullptr ? frame.newer->older : newest_) = frame.older;
    (frame.older != nullptr ? frame.older->newer : oldest_) = frame.newer;
    frame.newer = frame.older = nullptr;
    --cleanCount_;
}

void PageCache::moveToFront(Frame& frame) {
    unlink(frame);
    link(frame);
}

void PageCache::evict() {
    while (oldest_ != nullptr && cleanCount_ + dirty_.size() >= limit_) {
        Frame* frame = oldest_;
        unlink(*frame);
        table_[frame->page].reset();
    }
}

PageCache::Frame& PageCache::add(PageNumber page) {
    evict();
    if (page >= table_.size())
        table_.resize(page + page / 8 + 64);
    ++clock_;
    // Not made by make_unique: the bytes need no zeroing.
    table_[page] = std::unique_ptr<Frame>(new Frame); // NOLINT(modernize-make-unique)
    Frame& frame = *table_[page];
    frame.page = page;
    link(frame);
    return frame;
}

void PageCache::drop(PageNumber page) {
    Frame* frame = find(page);
    if (frame == nullptr)
        return;
    if (frame->dirty)
        std::erase(dirty_, frame);
    else
        unlink(*frame);
    table_[page].reset();
}

void PageCache::dropClean() {
    while (oldest_ != nullptr)
        drop(oldest_->page);
}

void PageCache::makeDirty(Frame& frame) {
    if (frame.dirty)
        return;
    dirty_.push_back(&frame);
    unlink(frame);
    frame.dirty = true;
}

void PageCache::cleaned(Frame& frame) {
    frame.dirty = false;
    frame.savedIn = 0;
    link(frame);
}

void PageCache::dropDirty() {
    std::vector<Frame*> frames;
    frames.swap(dirty_);
    for (const Frame* frame : frames)
        table_[frame->page].reset();
}

} // namespace jet
