// The notes of a cart: a text beside its audio, in rich text or plain.
#pragma once

#include <QString>

namespace tolvex {

struct CartStore;

// The cart's ".RTF", else its ".TXT"; when neither is there the ".RTF" with *exists false. Empty outside 1 to
// NoCarts. Cheap enough to ask for every cart of a full wall (half a microsecond): a folder is listed once
// and again only when it changed. A file that is new is seen within a tenth of a second, in a folder that
// takes long to list within four times that; one that is gone at once.
QString CartNotesPath(CartStore& carts, qint32 cart, bool* exists = nullptr);

// The first bytes of a cart's notes, at most `most` of them: how many there are, or -1 when it has none or
// they cannot be read. Quicker than reading what CartNotesPath names.
qint64 ReadCartNotes(CartStore& carts, qint32 cart, char* bytes, qint64 most);

// Goes on with listing the folder of a cart's notes, for a caller that must not be held up by a large one:
// looks at a few hundred names. True when the calls above need not list for that cart any more.
bool ListCartNotes(CartStore& carts, qint32 cart);

} // namespace tolvex
