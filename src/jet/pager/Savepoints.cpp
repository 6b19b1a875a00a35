#include "jet/pager/Savepoints.h"

#include <algorithm>
#include <cstring>

namespace jet {

void Savepoints::begin(bool undoable, std::uint64_t version, PageNumber pages) {
    const bool inner = !levels_.empty();
    levels_.push_back({undoable, false, ++serial_, version, pages, {}});
    if (inner && undoable)
        saving_ = serial_;
}

Savepoints::Level Savepoints::end() {
    Level level = std::move(levels_.back());
    levels_.pop_back();
    if (level.undoable)
        saving_ = 0;
    return level;
}

void Savepoints::passOn(Level& ended) {
    const auto transaction = levels_.rend() - 1;
    const auto outer =
        std::find_if(levels_.rbegin(), transaction, [](const Level& one) { return one.undoable; });
    saving_ = outer == transaction ? 0 : outer->serial;
    if (outer == transaction)
        return;
    for (auto& [page, image] : ended.before)
        outer->before.try_emplace(page, std::move(image));
}

void Savepoints::clear() {
    levels_.clear();
    saving_ = 0;
}

void Savepoints::save(PageNumber page, const std::uint8_t* bytes) {
    const auto level = std::find_if(levels_.rbegin(), levels_.rend(),
                                    [this](const Level& one) { return one.serial == saving_; });
    auto& image = level->before[page];
    if (image == nullptr) {
        image = std::make_unique<Image>();
        std::memcpy(image->data(), bytes, PageSize);
    }
}

} // namespace jet
