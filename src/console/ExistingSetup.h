// Looking for a system of the suite that stands on the drives of this machine already, and what is asked of
// the user about it. Nothing here changes anything.
#pragma once

#include "core/Folders.h"
#include "core/Settings.h"
#include "platform/Paths.h"

#include <functional>

namespace tolvex {

using CartPaths = NumberedTable<QString, CartPartCount>;

// What a search found. Paths of network drives have a lower-case drive letter, others an upper-case one.
struct ExistingSetup {
    bool found = false;          // anything at all
    bool foundOnNetwork = false; // anything on a network drive
    bool stopped = false;        // the user stopped the search: what it holds may be half of what there is
    QString dataPath;            // empty: none
    CartPaths cartPaths;         // empty entries: no list of that part
};

// The letters of the drives of a type, upper-case, from A on.
QString DriveLettersOfType(platform::DriveType type);

// What a search asks of the machine. Callers put their own in place where a drive may not answer, to show how
// far it is, and in tests.
struct SetupSearch {
    std::function<QString(platform::DriveType)> lettersOfType = DriveLettersOfType;
    // Bytes, -1 where there is no such file or its drive does not answer.
    std::function<qint64(const QString& path)> fileLength = FileLength;
    // Called before each drive is searched ("M:") and at the end: drives done of those that the search may
    // come to. False stops it.
    std::function<bool(int done, int total, const QString& drive)> goesOn = [](int, int, const QString&) {
        return true;
    };
};

// Searches network drives, then (unless `networkOnly`, and unless a data path was found by then) fixed drives
// and CD-ROMs. Of several finds the last one counts. Cost: 69 file lengths a drive.
ExistingSetup FindExistingSetup(bool networkOnly, const SetupSearch& search = {});

// Whether there is something to ask about: anything found, and at least one cart path.
bool IsWorthAsking(const ExistingSetup& setup);

// The paths with their gaps filled: an empty entry takes the one before it, entries before the first take the
// last one that is set.
CartPaths FilledCartPaths(const CartPaths& paths);

// "Tolvex data has been found in: ...": the question whether to use it. `indent` stands before each cart
// path; paths that are part of the list already are left out.
QString AcceptanceQuestion(const QString& dataPath, const CartPaths& filledPaths, const QString& indent);

} // namespace tolvex
