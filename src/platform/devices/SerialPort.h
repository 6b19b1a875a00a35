// An open serial port. It works on the event loop: bytes are handed over and leave in the background; what
// arrives, what has left and what goes wrong comes as calls.
//
//     SerialPort port("the radio clock");
//     port.onReceived = [](const QByteArray& bytes) { ... };
//     if (const SerialFault fault = port.open(2, {}, Handshaking::None))
//         show(fault.text);
#pragma once

#include "platform/devices/SerialLine.h"

#include <QByteArray>

#include <functional>
#include <memory>

namespace tolvex::platform {

// Numbers of the suite's serial control, with what happened in words; number 0 is no fault.
enum SerialError : int {
    SerialPortMissing = 8002,
    SerialPortInUse = 8005,
    SerialPortNotOpen = 8012,
    SerialLineRefused = 8015,
    SerialPortFailed = 8020,
};
struct SerialFault {
    int number = 0;
    QString text;
    explicit operator bool() const { return number != 0; }
};

class SerialPort {
public:
    // `use` names what holds the port, for others who want it: "the radio clock".
    explicit SerialPort(const QString& use);
    // Closes the port.
    ~SerialPort();
    SerialPort(const SerialPort&) = delete;
    SerialPort& operator=(const SerialPort&) = delete;

    // Called from the event loop; the port is not destroyed inside them. In onReceived there are always
    // bytes; if nobody takes them they are gone.
    std::function<void(const QByteArray& bytes)> onReceived;
    // Everything that was written has left the port.
    std::function<void()> onSent;
    // A sentence: bytes that the device does not take for two seconds were given up, or the device went away,
    // which is reported once. isOpen says whether the port is still open.
    std::function<void(const QString& what)> onFailed;

    // Opens a port by its number; one that is open is closed first. Refused with a reason: a port that is not
    // there, may not be used by this user, or is held by somebody, who is named, and a line that the device
    // does not offer.
    SerialFault open(int number, const SerialLine& line, Handshaking handshaking);
    bool isOpen() const;
    int number() const; // of the port opened last; 0 before that
    const SerialLine& line() const;
    Handshaking handshaking() const;

    // Hands over bytes; they leave in the order of the calls. False when the port is not open.
    bool write(const QByteArray& bytes);
    // Bytes handed over that have not left yet.
    bool sending() const;
    // Closes as soon as everything has left, or was given up. Another write before that still goes out;
    // keepOpen takes it back.
    void closeWhenSent();
    void keepOpen();
    // Closes now. What is still to leave gets up to `milliseconds` for it; false when some of it was lost.
    bool close(int milliseconds = 2000);

private:
    class Device;
    std::unique_ptr<Device> device_;
};

} // namespace tolvex::platform
