// Pages of a file in memory, found by number without a search. Above the limit, clean pages are evicted,
// least recently used first; dirty ones stay until they are cleaned or dropped.
#pragma once

#include "jet/base/Pager.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace jet {

class PageCache {
public:
    struct Frame {
        alignas(64) std::uint8_t bytes[PageSize];
        PageNumber page = 0;
        bool dirty = false;
        std::uint64_t used = 0;    // the cache's clock at its last use
        std::uint64_t savedIn = 0; // the nested change that has a copy of the page's earlier state
        Frame* newer = nullptr;    // list of clean frames in order of use
        Frame* older = nullptr;
    };

    explicit PageCache(std::size_t limit)
        : limit_(limit) {}
    PageCache(const PageCache&) = delete;
    PageCache& operator=(const PageCache&) = delete;

    std::size_t limit() const { return limit_; }

    // Null: not cached. Costs one table look-up.
    Frame* find(PageNumber page) const { return page < table_.size() ? table_[page].get() : nullptr; }
    // Marks a frame as used.
    void touch(Frame& frame) {
        if (frame.used != clock_ && !frame.dirty)
            moveToFront(frame);
    }
    // A clean frame for a page that is not cached, its bytes undefined. Others may be evicted for it.
    Frame& add(PageNumber page);
    void drop(PageNumber page);
    void dropClean();

    void makeDirty(Frame& frame);
    // From now on, all frames of dirty() that `accept` accepts are clean. If it throws, the current frame and
    // those after it stay dirty.
    template<typename Accept>
    void clean(Accept accept) {
        std::vector<Frame*> frames;
        frames.reserve(dirty_.size()); // which dirty_ gets, so that nothing but `accept` can fail
        frames.swap(dirty_);
        auto next = frames.begin();
        try {
            for (; next != frames.end(); ++next)
                if (accept(**next))
                    cleaned(**next);
                else
                    dirty_.push_back(*next);
        } catch (...) {
            dirty_.insert(dirty_.end(), next, frames.end());
            throw;
        }
    }
    void dropDirty();
    // In the order in which they became dirty.
    const std::vector<Frame*>& dirty() const { return dirty_; }

private:
    void link(Frame& frame);
    void unlink(Frame& frame);
    void moveToFront(Frame& frame);
    void cleaned(Frame& frame);
    void evict();

    std::size_t limit_;
    std::size_t cleanCount_ = 0;
    std::uint64_t clock_ = 1; // counts pages that were added
    std::vector<std::unique_ptr<Frame>> table_;
    std::vector<Frame*> dirty_;
    Frame* newest_ = nullptr;
    Frame* oldest_ = nullptr;
};

} // namespace jet
