// The check of the whole audiowall: its lists, its carts, and the audio that should lie beside them.
#pragma once

#include <QList>
#include <QString>

namespace tolvex {

struct CartStore;

struct CartFault {
    QString kind; // of a list: CartListFacts::state; of a cart: "unreadable", "audio" (none), "double"
    int part = 0;
    qint32 cart = 0; // 0: the whole list
    QString text;    // a sentence
};

struct CartCheckResult {
    QList<CartFault> faults; // lists first in each part, then its carts in their order
    int lists = 0;           // that could be read
    qint32 carts = 0;        // that are not empty
    bool stopped = false;    // by the user; the rest was not looked at
};

// Looks at every part that has a location, up to the part of the last cart, and changes nothing. A cart's
// audio is any file in its part's folder that is called as the cart ("TLV00042") and is neither a list nor
// notes; where carts may be linked to files elsewhere nobody here can tell which have none, and none is
// missed. Doubles are two carts with the same lines and the same length, and two audio files for one cart.
// Shows progress. The caller holds a LookOnly: opening lists for work would mend what is looked for.
// Cost: some ten microseconds a cart, most of it the look at its audio file.
CartCheckResult CheckCarts(CartStore& carts);

} // namespace tolvex
