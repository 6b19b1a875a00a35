// What a service needs from the system: the request to end, and the service manager that started it.
#pragma once

#include <QByteArray>

#include <functional>
#include <memory>

namespace tolvex::platform {

// While it lives, a request to end this program (a terminate, interrupt or hang-up signal) calls `asked` from
// the event loop instead of ending it. One at a time.
class TerminationRequest {
public:
    explicit TerminationRequest(std::function<void()> asked);
    ~TerminationRequest();
    TerminationRequest(const TerminationRequest&) = delete;
    TerminationRequest& operator=(const TerminationRequest&) = delete;

private:
    class Signals;
    std::unique_ptr<Signals> signals_;
};

// Sends lines of its protocol ("READY=1", "STATUS=...") to the service manager that started this program.
// Waits until they are sent. True on success; false also without a manager.
bool TellServiceManager(const QByteArray& lines);

} // namespace tolvex::platform
