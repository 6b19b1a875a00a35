// The serial ports of the machine by number, COM1 to COM16. Each is an entry "com<n>" among the machine
// folder's devices, a link to a device of the system. A machine folder without any gets one for each existing
// port, in order, by the name that stays with the adapter if there is one, so that numbers do not move when
// adapters are plugged in again. After that the links belong to the engineer.
#pragma once

#include <QList>
#include <QString>

namespace tolvex::platform {

inline constexpr int SerialPortCount = 16;

struct SerialPortFacts {
    int number = 0;       // from 1
    QString device;       // host path that it leads to, for display; empty: it has no entry
    bool present = false; // the device exists
    QString description;  // of the device, from the system; may be empty
    // Who has it open: a use of this program ("the radio clock"), or a program; empty: nobody known.
    QString holder;

    // "COM3".
    QString name() const;
};

// A port by number; one outside 1 to SerialPortCount has no entry.
SerialPortFacts FactsOfSerialPort(int number);
QList<SerialPortFacts> SerialPorts();

// Marks the device of a port as in use by this program while the object lives.
class SerialPortUse {
public:
    SerialPortUse(const QString& device, const QString& use);
    ~SerialPortUse();
    SerialPortUse(const SerialPortUse&) = delete;
    SerialPortUse& operator=(const SerialPortUse&) = delete;

private:
    QString device_;
};

// The devices for which a new machine folder gets entries.
// Tests set others; null restores the system's.
void SetSerialDevices(QStringList (*devices)());

} // namespace tolvex::platform
