#include "platform/host/LookOnly.h"

#include <atomic>

namespace tolvex::platform {

namespace {

// Also read by the threads that ask drives.
std::atomic<int> lookers = 0;

} // namespace

LookOnly::LookOnly() {
    ++lookers;
}

LookOnly::~LookOnly() {
    --lookers;
}

bool LookingOnly() {
    return lookers > 0;
}

} // namespace tolvex::platform
