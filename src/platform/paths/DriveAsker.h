// Questions to drives that may not answer. If the server of a network drive is gone, the system blocks
// whoever asks the drive for minutes, or for ever. Here each drive is asked in a thread of its own while the
// caller's events run, and a drive that stays silent is given up.
#pragma once

#include "platform/Prompts.h"

#include <QHash>
#include <QStringList>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace tolvex::platform {

// How long a drive may take for one answer. A disk that has to spin up needs a few seconds.
inline constexpr std::chrono::milliseconds DrivePatience{6000};

// Runs in the thread of the path's drive. It may use the reading routines of Paths.h and Files.h, and must
// own what it uses: a thread that is blocked in the system is left behind, and lives until the system
// releases it or the program ends.
using DriveQuestion = std::function<qint64(const QString& path)>;

class DriveAsker {
public:
    explicit DriveAsker(std::chrono::milliseconds patience = DrivePatience);
    // Waits for no thread.
    ~DriveAsker();
    DriveAsker(const DriveAsker&) = delete;
    DriveAsker& operator=(const DriveAsker&) = delete;

    // Asks about each path ("M:\TLVX_SYS.INI"): those of one drive in order, all drives at the same time.
    // Returns the answers by path, as it was given; a path whose drive was given up has none. Nothing if the
    // user pressed Stop, which takes effect within 20 milliseconds; events run meanwhile. Cost: one thread
    // per drive, started by its first question and kept; then about 35 microseconds a question.
    using Answers = QHash<QString, qint64>;
    std::optional<Answers> ask(const QStringList& paths, const DriveQuestion& question, Progress& progress);

    // The letters, in upper case, of the drives that were given up: they are not asked again.
    const QString& unreachable() const { return unreachable_; }

private:
    struct Talk;
    bool startThread(QChar drive);

    const std::chrono::milliseconds patience_;
    std::shared_ptr<Talk> talk_; // shared with the threads
    QString unreachable_;
    int calls_ = 0;
};

} // namespace tolvex::platform
