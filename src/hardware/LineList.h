// The list of lines for the wiring cabinet.
#pragma once

#include "hardware/HardwareCards.h"

#include <QString>

namespace tolvex {

struct ListedCard {
    int number = 1;
    QString about; // its type and its connection
    int lines = 0; // how many it has
    const HardwareCard* card = nullptr;
    bool applied = true; // false: the file differs
};

// A page in HTML: one table per card with line, type, logic, description and action, all with equal columns.
// An unknown action appears as its number. Cards without lines are left out; with `onlyInUse`, so are unused
// lines.
QString LineListHtml(const QString& title, const QString& about, const QList<ListedCard>& cards,
                     bool onlyInUse);

} // namespace tolvex
