// Looking for a system of the suite that stands on the drives of this machine already, and what is asked of
// the user about it. Nothing here changes anything.
#pragma once

#include "core/settings/Settings.h"
#include "platform/paths/Paths.h"

#include <QHash>
#include <QStringList>

#include <functional>
#include <optional>

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

// What a search asks of the machine; nothing as an answer ends it. As they stand they wait for drives that
// do not answer; SearchDrives.h has others.
struct SetupSearch {
    std::function<std::optional<QString>(platform::DriveType)> lettersOfType = DriveLettersOfType;
    // Lengths in bytes of all files of a pass, by path. Missing: no such file, or no answer.
    using Lengths = QHash<QString, qint64>;
    std::function<std::optional<Lengths>(const QStringList& paths)> fileLengths = LengthsOfFiles;

    static Lengths LengthsOfFiles(const QStringList& paths);
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
