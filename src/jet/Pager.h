// Pages of one open database as the layers above see them: cached, changed inside a transaction, allocated
// and freed. Tables, rows, long values, indexes and usage maps work on this interface and never on the file.
#pragma once

#include <cstdint>

namespace jet {

inline constexpr std::uint32_t PageSize = 4096;
using PageNumber = std::uint32_t;

class Pager {
public:
    virtual ~Pager() = default;
    // The bytes of a page for reading. Valid until the next call that is not read(): copy what must live
    // longer. Throws ReadVerification for a page beyond the end.
    virtual const std::uint8_t* read(PageNumber page) = 0;
    // The bytes of a page for changing; the page belongs to the running transaction from now on. Same life as
    // read().
    virtual std::uint8_t* edit(PageNumber page) = 0;
    // A new page, zeroed, taken from the free map or appended, and ready for edit(). The caller sets the
    // owner's map.
    virtual PageNumber allocate() = 0;
    // Gives a page back to the free map. The caller has cleared the owner's map.
    virtual void release(PageNumber page) = 0;
    virtual PageNumber pageCount() = 0;
};

} // namespace jet
