#include "core/settings/Settings.h"

namespace tolvex {

namespace {

Settings inForce;

} // namespace

Settings& settings() {
    return inForce;
}

void ResetSettings() {
    inForce = Settings{};
}

} // namespace tolvex
