// The search over the audiowall, plain and slow: whole texts, one cart after the other, nothing remembered.
// What it finds is what the real search has to find.
#pragma once

#include "audio/CartNotes.h"
#include "audio/CartStore.h"
#include "audio/search/CartSearch.h"
#include "platform/CodePage.h"
#include "platform/files/Files.h"

namespace tolvex::tests {

inline QString withoutBlanks(QString text) {
    while (text.startsWith(u' '))
        text.remove(0, 1);
    while (text.endsWith(u' '))
        text.chop(1);
    return text;
}

inline QString joinedLines(const CartRecord& cart) {
    QString text;
    for (const QString& line : {cart.Line1, cart.Line2, cart.Line3}) {
        if (line[CartLineLength - 1] != u' ')
            text += line;
        else if (!withoutBlanks(line).isEmpty())
            text += withoutBlanks(line) + u' ';
    }
    return withoutBlanks(text);
}

inline bool plainMatch(CartStore& store, const CartQuery& query, qint32 number, const CartRecord& cart) {
    const QString wanted = withoutBlanks(query.text);
    const auto has = [&wanted](const QString& text) {
        return !wanted.isEmpty() && text.contains(wanted, Qt::CaseInsensitive);
    };
    bool found = false;
    if (!cart.isEmpty()) {
        found = wanted == u"*";
        const QString lines[] = {cart.Line1, cart.Line2, cart.Line3};
        for (int i = 0; i < 3; ++i)
            found = found || (query.limitLines && query.lines[std::size_t(i)] && has(lines[i]));
        found = found || (!query.limitLines && has(joinedLines(cart)));
        bool exists = false;
        const QString notes = CartNotesPath(store, number, &exists);
        if (!found && query.notes && exists)
            found = has(platform::FromCodePage(
                platform::ReadWholeFile(notes).value_or(QByteArray()).left(SearchedNotesBytes)));
    }
    if (query.length) {
        const float lowest = float(query.length->target - query.length->give - 1);
        const float highest = float(query.length->target + query.length->give + 1);
        found = found && cart.Length > lowest && cart.Length < highest;
    }
    return found;
}

inline QList<qint32> plainSearch(CartStore& store, const CartQuery& query, qint32 carts) {
    qint32 cart = query.wholeWall ? (query.backwards ? carts : 1) : std::max(query.start, 1);
    QList<qint32> found;
    for (; cart >= 1 && cart <= carts; cart += query.backwards ? -1 : 1)
        if (plainMatch(store, query, cart, ReadCart(store, cart)))
            found += cart;
    return found;
}

} // namespace tolvex::tests
