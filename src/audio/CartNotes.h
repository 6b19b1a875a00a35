// The notes of a cart: a text beside its audio, in rich text or plain.
#pragma once

#include <QString>

namespace tolvex {

// The cart's ".RTF", else its ".TXT"; when neither is there the ".RTF" with *exists false. Empty outside 1 to
// NoCarts. Cheap enough to ask for every cart of a full wall (half a microsecond): a folder is listed once
// and again only when it changed. A file that is new is seen within a tenth of a second, in a folder that
// takes long to list within four times that; one that is gone at once.
QString CartNotesPath(qint32 cart, bool* exists = nullptr);

// Forgets the folders seen (tests, and a change of the machine folder).
void ForgetCartNotes();

} // namespace tolvex
