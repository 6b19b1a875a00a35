#include "audio/CartLists.h"

#include "audio/CartStore.h"
#include "platform/files/Files.h"

#include <algorithm>

namespace tolvex {

namespace {

using platform::RecordFile;

// How often a repair begins again when the list changes under it.
constexpr int mostTries = 3;

// The first name for torn bytes that is not taken.
QString freeName(const QString& list) {
    const QString name = list + QStringLiteral(".torn");
    QString free = name;
    for (int number = 2; platform::FileExists(free); ++number)
        free = name + QString::number(number);
    return free;
}

// Puts the torn bytes into a file of their own. FileError.
int keepRest(const RecordListLength& list, QString* keptIn) {
    const std::optional<QByteArray> bytes = platform::ReadWholeFile(list.path);
    if (!bytes)
        return platform::DeviceIoError;
    const QString name = freeName(list.path);
    const int error = platform::ReplaceWholeFile(name, bytes->right(list.rest()));
    if (error == platform::NoError)
        *keptIn = name;
    return error;
}

// Adds `count` empty records after the whole ones, if the list still is as long as it was. FileError.
int addEmpty(const CartStore& carts, const RecordListLength& list, qint64 count) {
    int error = platform::NoError;
    const auto file = RecordFile::open(list.path, CartListRecordLength, false, &error);
    if (!file)
        return error;
    if (platform::FileSize(list.path) != list.size)
        return platform::PermissionDenied;
    return file->append(QByteArray(carts.emptyListRecord.data(), CartListRecordLength), count);
}

} // namespace

bool CartListFacts::isMissing() const {
    return error == platform::FileNotFound || error == platform::PathNotFound;
}

qint32 CartListFacts::lastCart() const {
    return static_cast<qint32>(std::min<qint64>(length.firstNumber - 1 + length.records(), HighestCart));
}

QString CartListFacts::state() const {
    return isMissing()                  ? QStringLiteral("missing")
           : error != platform::NoError ? QStringLiteral("unreadable")
           : isTorn()                   ? QStringLiteral("torn")
           : isShort()                  ? QStringLiteral("short")
                                        : QStringLiteral("sound");
}

QString CartListFacts::inWords() const {
    if (isMissing())
        return QStringLiteral("There is no list %1 for part %2 of the AudioWall.").arg(length.path).arg(part);
    if (error != platform::NoError)
        return QStringLiteral("%1 could not be read (error %2).").arg(length.path).arg(error);
    return RecordListFault(length, QStringLiteral("cart"), QStringLiteral("carts"));
}

CartListFacts LookAtCartList(const CartStore& carts, int part) {
    CartListFacts list;
    list.part = part;
    list.length = {CartListPath(carts, part), 0, CartListRecordLength, CartListRecords(carts, part),
                   (part - 1) * CartsInPart + 1};
    if (RecordFile::open(list.length.path, CartListRecordLength, false, &list.error))
        list.length.size = std::max<qint64>(platform::FileSize(list.length.path), 0);
    return list;
}

CartListRepair RepairCartList(const CartStore& carts, int part) {
    CartListRepair repair;
    for (int attempt = 0; attempt < mostTries; ++attempt) {
        const CartListFacts list = LookAtCartList(carts, part);
        repair.error = list.error;
        if (list.error != platform::NoError || list.isSound())
            return repair;
        if (list.isTorn())
            repair.error = keepRest(list.length, &repair.keptIn);
        const qint64 missing =
            std::max<qint64>(list.length.wanted - list.length.records(), list.isTorn() ? 1 : 0);
        if (repair.error == platform::NoError)
            repair.error = addEmpty(carts, list.length, missing);
        if (repair.error == platform::NoError)
            repair.added = missing;
        if (repair.error != platform::PermissionDenied)
            return repair;
    }
    return repair;
}

} // namespace tolvex
