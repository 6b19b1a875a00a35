// Searches a cart list of any content for any text: it finds what a plain and slow search finds, and does no
// more than that. The input: flags, the lines to search, the first cart, the length of the text, the text,
// the list.
#include "Require.h"
#include "audio/PlainSearch.h"
#include "platform/paths/Paths.h"

#include <QFile>
#include <QTemporaryDir>

#include <cstdint>

using namespace tolvex;

namespace {

enum : unsigned { Backwards = 1, WholeWall = 2, LimitLines = 4, Notes = 8, Length = 16, OwnFiles = 32 };

constexpr int mostCarts = 250;
constexpr qsizetype headSize = 4;

CartQuery queryOf(const QByteArray& head, const QByteArray& text) {
    const auto byte = [&head](qsizetype at) { return static_cast<unsigned char>(head[at]); };
    CartQuery query;
    query.text = platform::FromCodePage(text);
    query.backwards = byte(0) & Backwards;
    query.wholeWall = byte(0) & WholeWall;
    query.limitLines = byte(0) & LimitLines;
    query.notes = byte(0) & Notes;
    if (byte(0) & Length)
        query.length = LengthRule{180, 3};
    query.lines = {(byte(1) & 1) != 0, (byte(1) & 2) != 0, (byte(1) & 4) != 0};
    query.start = byte(2);
    return query;
}

// Without emptying the file first: otherwise some file systems write it to the disk on closing.
void put(const QString& path, const QByteArray& bytes) {
    QFile file(platform::HostPath(path));
    require(file.open(QIODevice::ReadWrite) && file.write(bytes) == bytes.size() &&
            file.resize(bytes.size()));
}

QList<qint32> found(CartStore& store, const CartQuery& query, qint32 carts) {
    CartSearch search(store, query, carts);
    while (search.runFor(std::chrono::seconds(1))) {
    }
    QList<qint32> numbers;
    for (const FoundCart& cart : search.takeFound())
        numbers += cart.number;
    return numbers;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    if (bytes.size() < headSize)
        return 0;
    const qsizetype length = static_cast<unsigned char>(bytes[3]) % 64;
    const QByteArray text = bytes.mid(headSize, length);
    const QByteArray list = bytes.mid(headSize + length);

    static const QTemporaryDir folder;
    static const bool ready = platform::SetMachineFolder(folder.path());
    require(ready);
    Settings settings;
    CartStore store(settings);
    const auto carts =
        static_cast<qint32>(std::min<qsizetype>(list.size() / CartListRecordLength + 2, mostCarts));
    settings.NoCarts = carts;
    settings.CartPartTable[1].Location = QStringLiteral("C:");
    settings.UseIndividualCartListFiles = bytes[0] & OwnFiles ? -1 : 0;
    put(QStringLiteral("C:\\Carts1.lst"), list);
    put(QStringLiteral("C:\\TLV00001.TXT"), list.left(2 * SearchedNotesBytes));
    put(QStringLiteral("C:\\TLV00002.LST"), list.mid(77));

    const CartQuery query = queryOf(bytes, text);
    require(found(store, query, carts) == tests::plainSearch(store, query, carts));
    return 0;
}
