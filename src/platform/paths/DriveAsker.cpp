#include "platform/paths/DriveAsker.h"

#include "platform/paths/PathState.h"

#include <QElapsedTimer>

#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>
#include <system_error>
#include <thread>

namespace tolvex::platform {

namespace {

// The interval for checking the user's Stop.
constexpr std::chrono::milliseconds Pause{20};

struct Question {
    int call; // number of the call of ask
    QString path;
    DriveQuestion ask;
};

struct DriveAnswer {
    int call;
    QString path;
    qint64 value = 0;
};

QChar driveOf(const QString& path) {
    return path[0].toUpper();
}

// A drive with unanswered questions.
struct Waiting {
    qsizetype open = 0;
    QElapsedTimer silence; // since its last answer
};

} // namespace

// What the asker and the drives' threads share. It lives as long as any of them.
struct DriveAsker::Talk {
    std::mutex mutex;
    std::condition_variable asked;
    std::condition_variable told;
    std::map<QChar, std::deque<Question>> questions; // of each drive that has a thread
    QList<DriveAnswer> answers;                      // not collected yet
    bool over = false;                               // the asker is gone

    // The body of a thread.
    void answer(QChar drive) {
        std::unique_lock lock(mutex);
        for (;;) {
            asked.wait(lock, [&] { return over || !questions[drive].empty(); });
            if (over)
                return;
            const Question question = questions[drive].front();
            questions[drive].pop_front();
            lock.unlock();
            const qint64 value = question.ask(question.path);
            lock.lock();
            answers.append({question.call, question.path, value});
            told.notify_one();
        }
    }
    void put(QChar drive, const Question& question) {
        const std::scoped_lock lock(mutex);
        questions[drive].push_back(question);
        asked.notify_all();
    }
    QList<DriveAnswer> collect() {
        std::unique_lock lock(mutex);
        told.wait_for(lock, Pause, [this] { return !answers.isEmpty(); });
        return std::exchange(answers, {});
    }
    // Withdraws questions that no thread has started.
    void forget() {
        const std::scoped_lock lock(mutex);
        for (auto& [drive, left] : questions)
            left.clear();
    }
};

DriveAsker::DriveAsker(std::chrono::milliseconds patience)
    : patience_(patience)
    , talk_(std::make_shared<Talk>()) {}

DriveAsker::~DriveAsker() {
    const std::scoped_lock lock(talk_->mutex);
    talk_->over = true;
    talk_->asked.notify_all();
}

// False if the system has no thread left.
bool DriveAsker::startThread(QChar drive) {
    {
        const std::scoped_lock lock(talk_->mutex);
        if (talk_->questions.count(drive) > 0)
            return true;
    }
    PathState own = pathState();
    own.folders.clear();
    try {
        std::thread([talk = talk_, drive, own = std::move(own)]() mutable {
            const OwnPathState inForce(own);
            talk->answer(drive);
        }).detach();
    } catch (const std::system_error&) {
        return false;
    }
    return true;
}

std::optional<DriveAsker::Answers> DriveAsker::ask(const QStringList& paths, const DriveQuestion& question,
                                                   Progress& progress) {
    ++calls_;
    Answers answers;
    std::map<QChar, Waiting> drives;
    for (const QString& path : paths) {
        if (path.isEmpty() || unreachable_.contains(driveOf(path)))
            continue;
        if (!startThread(driveOf(path))) {
            unreachable_ += driveOf(path);
            continue;
        }
        talk_->put(driveOf(path), {calls_, path, question});
        ++drives[driveOf(path)].open;
    }
    for (auto& [letter, drive] : drives)
        drive.silence.start();

    while (!drives.empty()) {
        for (const DriveAnswer& answer : talk_->collect()) {
            const auto drive = drives.find(driveOf(answer.path));
            if (answer.call != calls_ || drive == drives.end())
                continue; // nobody waits for it any more
            answers.insert(answer.path, answer.value);
            drive->second.silence.restart();
            if (--drive->second.open == 0)
                drives.erase(drive);
        }
        qsizetype open = 0;
        QStringList names;
        for (auto drive = drives.begin(); drive != drives.end();) {
            if (drive->second.silence.hasExpired(patience_.count())) {
                unreachable_ += drive->first;
                drive = drives.erase(drive);
                continue;
            }
            open += drive->second.open;
            names += drive->first + QStringLiteral(":");
            ++drive;
        }
        prompts().processEvents();
        if (!progress.step(paths.size() - open, paths.size(),
                           QStringLiteral("Looking at ") + names.join(QStringLiteral(", ")))) {
            talk_->forget();
            return std::nullopt;
        }
    }
    talk_->forget();
    return answers;
}

} // namespace tolvex::platform
