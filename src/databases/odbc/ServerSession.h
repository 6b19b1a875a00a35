// A connection to a server that may never answer. Every call is made in a thread of the session's own; the
// caller waits with its events running, the user sees how long it takes and may stop it. A call that is
// stopped, or takes longer than it may, is given up: the thread is left behind with the connection, and lets
// go of both when the driver returns.
#pragma once

#include "databases/odbc/OdbcConnection.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <type_traits>

namespace tolvex {

// How long a server may take. The driver has the limits of OdbcConnection.h, which it does not always keep.
struct ServerPatience {
    std::chrono::milliseconds connecting{15000};
    std::chrono::milliseconds answering{35000};
    std::chrono::milliseconds unseen{300}; // before the user is shown that it waits
    std::chrono::milliseconds rest{3000};  // after it was given up, before it is asked again
};
ServerPatience& serverPatience();

class ServerSession {
public:
    // Connects: `attributes` as for OdbcConnection. `server`: its name, for people. `place`: what tells it
    // from others; one that was given up a moment ago is not asked again yet, so that work on many of its
    // databases ends at once. Throws ConnectionFailed.
    ServerSession(const QString& attributes, const QString& server, const QString& place);
    // Disconnects, in the thread.
    ~ServerSession();
    ServerSession(const ServerSession&) = delete;
    ServerSession& operator=(const ServerSession&) = delete;

    // Nothing on the server can be changed by this connection.
    bool readOnly() const { return readOnly_; }

    // Runs `job` with the connection, and gives what it gives or throws what it throws. It is called in the
    // thread and must own all it uses, since the caller may go before it ends. When the connection proves
    // lost outside of a transaction, it is made anew and the job is run once more, with `again` true: what it
    // changes may have been changed already. Throws ServerCallFailed when the server is given up.
    template<typename Job>
    auto run(Job job) {
        using Result = std::invoke_result_t<Job, OdbcConnection&, bool>;
        if constexpr (std::is_void_v<Result>) {
            call([job = std::move(job)](OdbcConnection& connection, bool again) { job(connection, again); });
        } else {
            const auto result = std::make_shared<std::optional<Result>>();
            call([job = std::move(job), result](OdbcConnection& connection, bool again) {
                result->emplace(job(connection, again));
            });
            return std::move(**result);
        }
    }

private:
    using Call = std::function<void(OdbcConnection&, bool again)>;
    struct Talk;
    void call(const Call& job);
    void wait(const std::function<void()>& work, std::chrono::milliseconds limit);
    [[noreturn]] void giveUp(const QString& why);
    void end();

    QString server_;
    QString place_;
    bool connected_ = false;
    bool readOnly_ = false;
    std::shared_ptr<Talk> talk_; // shared with the thread
};

} // namespace tolvex
