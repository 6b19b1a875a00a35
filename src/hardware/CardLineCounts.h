// How many lines a card has. An Advantech card is asked through its driver, which can fail in several ways;
// what it fails with is told to the user once for each thing that the user does.
#pragma once

#include "hardware/HardwareCards.h"

#include <QStringList>

namespace tolvex {

// The failures of the driver during one action of the user. Each is shown at once, but only the first time.
// While they are held, they wait for show(): typing is one action, however many keys it takes.
class DriverReports {
public:
    void hold() { held_ = true; }
    // Shows what waits, and goes on showing at once.
    void show();
    // Whether anything failed since the last clear().
    bool any() const { return !told_.isEmpty() || !waiting_.isEmpty(); }
    // A new action begins: what was told before is told again when it happens again.
    void clear();
    void add(const QString& message);

private:
    bool held_ = false;
    QStringList told_;
    QStringList waiting_;
};

// Sets the three counts (0 to 32767) for a card type; an Advantech card is asked by its device number. False
// when the driver failed, or when nothing is known of the type, whose counts are 0. An Advantech card that
// cannot be asked counts 32 lines, 16 inputs, 16 outputs.
bool GetCardLineCounts(qint32 cardType, qint16 baseAddress, qint16& total, qint16& inputs, qint16& outputs,
                       DriverReports& reports);
// The same, with every failure shown.
bool GetCardLineCounts(qint32 cardType, qint16 baseAddress, qint16& total, qint16& inputs, qint16& outputs);

} // namespace tolvex
