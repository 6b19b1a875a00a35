// Searches the drives of this machine for an existing system of the suite, and asks the user about it.
// Nothing here changes anything.
#pragma once

#include "core/settings/Settings.h"
#include "platform/paths/Paths.h"

#include <QHash>
#include <QStringList>

#include <functional>
#include <optional>

namespace tolvex {

using CartPaths = NumberedTable<QString, CartPartCount>;

// What a search found. Paths on network drives have a lower-case drive letter, others an upper-case one.
struct ExistingSetup {
    bool found = false;          // anything at all
    bool foundOnNetwork = false; // anything on a network drive
    bool stopped = false;        // by the user: the result may be incomplete
    QString dataPath;            // empty: none
    CartPaths cartPaths;         // empty entries: no list of that part
};

// The letters of the drives of a type, in upper case, from A on.
QString DriveLettersOfType(platform::DriveType type);

// The questions that a search asks the machine; an answer of nothing ends it. These versions wait for drives
// that do not answer; SearchDrives.h has others.
struct SetupSearch {
    std::function<std::optional<QString>(platform::DriveType)> lettersOfType = DriveLettersOfType;
    // Lengths in bytes of all files of a pass, by path. Absent from the result: missing, or no answer.
    using Lengths = QHash<QString, qint64>;
    std::function<std::optional<Lengths>(const QStringList& paths)> fileLengths = LengthsOfFiles;

    static Lengths LengthsOfFiles(const QStringList& paths);
};

// Searches network drives, then (unless `networkOnly`, or a data path was already found) fixed drives and
// CD-ROMs. The last of several finds counts. Cost: 69 file lengths per drive.
ExistingSetup FindExistingSetup(bool networkOnly, const SetupSearch& search = {});

// Whether there is anything to ask about: anything found, and at least one cart path.
bool IsWorthAsking(const ExistingSetup& setup);

// The paths with their gaps filled: an empty entry takes the one before it, entries before the first take the
// last one that is set.
CartPaths FilledCartPaths(const CartPaths& paths);

// "Tolvex data has been found in: ...": the question whether to use it. `indent` precedes each cart path;
// repeated paths are left out.
QString AcceptanceQuestion(const QString& dataPath, const CartPaths& filledPaths, const QString& indent);

} // namespace tolvex
