#include "audio/CartPicking.h"

#include <QMetaObject>

namespace tolvex {

QStringList WithSearch(QStringList searches, const QString& text) {
    for (qsizetype i = searches.size() - 1; i > 0; --i)
        if (searches[i].trimmed() == text)
            searches.removeAt(i);
    if (text.isEmpty() || searches.value(0) == text)
        return searches;
    while (searches.size() >= UsedSearches)
        searches.removeLast();
    searches.prepend(text);
    return searches;
}

void StoreSearches(CartPicking& picking, const QStringList& searches) {
    std::size_t slot = 0;
    for (const QString& search : searches)
        if (!search.trimmed().isEmpty() && slot < picking.LastSearches.size())
            picking.LastSearches[slot++] = search;
    for (; slot < UsedSearches; ++slot)
        picking.LastSearches[slot].clear();
}

QStringList StoredSearches(const CartPicking& picking) {
    QStringList searches;
    for (std::size_t slot = 0; slot < UsedSearches; ++slot)
        if (!picking.LastSearches[slot].trimmed().isEmpty())
            searches += picking.LastSearches[slot];
    return searches;
}

void CartCaller::JumpToCart(qint32 cart) {
    QObject* const caller = caller_;
    drop();
    if (caller && caller->metaObject()->indexOfMethod("JumpToCart(double)") >= 0)
        QMetaObject::invokeMethod(caller, "JumpToCart", Qt::DirectConnection, Q_ARG(double, cart));
}

} // namespace tolvex
