#include "jet/maintenance/MendedPages.h"

#include "jet/page/DataPage.h"

#include <algorithm>

namespace jet {

const std::uint8_t* MendedPages::read(PageNumber page) {
    const std::uint8_t* bytes = source_.read(page);
    if (!datapage::IsDataPage(bytes))
        return bytes;
    if (page < looked_.size() && !looked_[page]) {
        looked_[page] = true;
        const int slots = datapage::SlotsByFreeSpace(bytes);
        if (slots != datapage::ClaimedSlots(bytes)) {
            auto copy = std::make_unique<Page>();
            std::copy_n(bytes, PageSize, copy->begin());
            Store16(copy->data() + datapage::CountField, static_cast<std::uint32_t>(slots));
            mended_[page] = std::move(copy);
        }
    }
    const auto found = mended_.find(page);
    return found == mended_.end() ? bytes : found->second->data();
}

} // namespace jet
