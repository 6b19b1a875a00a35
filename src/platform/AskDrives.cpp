#include "platform/AskDrives.h"

#include "platform/PathState.h"

#include <QElapsedTimer>

#include <algorithm>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <system_error>
#include <thread>

namespace tolvex::platform {

namespace {

// Between two looks at the user's Stop.
constexpr std::chrono::milliseconds Pause{20};

struct DriveAnswer {
    QChar drive;
    QString path; // empty: the drive has answered everything
    qint64 value = 0;
};

// What the caller and the drives' threads share. It lives as long as any of them.
struct Talk {
    std::mutex mutex;
    std::condition_variable told;
    QList<DriveAnswer> answers; // not collected yet
    bool enough = false;        // the caller has gone

    // False when nobody listens any more.
    bool tell(const DriveAnswer& answer) {
        const std::scoped_lock lock(mutex);
        answers.append(answer);
        told.notify_one();
        return !enough;
    }
    QList<DriveAnswer> collect() {
        std::unique_lock lock(mutex);
        told.wait_for(lock, Pause, [this] { return !answers.isEmpty(); });
        return std::exchange(answers, {});
    }
    void leave() {
        const std::scoped_lock lock(mutex);
        enough = true;
    }
};

// What is not known yet of a drive.
struct Asked {
    qsizetype open = 0;
    QElapsedTimer silence; // since its last answer
};

// False when the system has no thread left.
bool startThread(const std::shared_ptr<Talk>& talk, QChar drive, const QStringList& paths,
                 const DriveQuestion& question) {
    PathState own = pathState();
    own.folders.clear();
    try {
        std::thread([talk, drive, paths, question, own = std::move(own)]() mutable {
            const OwnPathState inForce(own);
            for (const QString& path : paths)
                if (!talk->tell({drive, path, question(path)}))
                    return;
            talk->tell({drive, {}});
        }).detach();
    } catch (const std::system_error&) {
        return false;
    }
    return true;
}

} // namespace

DriveAnswers AskDrives(const QStringList& paths, const DriveQuestion& question, Progress& progress,
                       std::chrono::milliseconds patience) {
    std::map<QChar, QStringList> questions;
    for (const QString& path : paths)
        if (!path.isEmpty())
            questions[path[0].toUpper()].append(path);

    const auto talk = std::make_shared<Talk>();
    DriveAnswers answers;
    std::map<QChar, Asked> drives;
    for (const auto& [drive, asked] : questions) {
        if (startThread(talk, drive, asked, question)) {
            drives[drive].open = asked.size();
            drives[drive].silence.start();
        } else {
            answers.unreachable += drive;
        }
    }

    while (!drives.empty() && !answers.stopped) {
        for (const DriveAnswer& answer : talk->collect()) {
            const auto drive = drives.find(answer.drive);
            if (drive == drives.end())
                continue; // given up meanwhile
            if (answer.path.isEmpty()) {
                drives.erase(drive);
                continue;
            }
            answers.values.insert(answer.path, answer.value);
            --drive->second.open;
            drive->second.silence.restart();
        }
        qsizetype open = 0;
        QStringList names;
        for (auto drive = drives.begin(); drive != drives.end();) {
            if (drive->second.silence.hasExpired(patience.count())) {
                answers.unreachable += drive->first;
                drive = drives.erase(drive);
                continue;
            }
            open += drive->second.open;
            names += drive->first + QStringLiteral(":");
            ++drive;
        }
        answers.stopped = !progress.step(paths.size() - open, paths.size(),
                                         QStringLiteral("Looking at ") + names.join(QStringLiteral(", ")));
        prompts().processEvents();
    }
    talk->leave();
    std::sort(answers.unreachable.begin(), answers.unreachable.end());
    return answers;
}

} // namespace tolvex::platform
