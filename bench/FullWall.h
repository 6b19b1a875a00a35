// The audiowall at its largest: 99,999 carts in 11 lists of 30 MB together.
#pragma once

#include "audio/CartStore.h"
#include "platform/files/Files.h"

#include <benchmark/benchmark.h>

#include <chrono>

namespace tolvex::bench {

inline QByteArray cartBytes(int cart) {
    CartRecord record = MakeEmptyCartRecord(0xC0C0C0, 0);
    record.Line1 = QStringLiteral("Title number %1").arg(cart);
    record.Line2 = QStringLiteral("An artist whose name goes on beyond the head of a line");
    record.Length = record.TotalLength = record.PlayEnd = record.PlayLength = float(cart % 600 + 1);
    return QByteArray(EncodeCartRecord(record).data(), CartListRecordLength);
}

// Makes the lists in the folders of their parts, and updates the settings.
inline void makeFullWall(CartStore& carts, QString (*folderOf)(int part)) {
    carts.settings.NoCarts = HighestCart;
    QByteArray list;
    for (int cart = 1; cart <= HighestCart; ++cart) {
        list += cartBytes(cart);
        const int part = PartOfCart(cart);
        if (cart != HighestCart && PartOfCart(cart + 1) == part)
            continue;
        carts.settings.CartPartTable[part].Location = folderOf(part);
        platform::MakeFolder(folderOf(part));
        platform::ReplaceWholeFile(CartListPath(carts, part), list);
        list.clear();
    }
}

template<typename Work>
double secondsOf(Work work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

} // namespace tolvex::bench
