// All that is known of one cart, in words, for people who look it up.
#pragma once

#include <QList>
#include <QString>

namespace tolvex {

struct CartStore;

struct CartDetail {
    QString name;
    QString value;
};

// Its number, lines, times, the file that its record lies in, and its notes' file. A cart that is empty or
// cannot be read says so.
QList<CartDetail> CartDetails(CartStore& carts, qint32 cart);

// One detail a line, "name: value", without those that are empty.
QString CartDetailsText(const QList<CartDetail>& details);

} // namespace tolvex
