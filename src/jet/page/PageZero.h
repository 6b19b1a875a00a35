// The first page of a database file: its format, its sort order and code page, its password, where the
// catalogue begins, and the commit bytes of its users.
#pragma once

#include "jet/base/RowPointer.h"
#include "jet/base/Value.h"

#include <array>
#include <span>

namespace jet {

// The stream cipher RC4, which hides the header and, in encrypted files, every other page.
class Rc4 {
public:
    explicit Rc4(std::uint32_t key); // as four bytes, low byte first
    // Encodes or decodes: the same operation.
    void apply(std::span<std::uint8_t> bytes);

private:
    std::array<std::uint8_t, 256> state_;
    std::uint8_t i_ = 0;
    std::uint8_t j_ = 0;
};

struct PageZero {
    static constexpr std::uint32_t Jet3 = 0;
    static constexpr std::uint32_t Jet4 = 1;
    static constexpr std::size_t MaximumPassword = 20; // characters

    std::uint32_t version = Jet4;
    // Jet 4 only.
    RowPointer freeMap{1, 0};
    RowPointer secondMap{1, 1};
    PageNumber objects = 2; // definition pages of the catalogue's tables
    PageNumber permissions = 3;
    PageNumber queries = 4;
    PageNumber relationships = 5;
    std::uint32_t build = 0x261C;
    std::uint8_t sortVersion = 0; // 0: General, the order known here
    Date created;
    // In both versions.
    std::uint16_t codePage = 1252;
    std::uint16_t language = 0x0409;
    std::uint32_t databaseKey = 0; // not 0: pages are encrypted with it
    std::u16string password;
    // Whether all pairs of commit bytes show that no writer died.
    bool cleanlyClosed = true;

    bool hasKnownOrder() const { return language == 0x0409 && sortVersion == 0; }
};

// Reads the first page of a file (Jet 3: its first 2048 bytes). Throws Unrecognised if this is not a database
// of a known version.
PageZero DecodePageZero(std::span<const std::uint8_t> page);

// A complete first page of a new Jet 4 file, PageSize bytes, with unused commit bytes.
void EncodePageZero(const PageZero& header, std::span<std::uint8_t> page);

// Decodes an encrypted page n > 0 in place, or encodes it.
void CryptPage(std::uint32_t databaseKey, PageNumber number, std::span<std::uint8_t> page);

} // namespace jet
