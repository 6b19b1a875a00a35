#include "platform/process/Service.h"

#include "platform/posix/Descriptor.h"

#include <QSocketNotifier>

#include <array>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace tolvex::platform {

namespace {

constexpr std::array endSignals = {SIGTERM, SIGINT, SIGHUP};

// The pipe in which the handler reports a signal.
volatile int wakeUp = -1;

void handle(int) {
    const int saved = errno;
    const char byte = 1;
    if (::write(wakeUp, &byte, 1) < 0) {
        // If it is full, the loop will wake up all the same.
    }
    errno = saved;
}

} // namespace

class TerminationRequest::Signals {
public:
    explicit Signals(std::function<void()> asked) {
        int ends[2] = {-1, -1};
        if (::pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0)
            return;
        reads_ = Descriptor(ends[0]);
        writes_ = Descriptor(ends[1]);
        wakeUp = ends[1];
        notifier_ = std::make_unique<QSocketNotifier>(reads_.get(), QSocketNotifier::Read);
        QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                         [this, work = std::move(asked)] {
                             char bytes[16];
                             while (::read(reads_.get(), bytes, sizeof bytes) > 0) {
                             }
                             work();
                         });
        struct sigaction action {};
        action.sa_handler = handle;
        action.sa_flags = SA_RESTART;
        for (std::size_t i = 0; i < endSignals.size(); ++i)
            ::sigaction(endSignals.at(i), &action, &before_.at(i));
    }
    ~Signals() {
        if (wakeUp < 0)
            return;
        for (std::size_t i = 0; i < endSignals.size(); ++i)
            ::sigaction(endSignals.at(i), &before_.at(i), nullptr);
        wakeUp = -1;
    }
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;

private:
    Descriptor reads_;
    Descriptor writes_;
    std::unique_ptr<QSocketNotifier> notifier_;
    std::array<struct sigaction, endSignals.size()> before_{};
};

TerminationRequest::TerminationRequest(std::function<void()> asked)
    : signals_(std::make_unique<Signals>(std::move(asked))) {}

TerminationRequest::~TerminationRequest() = default;

bool TellServiceManager(const QByteArray& lines) {
    const QByteArray name = qgetenv("NOTIFY_SOCKET");
    struct sockaddr_un address {};
    if (name.size() < 2 || (name[0] != '/' && name[0] != '@') ||
        name.size() > qsizetype{sizeof address.sun_path})
        return false;
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, name.constData(), static_cast<std::size_t>(name.size()));
    if (name[0] == '@') // an abstract name, in no folder
        address.sun_path[0] = '\0';
    const Descriptor socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    if (!socket.open())
        return false;
    const auto length =
        static_cast<socklen_t>(offsetof(struct sockaddr_un, sun_path) + std::size_t(name.size()));
    const ssize_t sent = ::sendto(socket.get(), lines.constData(), static_cast<std::size_t>(lines.size()),
                                  MSG_NOSIGNAL, reinterpret_cast<const struct sockaddr*>(&address), length);
    return sent == lines.size();
}

} // namespace tolvex::platform
