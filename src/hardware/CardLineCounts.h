// How many lines a card has. An Advantech card is asked through its driver, which can fail in several ways;
// each failure is shown to the user once per user action.
#pragma once

#include "hardware/HardwareCards.h"

#include <QStringList>

namespace tolvex {

// The failures of the driver during one action of the user. Each is shown at once, but only the first time.
// While they are held, they wait for show(): typing is one action, however many keys it takes.
class DriverReports {
public:
    void hold() { held_ = true; }
    // Shows what is held, and stops holding.
    void show();
    // Whether anything failed since the last clear().
    bool any() const { return !told_.isEmpty() || !waiting_.isEmpty(); }
    // Begins a new action: earlier failures are shown again if they happen again.
    void clear();
    void add(const QString& message);

private:
    bool held_ = false;
    QStringList told_;
    QStringList waiting_;
};

struct LineCounts {
    qint16 total = 0; // 0 to 32767, all three
    qint16 inputs = 0;
    qint16 outputs = 0;
    bool good = false;    // false: the lines cannot be shown; also for an unknown type
    bool answered = true; // false: the driver failed at some step, even if the counts are good
};

// The counts of a card type; an Advantech card is asked by its device number. If its driver fails, the
// defaults are 32 lines, 16 inputs and 16 outputs.
LineCounts GetCardLineCounts(qint32 cardType, qint16 baseAddress, DriverReports& reports);

} // namespace tolvex
