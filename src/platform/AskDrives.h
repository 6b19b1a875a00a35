// Questions to drives that may not answer. The server behind a network drive can be gone; the system then
// holds whoever asks the drive for minutes, or for ever. Here every drive is asked in a thread of its own,
// the caller's events run meanwhile, and a drive that stays silent is given up.
#pragma once

#include "platform/Prompts.h"

#include <QHash>
#include <QStringList>

#include <chrono>
#include <functional>

namespace tolvex::platform {

// How long a drive may take for one answer. A disk that has to start turning needs a few seconds.
inline constexpr std::chrono::milliseconds DrivePatience{6000};

struct DriveAnswers {
    QHash<QString, qint64> values; // by path, as it was given; a path that got no answer is missing
    QString unreachable;           // letters, in upper case and in order, of the drives that were given up
    bool stopped = false;          // by the user
};

// Asks about each path ("M:\TLVX_SYS.INI"): those of one drive in their order, all drives at the same time.
// Returns when the last drive has answered or was given up, at most 50 milliseconds after the user pressed
// Stop. `question` runs in the drives' threads: it may use the routines of Paths.h and Files.h that only
// look, and must own what it uses, for a thread that hangs in the system is left behind and lives on until
// the system lets go of it or the program ends. Cost: one thread a drive.
using DriveQuestion = std::function<qint64(const QString& path)>;
DriveAnswers AskDrives(const QStringList& paths, const DriveQuestion& question, Progress& progress,
                       std::chrono::milliseconds patience = DrivePatience);

} // namespace tolvex::platform
