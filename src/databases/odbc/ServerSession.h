// A connection to a server that may never answer. Every call runs in the session's own thread; the caller
// waits with its events running, the user sees how long it takes and may stop it. A call that is stopped or
// takes too long is given up: the thread is left behind with the connection, and releases both when the
// driver returns.
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
    std::chrono::milliseconds unseen{300}; // before the user sees that it waits
    std::chrono::milliseconds rest{3000};  // between giving it up and asking it again
};
ServerPatience& serverPatience();

class ServerSession {
public:
    // Connects: `attributes` as for OdbcConnection. `server`: its name, for people. `place`: identifies it; a
    // server that was given up a moment ago is not asked again yet, so that work on many of its databases
    // ends at once. Throws ConnectionFailed.
    ServerSession(const QString& attributes, const QString& server, const QString& place);
    // Disconnects, in the thread.
    ~ServerSession();
    ServerSession(const ServerSession&) = delete;
    ServerSession& operator=(const ServerSession&) = delete;

    // This connection can change nothing on the server.
    bool readOnly() const { return readOnly_; }

    // Runs `job` with the connection, and returns or throws what it does. It runs in the thread and must own
    // everything it uses, since the caller may go before it ends. If the connection proves lost outside a
    // transaction, it is reopened and the job runs once more, with `again` true: its changes may have been
    // made already. Throws ServerCallFailed if the server is given up.
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
