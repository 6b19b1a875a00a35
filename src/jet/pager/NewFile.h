// The pages of a file under construction that nobody else sees yet: written when they leave a small cache, in
// long stretches, without transactions. finish() makes them durable.
#pragma once

#include "jet/base/Storage.h"
#include "jet/page/PageZero.h"
#include "jet/page/UsageMap.h"

#include <array>
#include <deque>
#include <memory>
#include <vector>

namespace jet {

class NewFile final : public Pager {
public:
    static constexpr std::size_t CachedPages = 512;

    // `header`: page 0, with the file's key if it is to be encrypted. Makes pages 0 and 1; page 1 holds the
    // map of free pages. The storage outlives this.
    NewFile(StorageFile& file, const PageZero& header);

    const std::uint8_t* read(PageNumber page) override { return frame(page).bytes.data(); }
    std::uint8_t* edit(PageNumber page) override;
    PageNumber allocate() override;
    void release(PageNumber page) override { free_.release(page); }
    PageNumber pageCount() override { return static_cast<PageNumber>(frames_.size()); }

    // Writes the rest and flushes the file.
    void finish();

private:
    struct Frame {
        std::array<std::uint8_t, PageSize> bytes;
        bool dirty = false;
        bool used = true; // since the clock hand passed
    };
    Frame& frame(PageNumber page);
    Frame& insert(PageNumber page);
    PageNumber append();
    void makeRoom();
    void write(PageNumber page);

    StorageFile& file_;
    std::uint32_t key_;
    FreeMap free_;
    std::vector<std::unique_ptr<Frame>> frames_; // by page; null: not in memory
    std::deque<PageNumber> resident_;
    std::vector<std::uint8_t> stretch_;
};

} // namespace jet
