// Changes inside a transaction that can be undone separately: how they nest, and copies of the pages before
// each change. The pager above edits the pages; this module only remembers.
#pragma once

#include "jet/base/Pager.h"

#include <array>
#include <memory>
#include <unordered_map>
#include <vector>

namespace jet {

class Savepoints {
public:
    using Image = std::array<std::uint8_t, PageSize>;
    // An open change. The first one is the transaction.
    struct Level {
        bool undoable = false;
        bool broken = false; // contains parts of an inner change that was abandoned
        std::uint64_t serial = 0;
        std::uint64_t version = 0; // of the pager, and the pages of the file, when it began
        PageNumber pages = 0;
        std::unordered_map<PageNumber, std::unique_ptr<Image>> before;
    };

    std::size_t depth() const { return levels_.size(); }
    Level& innermost() { return levels_.back(); }
    // Only a change inside another one can be undone separately.
    void begin(bool undoable, std::uint64_t version, PageNumber pages);
    // Removes the innermost change. Until passOn() is called no copies are needed.
    Level end();
    // A change that has ended: its copies serve the undoable change around it, if there is one.
    void passOn(Level& ended);
    void clear();

    // The change that needs copies of pages before they are changed; 0: none does.
    std::uint64_t saving() const { return saving_; }
    // Keeps a copy of a page for it, unless it already has one.
    void save(PageNumber page, const std::uint8_t* bytes);

private:
    std::vector<Level> levels_;
    std::uint64_t serial_ = 0; // of the last level made
    std::uint64_t saving_ = 0;
};

} // namespace jet
