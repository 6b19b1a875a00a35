#include "platform/devices/SerialPort.h"

#include "platform/devices/SerialDriver.h"
#include "platform/devices/SerialPorts.h"
#include "platform/host/HostFiles.h"
#include "platform/process/Holders.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QSerialPort>
#include <QThread>
#include <QTimer>

#include <array>

namespace tolvex::platform {

namespace {

// How long a device may accept nothing at all before its bytes are discarded.
constexpr int patienceMilliseconds = 2000;
// The interval at which the system's unsent bytes are counted.
constexpr int lookMilliseconds = 10;

constexpr std::array parities = {QSerialPort::NoParity, QSerialPort::EvenParity, QSerialPort::OddParity,
                                 QSerialPort::MarkParity, QSerialPort::SpaceParity};
constexpr std::array stopBits = {QSerialPort::OneStop, QSerialPort::OneAndHalfStop, QSerialPort::TwoStop};

bool isGone(QSerialPort::SerialPortError error) {
    return error == QSerialPort::ResourceError || error == QSerialPort::ReadError ||
           error == QSerialPort::WriteError;
}

QString mayNotUse(const SerialPortFacts& facts) {
    const QString group = QFileInfo(facts.device).group();
    return QStringLiteral("%1 leads to %2, which this user may not use%3.")
        .arg(facts.name(), facts.device,
             group.isEmpty() ? QString() : QStringLiteral("; it belongs to the group \"%1\"").arg(group));
}

SerialFault inUse(const SerialPortFacts& facts) {
    const QString holder = facts.holder.isEmpty() ? QStringLiteral("another program") : facts.holder;
    return {SerialPortInUse, QStringLiteral("%1 is in use by %2.").arg(facts.name(), holder)};
}

// Why the port cannot be opened, as far as this is known beforehand.
SerialFault obstacle(const SerialPortFacts& facts) {
    if (facts.device.isEmpty())
        return {SerialPortMissing,
                QStringLiteral("%1 is not set up: the machine folder has no entry \"dosdevices/com%2\".")
                    .arg(facts.name())
                    .arg(facts.number)};
    if (!facts.present)
        return {SerialPortMissing,
                QStringLiteral("%1 leads to %2, which is not there.").arg(facts.name(), facts.device)};
    if (!MayAccess(facts.device, Access::ReadAndWrite))
        return {SerialPortFailed, mayNotUse(facts)};
    return facts.holder.isEmpty() ? SerialFault() : inUse(facts);
}

} // namespace

class SerialPort::Device {
public:
    Device(SerialPort& owner, const QString& use)
        : owner_(owner)
        , use_(use) {
        QObject::connect(&port_, &QSerialPort::readyRead, &port_, [this] { receive(); });
        QObject::connect(&port_, &QSerialPort::bytesWritten, &port_, [this] {
            progress_.restart();
            if (watch_.isActive())
                look();
        });
        // A device that went away keeps reporting while it is open, and it cannot be closed from inside its
        // report.
        QObject::connect(&port_, &QSerialPort::errorOccurred, &port_,
                         [this](QSerialPort::SerialPortError error) {
                             QTimer::singleShot(0, &port_, [this, error, opening = opening_] {
                                 if (opening == opening_)
                                     lose(error);
                             });
                         });
        watch_.setInterval(lookMilliseconds);
        QObject::connect(&watch_, &QTimer::timeout, &watch_, [this] { look(); });
    }

    SerialFault open(int number, const SerialLine& line, Handshaking handshaking) {
        close(patienceMilliseconds);
        ++opening_;
        number_ = number;
        line_ = line;
        handshaking_ = handshaking;
        const SerialPortFacts facts = FactsOfSerialPort(number);
        if (SerialFault fault = obstacle(facts))
            return fault;
        name_ = facts.name();
        const QString device = QFileInfo(facts.device).canonicalFilePath();
        port_.setPortName(device);
        port_.setBaudRate(line.baud);
        port_.setParity(parities.at(static_cast<std::size_t>(line.parity)));
        port_.setDataBits(static_cast<QSerialPort::DataBits>(line.dataBits));
        port_.setStopBits(stopBits.at(static_cast<std::size_t>(line.stopBits)));
        port_.setFlowControl(handshaking == Handshaking::None      ? QSerialPort::NoFlowControl
                             : handshaking == Handshaking::XonXoff ? QSerialPort::SoftwareControl
                                                                   : QSerialPort::HardwareControl);
        if (!port_.open(QIODevice::ReadWrite))
            return refused(facts);
        if (handshaking == Handshaking::RtsCtsXonXoff)
            AddXonXoff(port_);
        port_.clear(); // what came before answers nobody here
        held_ = std::make_unique<SerialPortUse>(device, use_);
        return {};
    }

    bool write(const QByteArray& bytes) {
        if (!port_.isOpen())
            return false;
        if (!watch_.isActive()) {
            progress_.start();
            watch_.start();
        }
        port_.write(bytes);
        return true;
    }

    bool close(int milliseconds) {
        bool all = true;
        if (watch_.isActive()) {
            QElapsedTimer time;
            time.start();
            while (left() > 0 && !isGone(port_.error()) && time.elapsed() < milliseconds)
                if (port_.bytesToWrite() == 0 || !port_.waitForBytesWritten(lookMilliseconds))
                    QThread::msleep(lookMilliseconds);
            all = left() == 0;
        }
        shut();
        return all;
    }

    // Bytes that are not on the line yet.
    qint64 left() const {
        if (!port_.isOpen())
            return 0;
        return port_.bytesToWrite() + BytesInDriver(port_);
    }

    SerialPort& owner_;
    QString use_;
    QSerialPort port_;
    QString name_;
    int number_ = 0;
    SerialLine line_;
    Handshaking handshaking_ = Handshaking::None;
    bool closing_ = false;
    QTimer watch_; // runs while bytes are being sent

private:
    SerialFault refused(const SerialPortFacts& facts) {
        const QSerialPort::SerialPortError error = port_.error();
        const QString text = port_.errorString();
        port_.clearError();
        if (error == QSerialPort::PermissionError)
            return inUse(facts);
        if (error == QSerialPort::UnsupportedOperationError)
            return {SerialLineRefused,
                    QStringLiteral("%1 does not offer these settings: %2.").arg(facts.name(), text)};
        return {SerialPortFailed,
                QStringLiteral("%1 (%2) could not be opened: %3.").arg(facts.name(), facts.device, text)};
    }

    void receive() {
        const QByteArray bytes = port_.readAll();
        if (!bytes.isEmpty() && owner_.onReceived)
            owner_.onReceived(bytes);
    }

    // Checks how many bytes are still unsent.
    void look() {
        const qint64 now = left();
        if (now < leftBefore_)
            progress_.restart();
        leftBefore_ = now;
        if (now == 0) {
            finish();
            if (owner_.onSent)
                owner_.onSent();
        } else if (progress_.elapsed() >= patienceMilliseconds) {
            port_.clear(QSerialPort::Output);
            DropBytesInDriver(port_);
            finish();
            fail(
                QStringLiteral("%1 does not take what is sent: %2 bytes were given up.").arg(name_).arg(now));
        }
    }

    void finish() {
        watch_.stop();
        leftBefore_ = 0;
        if (closing_)
            shut();
    }

    void lose(QSerialPort::SerialPortError error) {
        if (!isGone(error) || !port_.isOpen())
            return;
        shut();
        fail(QStringLiteral("%1 (%2) is gone: the device was unplugged or switched off.")
                 .arg(name_, port_.portName()));
    }

    void fail(const QString& what) {
        if (owner_.onFailed)
            owner_.onFailed(what);
    }

    void shut() {
        watch_.stop();
        leftBefore_ = 0;
        closing_ = false;
        if (port_.isOpen())
            port_.close();
        held_.reset();
    }

    std::unique_ptr<SerialPortUse> held_;
    QElapsedTimer progress_; // since bytes were last sent
    qint64 leftBefore_ = 0;
    int opening_ = 0; // counts the calls of open
};

SerialPort::SerialPort(const QString& use)
    : device_(std::make_unique<Device>(*this, use)) {}

SerialPort::~SerialPort() {
    close();
}

SerialFault SerialPort::open(int number, const SerialLine& line, Handshaking handshaking) {
    return device_->open(number, line, handshaking);
}

bool SerialPort::isOpen() const {
    return device_->port_.isOpen();
}

int SerialPort::number() const {
    return device_->number_;
}

const SerialLine& SerialPort::line() const {
    return device_->line_;
}

Handshaking SerialPort::handshaking() const {
    return device_->handshaking_;
}

bool SerialPort::write(const QByteArray& bytes) {
    return device_->write(bytes);
}

bool SerialPort::sending() const {
    return device_->watch_.isActive();
}

void SerialPort::closeWhenSent() {
    if (!sending())
        close(0);
    else
        device_->closing_ = true;
}

void SerialPort::keepOpen() {
    device_->closing_ = false;
}

bool SerialPort::close(int milliseconds) {
    return device_->close(milliseconds);
}

} // namespace tolvex::platform
