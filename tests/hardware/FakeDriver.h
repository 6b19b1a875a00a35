// A driver of a test's own: boards by device number, where each step of a call can fail. Installed while it
// lives.
#pragma once

#include "hardware/AdvantechDriver.h"
#include "hardware/HardwareCards.h"

#include <QMap>
#include <QStringList>

namespace tolvex::tests {

class FakeDriver : public AdvantechDriver {
public:
    struct Board {
        BoardFeatures features;
        PortModes modes{};
    };

    FakeDriver()
        : before_(SetAdvantechDriver([]() -> AdvantechDriver* { return current; })) {
        current = this;
    }
    ~FakeDriver() override { SetAdvantechDriver(before_); }
    FakeDriver(const FakeDriver&) = delete;
    FakeDriver& operator=(const FakeDriver&) = delete;

    QMap<qint32, Board> boards; // a missing device does not open
    QString failing;            // "features", "portModes" or "close"
    QStringList calls;          // "open 3", "features", ...

    // A board of fixed channels.
    void addFixed(qint32 device, qint32 inputs, qint32 outputs) {
        boards[device].features = {1, inputs, outputs};
    }

    qint32 open(qint32 device, qint32& handle) override {
        calls += QStringLiteral("open %1").arg(device);
        handle = device + 1000;
        return boards.contains(device) ? 0 : 11;
    }
    qint32 features(qint32 handle, BoardFeatures& features) override {
        calls += QStringLiteral("features");
        features = boards.value(handle - 1000).features;
        return fails("features", 12);
    }
    qint32 portModes(qint32 handle, PortModes& modes) override {
        calls += QStringLiteral("portModes");
        modes = boards.value(handle - 1000).modes;
        return fails("portModes", 13);
    }
    qint32 close(qint32) override {
        calls += QStringLiteral("close");
        return fails("close", 14);
    }
    QString errorText(qint32 error) override { return QStringLiteral("Driver error %1").arg(error); }

private:
    qint32 fails(const char* step, qint32 error) const { return failing == QLatin1String(step) ? error : 0; }

    inline static FakeDriver* current = nullptr;
    DriverSource before_;
};

// No driver at all, during a test.
struct NoDriver {
    NoDriver()
        : before(SetAdvantechDriver([]() -> AdvantechDriver* { return nullptr; })) {}
    ~NoDriver() { SetAdvantechDriver(before); }
    NoDriver(const NoDriver&) = delete;
    NoDriver& operator=(const NoDriver&) = delete;

    DriverSource before;
};

} // namespace tolvex::tests
