#include "databases/odbc/ServerSession.h"

#include "platform/Prompts.h"

#include <QHash>

#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>

namespace tolvex {

namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr milliseconds Pause{30};           // interval for checking the user's Stop
constexpr milliseconds Disconnecting{3000}; // maximum wait

// Servers that were given up, and when.
QHash<QString, Clock::time_point>& givenUp() {
    static QHash<QString, Clock::time_point> servers;
    return servers;
}

struct Task {
    std::function<void()> work;
    std::exception_ptr failure;
    bool done = false;
};

} // namespace

ServerPatience& serverPatience() {
    static ServerPatience patience;
    return patience;
}

// What the session and its thread share. It lives as long as either.
struct ServerSession::Talk {
    std::mutex mutex;
    std::condition_variable asked;
    std::condition_variable answered;
    std::deque<std::shared_ptr<Task>> tasks;
    bool over = false;  // the session is gone
    bool ended = false; // the thread is gone
    bool abandoned = false;
    std::unique_ptr<OdbcConnection> connection; // of the thread

    // The body of the thread.
    void work() {
        std::unique_lock lock(mutex);
        for (;;) {
            asked.wait(lock, [this] { return over || !tasks.empty(); });
            if (over)
                break;
            const std::shared_ptr<Task> task = tasks.front();
            tasks.pop_front();
            lock.unlock();
            std::exception_ptr failure;
            try {
                task->work();
            } catch (...) {
                failure = std::current_exception();
            }
            task->work = nullptr; // what it owned is destroyed here, where it was used
            lock.lock();
            task->failure = failure;
            task->done = true;
            answered.notify_all();
        }
        lock.unlock();
        connection.reset();
        lock.lock();
        ended = true;
        answered.notify_all();
    }
};

ServerSession::ServerSession(const QString& attributes, const QString& server, const QString& place)
    : server_(server)
    , place_(place)
    , talk_(std::make_shared<Talk>()) {
    if (const auto when = givenUp().constFind(place_);
        when != givenUp().cend() && Clock::now() - *when < serverPatience().rest)
        throw NotConnected(server_, {{QStringLiteral("HYT01"), 0,
                                      QStringLiteral("The server did not answer a moment ago.")}});
    try {
        std::thread([talk = talk_] { talk->work(); }).detach();
    } catch (const std::system_error&) {
        throw NotConnected(server_, {});
    }
    const auto connect = [talk = talk_, attributes, server] {
        talk->connection = std::make_unique<OdbcConnection>(attributes, server);
    };
    try {
        wait(connect, serverPatience().connecting);
    } catch (...) {
        end();
        throw;
    }
    connected_ = true;
    readOnly_ = talk_->connection->readOnly();
}

ServerSession::~ServerSession() {
    end();
}

void ServerSession::end() {
    std::unique_lock lock(talk_->mutex);
    talk_->over = true;
    talk_->asked.notify_all();
    if (!talk_->abandoned)
        talk_->answered.wait_for(lock, Disconnecting, [this] { return talk_->ended; });
}

void ServerSession::call(const Call& job) {
    const auto work = [talk = talk_, job] {
        OdbcConnection& connection = *talk->connection;
        connection.reconnect();
        try {
            job(connection, false);
            return;
        } catch (const DatabaseError&) {
            if (!connection.reconnect())
                throw;
        }
        job(connection, true);
    };
    wait(work, serverPatience().answering);
}

void ServerSession::wait(const std::function<void()>& work, milliseconds limit) {
    const auto task = std::make_shared<Task>();
    task->work = work;
    const auto begun = Clock::now();
    std::unique_lock lock(talk_->mutex);
    if (talk_->abandoned)
        throw FromServer({{QStringLiteral("08S01"), 0, QStringLiteral("The server was given up.")}});
    talk_->tasks.push_back(task);
    talk_->asked.notify_one();
    const auto isDone = [&](milliseconds most) {
        return talk_->answered.wait_for(lock, most, [&] { return task->done; });
    };
    if (!isDone(std::min(serverPatience().unseen, limit))) {
        const auto progress = platform::prompts().beginProgress(QStringLiteral("Database server"), true);
        while (!isDone(Pause)) {
            lock.unlock();
            const auto waited = std::chrono::duration_cast<milliseconds>(Clock::now() - begun);
            platform::prompts().processEvents();
            const bool goesOn = progress->step(
                0, 0, QStringLiteral("Waiting for %1, %2 seconds").arg(server_).arg(waited.count() / 1000));
            lock.lock();
            if (task->done)
                break;
            if (!goesOn || waited > limit) {
                talk_->abandoned = talk_->over = true;
                talk_->asked.notify_all();
                lock.unlock();
                giveUp(goesOn ? QStringLiteral("The server did not answer within %1 seconds.")
                                    .arg(static_cast<double>(limit.count()) / 1000)
                              : QStringLiteral("The wait for the server was stopped."));
            }
        }
    }
    if (task->failure)
        std::rethrow_exception(task->failure);
}

void ServerSession::giveUp(const QString& why) {
    givenUp().insert(place_, Clock::now());
    if (!connected_)
        throw NotConnected(server_, {{QStringLiteral("HYT01"), 0, why}});
    throw FromServer({{QStringLiteral("HYT00"), 0, why}});
}

} // namespace tolvex
