// The serial ports of the machine by their numbers, COM1 to COM16. Each is an entry "com<n>" among the
// machine folder's devices, a link to a device of the system. A machine folder that has none yet gets one for
// each port that is there, in order; by the name that stays with an adapter where the system has one, so that
// numbers do not move when adapters are plugged in again. From then on the links are the engineer's.
#pragma once

#include <QList>
#include <QString>

namespace tolvex::platform {

inline constexpr int SerialPortCount = 16;

struct SerialPortFacts {
    int number = 0;       // from 1
    QString device;       // host path that it leads to, for showing; empty: it has no entry
    bool present = false; // the device is there
    QString description;  // of the device, as the system has it; may be empty
    // Who has it open: a use of this program ("the radio clock"), or a program; empty: nobody that is known.
    QString holder;

    // "COM3".
    QString name() const;
};

// A port by its number; one outside 1 to SerialPortCount has no entry.
SerialPortFacts FactsOfSerialPort(int number);
QList<SerialPortFacts> SerialPorts();

// Marks the device of a port as taken by a use of this program, for as long as the object lives.
class SerialPortUse {
public:
    SerialPortUse(const QString& device, const QString& use);
    ~SerialPortUse();
    SerialPortUse(const SerialPortUse&) = delete;
    SerialPortUse& operator=(const SerialPortUse&) = delete;

private:
    QString device_;
};

// The devices that a new machine folder gets entries for; tests put others in place, null brings back the
// system's.
void SetSerialDevices(QStringList (*devices)());

} // namespace tolvex::platform
