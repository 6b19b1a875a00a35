#include "hardware/AdvantechDriver.h"

#include "platform/CodePage.h"

#include <QLibrary>
#include <QtEndian>

#include <utility>

// The calling convention of the library, on systems that have several.
#ifdef QT_WIN_CALLBACK
#define DRIVER_CALL QT_WIN_CALLBACK
#else
#define DRIVER_CALL
#endif

namespace tolvex {

namespace {

// The library's functions and records, from its maker's manual. Long numbers have 32 bits.
extern "C" {
struct FeaturesQuestion {
    void* buffer;
    quint16 size;
};
struct PortsQuestion {
    qint16* modes;
    quint16 count;
};
using OpenEntry = qint32(DRIVER_CALL*)(quint32 device, qint32* handle);
using CloseEntry = qint32(DRIVER_CALL*)(qint32* handle);
using FeaturesEntry = qint32(DRIVER_CALL*)(qint32 handle, FeaturesQuestion* question);
using PortsEntry = qint32(DRIVER_CALL*)(qint32 handle, PortsQuestion* question);
using MessageEntry = qint32(DRIVER_CALL*)(qint32 error, char* text);
}

// The record of features: texts of 8 and 16 characters, the board's number, then 16-bit counts.
constexpr int FeaturesSize = 520;
constexpr int BoardAt = 24;
constexpr int OutputsAt = 34;
constexpr int InputsAt = 36;

constexpr int MessageSize = 80;

class InstalledDriver : public AdvantechDriver {
public:
    explicit InstalledDriver(const QString& library)
        : library_(library) {
        take(open_, "DRV_DeviceOpen");
        take(close_, "DRV_DeviceClose");
        take(features_, "DRV_DeviceGetFeatures");
        take(ports_, "DRV_DioGetConfig");
        take(message_, "DRV_GetErrorMessage");
    }

    bool complete() const { return open_ && close_ && features_ && ports_ && message_; }

    qint32 open(qint32 device, qint32& handle) override {
        return open_(static_cast<quint32>(device), &handle);
    }
    qint32 features(qint32 handle, BoardFeatures& features) override {
        std::array<char, 2 * FeaturesSize> bytes{}; // room for the records of newer versions
        FeaturesQuestion question{bytes.data(), FeaturesSize};
        const qint32 error = features_(handle, &question);
        features.board = qFromLittleEndian<qint32>(bytes.data() + BoardAt);
        features.maximumOutputs = qFromLittleEndian<quint16>(bytes.data() + OutputsAt);
        features.maximumInputs = qFromLittleEndian<quint16>(bytes.data() + InputsAt);
        return error;
    }
    qint32 portModes(qint32 handle, PortModes& modes) override {
        PortsQuestion question{modes.data(), static_cast<quint16>(modes.size())};
        return ports_(handle, &question);
    }
    qint32 close(qint32 handle) override { return close_(&handle); }
    QString errorText(qint32 error) override {
        std::array<char, 4 * MessageSize> text{}; // the library does not know its size
        message_(error, text.data());
        return platform::FromCodePage(
            text.data(), static_cast<qsizetype>(qstrnlen(text.data(), static_cast<uint>(MessageSize - 1))));
    }

private:
    template<typename Entry>
    void take(Entry& entry, const char* name) {
        entry = reinterpret_cast<Entry>(library_.resolve(name));
    }

    QLibrary library_;
    OpenEntry open_ = nullptr;
    CloseEntry close_ = nullptr;
    FeaturesEntry features_ = nullptr;
    PortsEntry ports_ = nullptr;
    MessageEntry message_ = nullptr;
};

AdvantechDriver* installedDriver() {
    static std::unique_ptr<AdvantechDriver> driver;
    if (!driver)
        driver = LoadAdvantechDriver(QStringLiteral("adsapi32"));
    return driver.get();
}

DriverSource inForce = installedDriver;

} // namespace

AdvantechDriver* advantechDriver() {
    return inForce();
}

std::unique_ptr<AdvantechDriver> LoadAdvantechDriver(const QString& library) {
    auto driver = std::make_unique<InstalledDriver>(library);
    if (!driver->complete())
        return nullptr;
    return driver;
}

DriverSource SetAdvantechDriver(DriverSource source) {
    return std::exchange(inForce, source);
}

} // namespace tolvex
