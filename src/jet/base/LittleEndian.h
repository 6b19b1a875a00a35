// Numbers in pages: little-endian, at any alignment. The caller has checked the bounds.
#pragma once

#include <cstdint>

namespace jet {

inline std::uint16_t Load16(const std::uint8_t* at) {
    return static_cast<std::uint16_t>(at[0] | at[1] << 8);
}

inline std::uint32_t Load32(const std::uint8_t* at) {
    return at[0] | static_cast<std::uint32_t>(at[1]) << 8 | static_cast<std::uint32_t>(at[2]) << 16 |
           static_cast<std::uint32_t>(at[3]) << 24;
}

inline std::uint64_t Load64(const std::uint8_t* at) {
    return Load32(at) | static_cast<std::uint64_t>(Load32(at + 4)) << 32;
}

inline void Store16(std::uint8_t* at, std::uint32_t value) {
    at[0] = static_cast<std::uint8_t>(value);
    at[1] = static_cast<std::uint8_t>(value >> 8);
}

inline void Store32(std::uint8_t* at, std::uint32_t value) {
    Store16(at, value);
    Store16(at + 2, value >> 16);
}

inline void Store64(std::uint8_t* at, std::uint64_t value) {
    Store32(at, static_cast<std::uint32_t>(value));
    Store32(at + 4, static_cast<std::uint32_t>(value >> 32));
}

} // namespace jet
