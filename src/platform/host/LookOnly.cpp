#include "platform/host/LookOnly.h"

#include <atomic>

namespace tolvex::platform {

namespace {

// Threads that ask drives read it too.
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
