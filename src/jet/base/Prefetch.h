// Requests memory before it is needed, when many places of a large area are read one after the other: the
// processor then waits for them together.
#pragma once

namespace jet {

inline void Prefetch([[maybe_unused]] const void* at) {
#if defined(__GNUC__)
    __builtin_prefetch(at);
#endif
}

} // namespace jet
