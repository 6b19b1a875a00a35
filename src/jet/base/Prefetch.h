// Asking for memory before it is needed, where many places of a large area are looked at one after the other:
// the processor then waits for them together.
#pragma once

namespace jet {

inline void Prefetch([[maybe_unused]] const void* at) {
#if defined(__GNUC__)
    __builtin_prefetch(at);
#endif
}

} // namespace jet
