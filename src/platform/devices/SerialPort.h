// An open serial port. It works on the event loop: bytes are handed over and sent in the background; received
// bytes, the end of sending and faults arrive as calls.
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

// Numbers of the suite's serial control, and what happened in words; number 0 is no fault.
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
    // `use` says what holds the port, for others who want it: "the radio clock".
    explicit SerialPort(const QString& use);
    // Closes the port.
    ~SerialPort();
    SerialPort(const SerialPort&) = delete;
    SerialPort& operator=(const SerialPort&) = delete;

    // Called from the event loop; the port must not be destroyed inside them. onReceived always gets bytes;
    // without a receiver they are lost.
    std::function<void(const QByteArray& bytes)> onReceived;
    // Everything that was written has been sent.
    std::function<void()> onSent;
    // A sentence: bytes that the device did not accept for two seconds were discarded, or the device went
    // away, which is reported once. isOpen says whether the port is still open.
    std::function<void(const QString& what)> onFailed;

    // Opens a port by its number, after closing one that is open. Refused with a reason: a missing port, one
    // that this user may not use, one that is in use (the user is named), and a line setting that the device
    // does not offer.
    SerialFault open(int number, const SerialLine& line, Handshaking handshaking);
    bool isOpen() const;
    int number() const; // of the port opened last; 0 before that
    const SerialLine& line() const;
    Handshaking handshaking() const;

    // Hands over bytes; they are sent in the order of the calls. False if the port is not open.
    bool write(const QByteArray& bytes);
    // Bytes handed over and not sent yet.
    bool sending() const;
    // Closes as soon as everything was sent or discarded. A later write is still sent before that; keepOpen
    // cancels it.
    void closeWhenSent();
    void keepOpen();
    // Closes now, after up to `milliseconds` for unsent bytes. False if some of them were lost.
    bool close(int milliseconds = 2000);

private:
    class Device;
    std::unique_ptr<Device> device_;
};

} // namespace tolvex::platform
