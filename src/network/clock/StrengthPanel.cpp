#include "network/clock/StrengthPanel.h"

#include "platform/Clock.h"

namespace tolvex {

namespace {

constexpr int goodLevel = 3;
constexpr int stepMilliseconds = 5;

} // namespace

StrengthPanel::StrengthPanel(std::function<void()> moved)
    : moved_(std::move(moved)) {}

void StrengthPanel::aim(int percent, int level) {
    target_ = percent;
    if (target_ == percent_)
        return;
    colour_ = level >= goodLevel ? StrengthGreen : StrengthRed;
    if (!moving_)
        step();
}

void StrengthPanel::clear() {
    percent_ = target_ = 0;
    colour_ = StrengthRed;
}

void StrengthPanel::step() {
    percent_ += target_ > percent_ ? 1 : target_ < percent_ ? -1 : 0;
    moving_ = percent_ != target_;
    if (moving_)
        platform::clock().after(stepMilliseconds, &context_, [this] { step(); });
    moved_();
}

} // namespace tolvex
