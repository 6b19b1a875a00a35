// The search over the audiowall: looks at one cart after the other and keeps those that match.
//
// It is made to run inside an event loop. runFor works for a few milliseconds and returns; a window calls it
// in a loop, lets its events run after each call, and shows what takeFound gives in one go:
//
//     while (search.runFor(milliseconds(5))) {
//         show(search.takeFound());
//         prompts().processEvents(); // a handler may call search.stop()
//     }
//
// For each cart that costs a look at a coarse clock, some nanoseconds, and Stop counts when the slice is
// over. What may take long by itself, listing a large folder of notes, is done in pieces as short as a cart.
#pragma once

#include "audio/CartRecord.h"
#include "audio/search/LineFilter.h"
#include "core/text/CaseBlindPattern.h"

#include <QList>

#include <array>
#include <chrono>
#include <optional>
#include <vector>

namespace tolvex {

struct CartStore;

// Carts of about a length, in seconds.
struct LengthRule {
    double target = 0;
    double give = 0;

    // Whether a length lies less than a second more than `give` away from the target. Both bounds are rounded
    // to single precision before they are compared.
    bool holdsFor(float length) const;
};

// What is looked for.
struct CartQuery {
    QString text;            // blanks around it do not count; "*" finds every cart, an empty text none
    bool backwards = false;  // to lower numbers
    bool wholeWall = false;  // begin at cart 1, backwards at the last cart, instead of at `start`
    qint32 start = 1;        // the cart to begin at; below 1: cart 1
    bool limitLines = false; // look at these lines, each by itself, instead of the joined description
    std::array<bool, 3> lines{};
    bool notes = false; // look at the first 10,000 bytes of a cart's notes, too
    std::optional<LengthRule> length = std::nullopt;
};

inline constexpr int SearchedNotesBytes = 10000;

struct FoundCart {
    qint32 number = 0;
    CartRecord record;
};

class CartSearch {
public:
    // `carts`: number of carts of the audiowall. A search that begins outside 1 to that looks at none.
    CartSearch(CartStore& wall, const CartQuery& query, qint32 carts);

    // Looks at one cart, or goes on with listing the folder of its notes. False once the search has ended.
    bool step();

    // Steps until the search ends or the time is over, to some four milliseconds. True while there is more to
    // do.
    bool runFor(std::chrono::milliseconds time);

    // Ends the search. Call it between two steps.
    void stop() { stopped_ = true; }
    bool stopped() const { return stopped_; }
    bool ended() const;

    // The number to show as the cart being looked at: the one that the search was asked to begin at, then
    // each that divides by 100.
    qint32 shownCart() const { return shown_; }
    // Carts looked at so far, and in a search that is not stopped.
    qint32 done() const;
    qint32 total() const { return total_; }

    qint32 foundCount() const { return foundCount_; }
    // The matches since the last call, in the order in which they were found.
    QList<FoundCart> takeFound();

private:
    bool advance();
    const CartListRecord& current();
    void readOne(CartListRecord& bytes);
    bool matches(const CartListRecord& bytes);
    bool linesMatch(const CartListRecord& bytes) const;
    bool notesMatch();

    CartStore& wall_;
    CartQuery query_;
    CaseBlindPattern pattern_;
    LineFilter filter_;
    bool findsAll_;
    qint32 carts_;
    qint32 cart_;
    qint32 shown_;
    qint32 total_;
    bool stopped_ = false;
    std::vector<CartListRecord> ahead_; // read in one go; only carts of the present slice
    qint32 firstAhead_ = 0;
    qint32 countAhead_ = 0;
    int closedPart_ = 0; // a part that could not be opened, and until when it is not tried again
    std::chrono::milliseconds closedUntil_{0};
    std::vector<char> notes_;
    QList<FoundCart> found_;
    qint32 foundCount_ = 0;
};

} // namespace tolvex
