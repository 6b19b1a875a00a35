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

CartPart& partNumber(const CartStore& carts, int part) {
    return carts.settings.CartPartTable[part];
}

bool isCart(const CartStore& carts, qint32 cart) {
    return cart >= 1 && cart <= carts.settings.NoCarts;
}

qint64 recordOfCart(qint32 cart, int part) {
    return qint64{cart} - qint64{part - 1} * CartsInPart;
}

// What a loader switched off stays off, though lists are opened, and opened again, long after it ran.
void initLoadedCartState(CartStore& carts) {
    const bool maintainsList = carts.settings.MaintainLegacyCartList != 0;
    const bool playsInstantly = carts.settings.PlayCartsInstantly != 0;
    InitCartState(carts);
    if (!maintainsList)
        carts.settings.MaintainLegacyCartList = 0;
    if (!playsInstantly)
        carts.settings.PlayCartsInstantly = 0;
}

void setStateOfLocation(const CartStore& carts, const QString& location, CartPartState state) {
    for (CartPart& part : carts.settings.CartPartTable)
        if (part.Location == location)
            part.State = state;
}

void checkFolder(const CartStore& carts, const CartPart& part, bool silent) {
    const bool there = DirectoryExists(part.Location);
    if (!there && !silent)
        ProblemReport(QStringLiteral("connecting part(s) of the Audio Wall because the directory: \n\n\"%1\""
                                     "\n\n could not be found")
                          .arg(part.Location.trimmed()));
    setStateOfLocation(carts, part.Location, there ? Available : Unavailable);
}

void openFile(CartStore& carts, int part) {
    carts.lists[part] = RecordFile::open(partNumber(carts, part).ListPath, CartListRecordLength, true);
    partNumber(carts, part).IsOpen = carts.lists[part] ? -1 : 0;
}

void closeFile(CartStore& carts, int part) {
    carts.lists[part].reset();
    partNumber(carts, part).IsOpen = 0;
}

// Opens a part's list and brings it to its length. Whatever fails leaves the list as far as it got.
void openList(CartStore& carts, int part) {
    CartPart& entry = partNumber(carts, part);
    closeFile(carts, part);
    if (entry.FileNumber < 1)
        entry.FileNumber = FreeFileNumber(carts);
    openFile(carts, part);
    entry.State = Available;
    const auto& list = carts.lists[part];
    if (!list)
        return;
    const qint64 missing = CartListRecords(carts, part) - list->count();
    if (missing <= 0)
        return;
    const CartListRecord& blank = carts.emptyListRecord;
    list->append(QByteArray(blank.data(), CartListRecordLength), missing);
    closeFile(carts, part);
    openFile(carts, part);
}

Answer askToCreate(const CartStore& carts, int part) {
    return platform::prompts().ask(
        {.text =
             QStringLiteral("Part %1 of the AudioWall has not been found.\nDo you wish to create it in :\n")
                 .arg(part) +
             partNumber(carts, part).ListPath,
         .icon = platform::Icon::Question,
         .buttons = platform::Buttons::YesNoCancel});
}

// Makes the parts ready to be looked for; gives how many of them have no location.
int prepareParts(const CartStore& carts, int first, int last) {
    int unset = 0;
    for (int part = first; part <= last; ++part) {
        CartPart& entry = partNumber(carts, part);
        entry.State = NotChecked;
        if (entry.Location.trimmed().isEmpty()) {
            ++unset;
            continue;
        }
        entry.ListPath = CartListPath(carts, part);
        entry.ListName = entry.ListPath.mid(entry.Location.size() + 1);
    }
    return unset;
}

// Ready to be read: its folder is there, and its list is open.
bool isReadable(const CartStore& carts, int part) {
    return partNumber(carts, part).State == Available && carts.lists[part];
}

// The file that holds one cart alone. FileNotFound when there is none or it is empty.
int readOwnFile(const CartStore& carts, qint32 cart, CartListRecord& bytes) {
    const QString path = CartFileStem(carts, cart) + QStringLiteral(".LST");
    if (FileLength(path) <= 0)
        return platform::FileNotFound;
    int error = platform::NoError;
    const auto file = RecordFile::open(path, CartListRecordLength, false, &error);
    return file ? file->read(1, bytes.data()) : error;
}

int readFromList(CartStore& carts, qint32 cart, int part, CartListRecord& bytes) {
    const auto& list = carts.lists[part];
    const int error = list ? list->read(recordOfCart(cart, part), bytes.data()) : platform::BadFileNumber;
    if (error != platform::NoError)
        partNumber(carts, part).State = Unavailable;
    return error;
}

int readBytes(CartStore& carts, qint32 cart, int part, CartListRecord& bytes) {
    if (carts.settings.UseIndividualCartListFiles) {
        const int error = readOwnFile(carts, cart, bytes);
        if (error != platform::FileNotFound)
            return error;
    }
    return readFromList(carts, cart, part, bytes);
}

} // namespace

CartStore::CartStore(Settings& workstation)
    : settings(workstation)
    , emptyRecord(MakeEmptyCartRecord(0, 0))
    , emptyListRecord(EncodeCartRecord(emptyRecord)) {}

CartStore::~CartStore() = default;

void ColourEmptyCartListRecord(CartStore& carts) {
    CartRecord coloured = carts.emptyRecord;
    coloured.BackColor = carts.settings.EmptyCartBackColor;
    coloured.ForeColor = carts.settings.EmptyCartForeColor;
    carts.emptyListRecord = EncodeCartRecord(coloured);
}

void InitCartState(CartStore& carts) {
    Settings& values = carts.settings;
    for (CartPlayer& player : values.CartPlayerTable)
        player.State = playerIsEmpty;
    auto& words = carts.words;
    words[3] = QStringLiteral("Seeking");
    words[11] = QStringLiteral("Playing");
    words[12] = QStringLiteral("Paused");
    words[13] = QStringLiteral("Cued");
    words[14] = QStringLiteral("Selected");
    words[playerIsEmpty] = QStringLiteral("Empty");
    carts.emptyRecord = MakeEmptyCartRecord(values.EmptyCartBackColor, values.EmptyCartForeColor);
    ColourEmptyCartListRecord(carts);
    values.MaintainLegacyCartList = -1;
    values.PlayCartsInstantly = -1;
    if (values.LowestCartNumber == 0) {
        values.LowestCartNumber = 1;
        values.HighestCartNumber = HighestCart;
    }
}

void CloseCartParts(CartStore& carts) {
    for (auto& list : carts.lists)
        list.reset();
}

int PartOfCart(qint32 cart) {
    if (cart < 0 || cart > lastCartOfEvenParts)
        return lastPart;
    return cart == 0 ? 0 : (cart - 1) / CartsInPart + 1;
}

qint64 CartListRecords(const CartStore& carts, int part) {
    const qint32 last = std::min(carts.settings.NoCarts, HighestCart);
    return part == PartOfCart(carts.settings.NoCarts) ? recordOfCart(last, part) : CartsInPart;
}

QString CartListPath(const CartStore& carts, int part) {
    const CartPart& entry = partNumber(carts, part);
    if (entry.Location.trimmed().isEmpty())
        return {};
    return entry.Location + u'\\' +
           (entry.ListName.isEmpty() ? QStringLiteral("Carts%1.lst").arg(part) : entry.ListName);
}

QString CartFileName(qint32 cart) {
    return QStringLiteral("TLV") + QString::number(cart).rightJustified(5, u'0');
}

QString CartFileStem(const CartStore& carts, qint32 cart) {
    return isCart(carts, cart) ? partNumber(carts, PartOfCart(cart)).Location + u'\\' + CartFileName(cart)
                               : QString();
}

qint16 FreeFileNumber(const CartStore& carts) {
    qint16 number = 1;
    const auto taken = [&number](const CartPart& part) { return part.FileNumber == number; };
    const auto& parts = carts.settings.CartPartTable;
    while (number == carts.hotlist.number || std::any_of(parts.begin(), parts.end(), taken))
        ++number;
    return number;
}

int OpenCartParts(CartStore& carts, int part, bool silent) {
    initLoadedCartState(carts);
    if (part < 0 || part > lastPart)
        return -1;
    const int first = std::max(part, 1);
    const int last = part != 0 ? part : PartOfCart(carts.settings.NoCarts);
    if (const int unset = prepareParts(carts, first, last); unset > 0) {
        if (!silent)
            ShowExclamation(QStringLiteral("%1 locations of the AudioWall have not been set : Please check "
                                           "your configuration.")
                                .arg(unset));
        return -1;
    }
    bool anyAvailable = false;
    for (int number = first; number <= last; ++number) {
        const CartPart& entry = partNumber(carts, number);
        if (entry.State == NotChecked)
            checkFolder(carts, entry, silent);
        if (entry.State != Available)
            continue;
        anyAvailable = true;
        if (!silent && !carts.settings.AutoConfigInProgress && FileLength(entry.ListPath) < 0) {
            const Answer answer = askToCreate(carts, number);
            if (answer == Answer::Cancel)
                return -1;
            if (answer == Answer::No)
                continue;
        }
        openList(carts, number);
    }
    return anyAvailable ? 0 : -1;
}

CartRecord ReadCart(CartStore& carts, qint32 cart, qint16* status) {
    CartListRecord bytes;
    const qint16 result = ReadCartBytes(carts, cart, bytes);
    if (status)
        *status = result;
    return result == platform::NoError ? CartOfBytes(carts, bytes) : carts.emptyRecord;
}

qint16 ReadCartBytes(CartStore& carts, qint32 cart, CartListRecord& bytes) {
    int result = noPart;
    if (isCart(carts, cart)) {
        const int part = PartOfCart(cart);
        if (isReadable(carts, part) || OpenCartParts(carts, part, true) == 0)
            result = readBytes(carts, cart, part, bytes);
        else
            partNumber(carts, part).State = Unavailable;
    }
    if (result != platform::NoError)
        bytes = carts.emptyListRecord;
    return static_cast<qint16>(result);
}

bool ReadCartsAhead(CartStore& carts, qint32 first, qint32 count, CartListRecord* bytes) {
    const qint32 last = first + count - 1;
    if (carts.settings.UseIndividualCartListFiles || !isCart(carts, first) || !isCart(carts, last))
        return false;
    const int part = PartOfCart(first);
    return PartOfCart(last) == part && isReadable(carts, part) &&
           carts.lists[part]->readAhead(recordOfCart(first, part), count, bytes->data());
}

CartRecord CartOfBytes(const CartStore& carts, const CartListRecord& bytes) {
    if (CartListTotalLength(bytes) == EmptyCartLength)
        return carts.emptyRecord;
    CartRecord record = DecodeCartRecord(bytes);
    if (!(record.PlayEnd > 0 && record.PlayLength > 0)) {
        record.PlayStart = 0;
        record.PlayEnd = record.TotalLength;
        record.PlayLength = record.PlayEnd - record.PlayStart;
    }
    return record;
}

} // namespace tolvex
