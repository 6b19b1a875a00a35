#include "audio/CartStore.h"

#include "audio/Hotlist.h"
#include "core/report/Folders.h"
#include "core/report/ProblemReport.h"
#include "platform/Prompts.h"
#include "platform/files/Files.h"

#include <algorithm>
#include <memory>

namespace tolvex {

namespace {

using platform::Answer;
using platform::RecordFile;

constexpr int lastPart = CartPartCount;
constexpr qint32 lastCartOfEvenParts = 10000;
constexpr qint32 playerIsEmpty = 15;

// Status of a cart that has no part, or whose part cannot be opened.
constexpr int noPart = -1;

struct CartStore {
    std::array<QString, PlayerStateCount> words;
    CartRecord emptyRecord = MakeEmptyCartRecord(0, 0);
    CartListRecord emptyListRecord = EncodeCartRecord(emptyRecord);
    NumberedTable<std::unique_ptr<RecordFile>, CartPartCount> lists;
};

CartStore& store() {
    static CartStore instance;
    return instance;
}

CartPart& partNumber(int part) {
    return settings().CartPartTable[part];
}

bool isCart(qint32 cart) {
    return cart >= 1 && cart <= settings().NoCarts;
}

qint64 recordOfCart(qint32 cart, int part) {
    return qint64{cart} - qint64{part - 1} * CartsInPart;
}

// What a loader switched off stays off, though lists are opened, and opened again, long after it ran.
void initLoadedCartState() {
    const bool maintainsList = settings().MaintainLegacyCartList != 0;
    const bool playsInstantly = settings().PlayCartsInstantly != 0;
    InitCartState();
    if (!maintainsList)
        settings().MaintainLegacyCartList = 0;
    if (!playsInstantly)
        settings().PlayCartsInstantly = 0;
}

void setStateOfLocation(const QString& location, CartPartState state) {
    for (CartPart& part : settings().CartPartTable)
        if (part.Location == location)
            part.State = state;
}

void checkFolder(const CartPart& part, bool silent) {
    const bool there = DirectoryExists(part.Location);
    if (!there && !silent)
        ProblemReport(QStringLiteral("connecting part(s) of the Audio Wall because the directory: \n\n\"%1\""
                                     "\n\n could not be found")
                          .arg(part.Location.trimmed()));
    setStateOfLocation(part.Location, there ? Available : Unavailable);
}

void openFile(int part) {
    store().lists[part] = RecordFile::open(partNumber(part).ListPath, CartListRecordLength, true);
    partNumber(part).IsOpen = store().lists[part] ? -1 : 0;
}

void closeFile(int part) {
    store().lists[part].reset();
    partNumber(part).IsOpen = 0;
}

// Opens a part's list and brings it to its length. Whatever fails leaves the list as far as it got.
void openList(int part) {
    CartPart& entry = partNumber(part);
    closeFile(part);
    if (entry.FileNumber < 1)
        entry.FileNumber = FreeFileNumber();
    openFile(part);
    entry.State = Available;
    const auto& list = store().lists[part];
    if (!list)
        return;
    const qint64 missing = CartListRecords(part) - list->count();
    if (missing <= 0)
        return;
    const CartListRecord& blank = EmptyCartListRecord();
    list->append(QByteArray(blank.data(), CartListRecordLength), missing);
    closeFile(part);
    openFile(part);
}

Answer askToCreate(int part) {
    return platform::prompts().ask(
        {.text =
             QStringLiteral("Part %1 of the AudioWall has not been found.\nDo you wish to create it in :\n")
                 .arg(part) +
             partNumber(part).ListPath,
         .icon = platform::Icon::Question,
         .buttons = platform::Buttons::YesNoCancel});
}

// Makes the parts ready to be looked for; gives how many of them have no location.
int prepareParts(int first, int last) {
    int unset = 0;
    for (int part = first; part <= last; ++part) {
        CartPart& entry = partNumber(part);
        entry.State = NotChecked;
        if (entry.Location.trimmed().isEmpty()) {
            ++unset;
            continue;
        }
        entry.ListPath = CartListPath(part);
        entry.ListName = entry.ListPath.mid(entry.Location.size() + 1);
    }
    return unset;
}

// Ready to be read: its folder is there, and its list is open.
bool isReadable(int part) {
    return partNumber(part).State == Available && store().lists[part];
}

// The file that holds one cart alone. FileNotFound when there is none or it is empty.
int readOwnFile(qint32 cart, CartListRecord& bytes) {
    const QString path = CartFileStem(cart) + QStringLiteral(".LST");
    if (FileLength(path) <= 0)
        return platform::FileNotFound;
    int error = platform::NoError;
    const auto file = RecordFile::open(path, CartListRecordLength, false, &error);
    return file ? file->read(1, bytes.data()) : error;
}

int readFromList(qint32 cart, int part, CartListRecord& bytes) {
    const auto& list = store().lists[part];
    const int error = list ? list->read(recordOfCart(cart, part), bytes.data()) : platform::BadFileNumber;
    if (error != platform::NoError)
        partNumber(part).State = Unavailable;
    return error;
}

int readBytes(qint32 cart, int part, CartListRecord& bytes) {
    if (settings().UseIndividualCartListFiles) {
        const int error = readOwnFile(cart, bytes);
        if (error != platform::FileNotFound)
            return error;
    }
    return readFromList(cart, part, bytes);
}

} // namespace

const std::array<QString, PlayerStateCount>& PlayerStateWords() {
    return store().words;
}

const CartRecord& EmptyCartRecord() {
    return store().emptyRecord;
}

const CartListRecord& EmptyCartListRecord() {
    return store().emptyListRecord;
}

void ColourEmptyCartListRecord() {
    CartRecord coloured = store().emptyRecord;
    coloured.BackColor = settings().EmptyCartBackColor;
    coloured.ForeColor = settings().EmptyCartForeColor;
    store().emptyListRecord = EncodeCartRecord(coloured);
}

void InitCartState() {
    Settings& values = settings();
    for (CartPlayer& player : values.CartPlayerTable)
        player.State = playerIsEmpty;
    auto& words = store().words;
    words[3] = QStringLiteral("Seeking");
    words[11] = QStringLiteral("Playing");
    words[12] = QStringLiteral("Paused");
    words[13] = QStringLiteral("Cued");
    words[14] = QStringLiteral("Selected");
    words[playerIsEmpty] = QStringLiteral("Empty");
    store().emptyRecord = MakeEmptyCartRecord(values.EmptyCartBackColor, values.EmptyCartForeColor);
    ColourEmptyCartListRecord();
    values.MaintainLegacyCartList = -1;
    values.PlayCartsInstantly = -1;
    if (values.LowestCartNumber == 0) {
        values.LowestCartNumber = 1;
        values.HighestCartNumber = HighestCart;
    }
}

void ResetCartStore() {
    store() = {};
}

int PartOfCart(qint32 cart) {
    if (cart < 0 || cart > lastCartOfEvenParts)
        return lastPart;
    return cart == 0 ? 0 : (cart - 1) / CartsInPart + 1;
}

qint64 CartListRecords(int part) {
    const qint32 carts = std::min(settings().NoCarts, HighestCart);
    return part == PartOfCart(settings().NoCarts) ? recordOfCart(carts, part) : CartsInPart;
}

QString CartListPath(int part) {
    const CartPart& entry = partNumber(part);
    if (entry.Location.trimmed().isEmpty())
        return {};
    return entry.Location + u'\\' +
           (entry.ListName.isEmpty() ? QStringLiteral("Carts%1.lst").arg(part) : entry.ListName);
}

QString CartFileName(qint32 cart) {
    return QStringLiteral("TLV") + QString::number(cart).rightJustified(5, u'0');
}

QString CartFileStem(qint32 cart) {
    return isCart(cart) ? partNumber(PartOfCart(cart)).Location + u'\\' + CartFileName(cart) : QString();
}

qint16 FreeFileNumber() {
    qint16 number = 1;
    const auto taken = [&number](const CartPart& part) { return part.FileNumber == number; };
    const auto& parts = settings().CartPartTable;
    while (number == HotlistFileNumber() || std::any_of(parts.begin(), parts.end(), taken))
        ++number;
    return number;
}

int OpenCartParts(int part, bool silent) {
    initLoadedCartState();
    if (part < 0 || part > lastPart)
        return -1;
    const int first = std::max(part, 1);
    const int last = part != 0 ? part : PartOfCart(settings().NoCarts);
    if (const int unset = prepareParts(first, last); unset > 0) {
        if (!silent)
            ShowExclamation(QStringLiteral("%1 locations of the AudioWall have not been set : Please check "
                                           "your configuration.")
                                .arg(unset));
        return -1;
    }
    bool anyAvailable = false;
    for (int number = first; number <= last; ++number) {
        const CartPart& entry = partNumber(number);
        if (entry.State == NotChecked)
            checkFolder(entry, silent);
        if (entry.State != Available)
            continue;
        anyAvailable = true;
        if (!silent && !settings().AutoConfigInProgress && FileLength(entry.ListPath) < 0) {
            const Answer answer = askToCreate(number);
            if (answer == Answer::Cancel)
                return -1;
            if (answer == Answer::No)
                continue;
        }
        openList(number);
    }
    return anyAvailable ? 0 : -1;
}

CartRecord ReadCart(qint32 cart, qint16* status) {
    CartListRecord bytes;
    const qint16 result = ReadCartBytes(cart, bytes);
    if (status)
        *status = result;
    return result == platform::NoError ? CartOfBytes(bytes) : EmptyCartRecord();
}

qint16 ReadCartBytes(qint32 cart, CartListRecord& bytes) {
    int result = noPart;
    if (isCart(cart)) {
        const int part = PartOfCart(cart);
        if (isReadable(part) || OpenCartParts(part, true) == 0)
            result = readBytes(cart, part, bytes);
        else
            partNumber(part).State = Unavailable;
    }
    if (result != platform::NoError)
        bytes = EmptyCartListRecord();
    return static_cast<qint16>(result);
}

bool ReadCartsAhead(qint32 first, qint32 count, CartListRecord* bytes) {
    const qint32 last = first + count - 1;
    if (settings().UseIndividualCartListFiles || !isCart(first) || !isCart(last))
        return false;
    const int part = PartOfCart(first);
    return PartOfCart(last) == part && isReadable(part) &&
           store().lists[part]->readAhead(recordOfCart(first, part), count, bytes->data());
}

CartRecord CartOfBytes(const CartListRecord& bytes) {
    if (CartListTotalLength(bytes) == EmptyCartLength)
        return EmptyCartRecord();
    CartRecord record = DecodeCartRecord(bytes);
    if (!(record.PlayEnd > 0 && record.PlayLength > 0)) {
        record.PlayStart = 0;
        record.PlayEnd = record.TotalLength;
        record.PlayLength = record.PlayEnd - record.PlayStart;
    }
    return record;
}

} // namespace tolvex
