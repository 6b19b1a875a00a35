// A serial device of a test's own: a pair of pseudo terminals. The program opens one as a port; the test is
// the device at the other end.
//
//     PseudoTerminal device;
//     machine.link("com1", device.path());
//     ...
//     device.send("x");
//     EXPECT_TRUE(waitFor([&] { return device.received == "hello"; }));
#pragma once

#include <QByteArray>
#include <QSocketNotifier>
#include <QString>
#include <QTimer>

#include <functional>
#include <memory>
#include <stdexcept>
#include <utility>

#include <cstdlib>
#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

namespace tolvex::tests {

class PseudoTerminal {
public:
    // Another program would see that this one has the port open: such a test does not hold it.
    enum class Hold { Open, Free };
    explicit PseudoTerminal(Hold hold = Hold::Open)
        : master_(::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {
        if (master_ < 0 || ::grantpt(master_) != 0 || ::unlockpt(master_) != 0)
            throw std::runtime_error("No pseudo terminal");
        path_ = QString::fromLocal8Bit(::ptsname(master_));
        // Held open, or the device would see the end of the line whenever the program closes its port.
        slave_ = ::open(path_.toLocal8Bit().constData(), O_RDWR | O_NOCTTY | O_CLOEXEC);
        struct termios raw {};
        ::tcgetattr(slave_, &raw);
        ::cfmakeraw(&raw);
        ::tcsetattr(slave_, TCSANOW, &raw);
        if (hold == Hold::Free) {
            ::close(std::exchange(slave_, -1));
            QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { read(); });
            timer_.start(2);
            return;
        }
        notifier_ = std::make_unique<QSocketNotifier>(master_, QSocketNotifier::Read);
        QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] { read(); });
    }
    ~PseudoTerminal() { unplug(); }
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;

    QString path() const { return path_; }

    QByteArray received;                              // by the device, so far
    std::function<void(const QByteArray&)> onReceive; // called with each piece as well

    void send(const QByteArray& bytes) {
        for (qsizetype done = 0; done < bytes.size();) {
            const ssize_t count = ::write(master_, bytes.constData() + done, size_t(bytes.size() - done));
            if (count > 0)
                done += count;
        }
    }
    // The device stops accepting bytes, or accepts them again.
    void setDeaf(bool deaf) { notifier_->setEnabled(!deaf); }
    // Unplugs the device.
    void unplug() {
        notifier_.reset();
        timer_.stop();
        if (slave_ >= 0)
            ::close(slave_);
        if (master_ >= 0)
            ::close(master_);
        slave_ = master_ = -1;
    }
    // The line settings made by the program.
    struct termios line() const {
        struct termios settings {};
        ::tcgetattr(slave_, &settings);
        return settings;
    }

private:
    void read() {
        char bytes[4096];
        const ssize_t count = ::read(master_, bytes, sizeof bytes);
        if (count <= 0)
            return;
        received.append(bytes, count);
        if (onReceive)
            onReceive(QByteArray(bytes, count));
    }

    int master_;
    int slave_ = -1;
    QString path_;
    std::unique_ptr<QSocketNotifier> notifier_;
    QTimer timer_;
};

} // namespace tolvex::tests
