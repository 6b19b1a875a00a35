// The audiowall: which part, folder and files a cart number means, opening and creating the cart lists, and
// reading one cart. The table of the parts and everything that a settings file holds of them lies in
// Settings; the open list files and the empty record live here.
//
// Cart numbers run from 1 to NoCarts of the settings, whatever that holds: 0 and less leave no cart at all. A
// list is never grown beyond what 99,999 carts need.
#pragma once

#include "audio/CartRecord.h"
#include "audio/Hotlist.h"
#include "core/settings/Settings.h"

#include <array>
#include <memory>

namespace tolvex {

inline constexpr int HighestCart = 99999;
inline constexpr int CartsInPart = 1000;

inline constexpr int PlayerStateCount = 21;

struct KnownNotes; // of CartNotes

// The audiowall of one workstation while the program runs. Nothing is open at first.
struct CartStore {
    explicit CartStore(Settings& workstation);
    ~CartStore();
    CartStore(const CartStore&) = delete;
    CartStore& operator=(const CartStore&) = delete;

    Settings& settings; // the table of the parts is there; it outlives the store
    // What a cart player is doing, by the number it has for that; empty where it has no word.
    std::array<QString, PlayerStateCount> words;
    // The record of an empty cart, and its file form, which new and grown lists are filled with.
    CartRecord emptyRecord;
    CartListRecord emptyListRecord;
    NumberedTable<std::unique_ptr<platform::RecordFile>, CartPartCount> lists; // null: not open
    Hotlist hotlist; // its channel is one of those that the lists have
    std::shared_ptr<KnownNotes> notes;
};

// Gives the file form of the empty record the empty cart colours that the settings now hold.
void ColourEmptyCartListRecord(CartStore& carts);

// Sets every player to Empty (15), fills the words, builds the empty record in the colours of the settings,
// and sets MaintainLegacyCartList and PlayCartsInstantly, which a loader then replaces. Where no range of
// carts is set yet it becomes 1 to 99999.
void InitCartState(CartStore& carts);

// Closes every list file. The settings keep what they tell of the parts.
void CloseCartParts(CartStore& carts);

// 1 to 10, a thousand carts each; 11 above 10000 and below 0; 0 for cart 0.
int PartOfCart(qint32 cart);

// Records that the list of a part should hold. Below 1 when NoCarts leaves it none.
qint64 CartListRecords(const CartStore& carts, int part);

// Location, "\" and the name of a part's list; empty while the part has no location.
QString CartListPath(const CartStore& carts, int part);

// "TLV" and the number with at least five digits: how a cart's files are called.
QString CartFileName(qint32 cart);

// Location of the cart's part, "\TLV" and the number with at least five digits; empty outside 1 to NoCarts.
QString CartFileStem(const CartStore& carts, qint32 cart);

// Opens the list of one part, or with 0 of parts 1 to that of cart NoCarts, making and growing list files as
// needed, and sets the State of each part by whether its folder is there. Not silent, it asks before it makes
// a list (Cancel ends the call; nothing is asked during automatic configuration) and reports folders that are
// missing. An unset location among them ends the call before any file is touched. Failures to open or grow a
// list are not reported: the part's IsOpen tells. Starts with InitCartState, except that the two settings it
// sets stay off where they are off. Gives 0, or -1 when no part asked for is available.
int OpenCartParts(CartStore& carts, int part, bool silent);

// The lowest channel number that neither a part's list nor the hotlist has.
qint16 FreeFileNumber(const CartStore& carts);

// A cart's record as the files have it now; the empty record for an empty cart, outside 1 to NoCarts and on
// any error. *status: 0, the FileError, or -1 outside the range and when its part cannot be opened. Opens the
// part's list if need be. With UseIndividualCartListFiles the cart's own file comes first. Reports nothing.
// No system call while the list is open and no file of its own is looked for.
CartRecord ReadCart(CartStore& carts, qint32 cart, qint16* status = nullptr);

// The same in its file form, as a search wants it: the file form of the empty record where ReadCart gives the
// empty record on an error; an empty cart's other fields are as they lie in the file. Gives the status.
qint16 ReadCartBytes(CartStore& carts, qint32 cart, CartListRecord& bytes);

// The carts from `first` on, `count` of them, in one go, each as ReadCartBytes gives it. False when they have
// to be read one by one; `bytes` is then worthless. Cost: some 15 nanoseconds a cart.
bool ReadCartsAhead(CartStore& carts, qint32 first, qint32 count, CartListRecord* bytes);

// What ReadCart makes of a cart's file form: the empty record for an empty cart, and play times that make
// sense.
CartRecord CartOfBytes(const CartStore& carts, const CartListRecord& bytes);

} // namespace tolvex
