// The driver of Advantech cards: five operations behind one interface. The real one is the maker's library
// "adsapi32", loaded at run time if it is installed; tests supply another.
#pragma once

#include <QString>

#include <array>
#include <memory>

namespace tolvex {

// A board's description of itself.
struct BoardFeatures {
    qint32 board = 0; // the maker's number of its kind
    qint32 maximumInputs = 0;
    qint32 maximumOutputs = 0; // digital channels, for both
};

// Modes of a board's ports, from port 0 on. 0: eight inputs; 1: eight outputs; 3 and 4: four of each.
using PortModes = std::array<qint16, 10>;

class AdvantechDriver {
public:
    virtual ~AdvantechDriver() = default;
    // Each returns 0, or an error number of the driver that errorText knows.
    virtual qint32 open(qint32 device, qint32& handle) = 0;
    virtual qint32 features(qint32 handle, BoardFeatures& features) = 0;
    virtual qint32 portModes(qint32 handle, PortModes& modes) = 0;
    virtual qint32 close(qint32 handle) = 0;
    // At most 79 characters.
    virtual QString errorText(qint32 error) = 0;
};

// The driver of this machine: the installed library, loaded by its name on first use, with a new attempt at
// each call until it is found; null while it is not installed or lacks one of its operations. Cost of a miss:
// one search of the system's library folders.
AdvantechDriver* advantechDriver();

// A library by its name or host path; null if it cannot be loaded or lacks an operation.
std::unique_ptr<AdvantechDriver> LoadAdvantechDriver(const QString& library);

// Tests install another driver (not owned), or none by a routine that returns null. Returns the previous
// source.
using DriverSource = AdvantechDriver* (*)();
DriverSource SetAdvantechDriver(DriverSource source);

} // namespace tolvex
