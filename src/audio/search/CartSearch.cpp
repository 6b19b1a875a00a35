#include "audio/search/CartSearch.h"

#include "audio/CartNotes.h"
#include "audio/CartStore.h"
#include "platform/SteadyTime.h"
#include "platform/files/Files.h"

#include <algorithm>

namespace tolvex {

namespace {

using std::chrono::milliseconds;

constexpr qint32 shownEach = 100;

// Carts that are read in one go: enough to spread the cost of a read, few enough to be read anew at each
// slice.
constexpr qint32 mostAhead = 100;

// How long a part that could not be opened is not tried again: at least this, and many times what the try
// took, or a server that is gone would hold up the search at every cart.
constexpr milliseconds shortestRest{250};
constexpr int restFactor = 20;

QString withoutBlanksAround(const QString& text) {
    qsizetype begin = 0;
    qsizetype end = text.size();
    while (begin < end && text[begin] == u' ')
        ++begin;
    while (end > begin && text[end - 1] == u' ')
        --end;
    return text.mid(begin, end - begin);
}

// Carts that a search looks at from `first` on.
qint32 cartsFrom(qint32 first, bool backwards, qint32 carts) {
    if (first < 1 || first > carts)
        return 0;
    return backwards ? first : carts - first + 1;
}

// Whether it was the cart's part that could not be opened, by the status of a read.
bool isClosed(qint16 status) {
    return status == -1 || status == platform::BadFileNumber;
}

} // namespace

bool LengthRule::holdsFor(float length) const {
    const auto lowest = static_cast<float>(target - give - 1);
    const auto highest = static_cast<float>(target + give + 1);
    return length > lowest && length < highest;
}

CartSearch::CartSearch(CartStore& wall, const CartQuery& query, qint32 carts)
    : wall_(wall)
    , query_(query)
    , pattern_(withoutBlanksAround(query.text))
    , filter_(pattern_.lowerCase())
    , findsAll_(withoutBlanksAround(query.text) == u"*")
    , carts_(carts)
    , cart_(std::max(query.start, 1))
    , shown_(cart_)
    , ahead_(mostAhead)
    , notes_(SearchedNotesBytes) {
    if (query.wholeWall)
        cart_ = query.backwards ? carts : 1;
    total_ = cartsFrom(cart_, query.backwards, carts);
}

bool CartSearch::ended() const {
    return stopped_ || cart_ < 1 || cart_ > carts_;
}

qint32 CartSearch::done() const {
    return total_ - cartsFrom(cart_, query_.backwards, carts_);
}

bool CartSearch::step() {
    countAhead_ = 0;
    return advance();
}

bool CartSearch::runFor(milliseconds time) {
    const milliseconds end = platform::SteadyTime() + time;
    countAhead_ = 0;
    while (advance())
        if (platform::SteadyTime() >= end)
            return !ended();
    return false;
}

bool CartSearch::advance() {
    if (ended())
        return false;
    if (query_.notes && !ListCartNotes(wall_, cart_))
        return true;
    if (cart_ % shownEach == 0)
        shown_ = cart_;
    if (const CartListRecord& bytes = current(); matches(bytes)) {
        found_.append({cart_, CartOfBytes(wall_, bytes)});
        ++foundCount_;
    }
    cart_ += query_.backwards ? -1 : 1;
    return true;
}

QList<FoundCart> CartSearch::takeFound() {
    return std::exchange(found_, {});
}

bool CartSearch::matches(const CartListRecord& bytes) {
    if (CartListTotalLength(bytes) == EmptyCartLength ||
        (query_.length && !query_.length->holdsFor(CartListLength(bytes))))
        return false;
    return findsAll_ || (filter_.mayHold(bytes) && linesMatch(bytes)) || (query_.notes && notesMatch());
}

bool CartSearch::linesMatch(const CartListRecord& bytes) const {
    if (!query_.limitLines) {
        CartDescriptionRoom room;
        return pattern_.isIn(CartListDescription(bytes, room));
    }
    for (int line = 1; line <= 3; ++line) {
        const CartLineBytes text = CartListLine(bytes, line);
        if (query_.lines[static_cast<std::size_t>(line - 1)] && pattern_.isIn({text.data(), text.size()}))
            return true;
    }
    return false;
}

bool CartSearch::notesMatch() {
    const qint64 length = ReadCartNotes(wall_, cart_, notes_.data(), SearchedNotesBytes);
    return length > 0 && pattern_.isIn({notes_.data(), static_cast<std::size_t>(length)});
}

const CartListRecord& CartSearch::current() {
    if (cart_ < firstAhead_ || cart_ >= firstAhead_ + countAhead_) {
        const qint32 first = query_.backwards ? cart_ - mostAhead + 1 : cart_;
        if (ReadCartsAhead(wall_, first, mostAhead, ahead_.data())) {
            firstAhead_ = first;
            countAhead_ = mostAhead;
        } else {
            firstAhead_ = cart_;
            countAhead_ = 1;
            readOne(ahead_.front());
        }
    }
    return ahead_[static_cast<std::size_t>(cart_ - firstAhead_)];
}

void CartSearch::readOne(CartListRecord& bytes) {
    const int part = PartOfCart(cart_);
    const milliseconds begun = platform::SteadyTime();
    if (part == closedPart_ && begun < closedUntil_) {
        bytes = wall_.emptyListRecord;
        return;
    }
    closedPart_ = isClosed(ReadCartBytes(wall_, cart_, bytes)) ? part : 0;
    if (closedPart_ == 0)
        return;
    const milliseconds now = platform::SteadyTime();
    closedUntil_ = now + std::max(shortestRest, restFactor * (now - begun));
}

} // namespace tolvex
