// The list of lines for the wiring cabinet.
#pragma once

#include "hardware/HardwareCards.h"

#include <QString>

namespace tolvex {

struct ListedCard {
    int number = 1;
    QString about; // its type and where it is attached
    int lines = 0; // how many it has
    const HardwareCard* card = nullptr;
    bool applied = true; // false: the file says something else
};

// A page in HTML: a table for each card with line, type, logic, description and action, all of the same
// columns. An action that is not known stands there by its number. Cards without lines are left out; with
// `onlyInUse`, so are lines that stand for nothing.
QString LineListHtml(const QString& title, const QString& about, const QList<ListedCard>& cards,
                     bool onlyInUse);

} // namespace tolvex
