// The strength of reception as a panel shows it: it moves from one percentage to another a step at a time.
#pragma once

#include <QObject>

#include <functional>

namespace tolvex {

inline constexpr qint32 StrengthGreen = 65280;
inline constexpr qint32 StrengthRed = 255;

class StrengthPanel {
public:
    // `moved` is called after each step.
    explicit StrengthPanel(std::function<void()> moved);

    // Moves to a percentage from where it is now. The colour changes only if there is a way to go: green from
    // level 3 upward, red below.
    void aim(int percent, int level);
    // Red, at 0 percent, at rest.
    void clear();

    int percent() const { return percent_; }
    qint32 colour() const { return colour_; }

private:
    void step();

    std::function<void()> moved_;
    int percent_ = 0;
    int target_ = 0;
    qint32 colour_ = StrengthRed;
    bool moving_ = false;
    QObject context_; // destroying it drops the steps under way
};

} // namespace tolvex
