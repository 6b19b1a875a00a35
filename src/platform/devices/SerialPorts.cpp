#include "platform/devices/SerialPorts.h"

#include "platform/host/HostChanges.h"
#include "platform/host/HostFiles.h"
#include "platform/host/LookOnly.h"
#include "platform/paths/Paths.h"
#include "platform/process/Holders.h"

#include <QCollator>
#include <QDir>
#include <QHash>
#include <QSerialPortInfo>

#include <algorithm>

namespace tolvex::platform {

namespace {

// Uses within this program, by the real path of their device.
QHash<QString, QString>& uses() {
    static QHash<QString, QString> all;
    return all;
}

QString realPath(const QString& device) {
    return QFileInfo(device).canonicalFilePath();
}

// The name that stays with the adapter, else the plain path.
QString lastingName(const QString& device) {
    const QDir names(QStringLiteral("/dev/serial/by-id"));
    for (const QFileInfo& name : names.entryInfoList(QDir::System | QDir::Files, QDir::Name))
        if (name.canonicalFilePath() == device)
            return name.filePath();
    return device;
}

// Built-in ports first, then adapters, each in order of their numbers.
QStringList systemDevices() {
    QStringList devices;
    for (const QSerialPortInfo& port : QSerialPortInfo::availablePorts())
        devices += port.systemLocation();
    QCollator order;
    order.setNumericMode(true);
    std::sort(devices.begin(), devices.end(), [&order](const QString& a, const QString& b) {
        const bool aIsAdapter = !a.contains(QLatin1String("/ttyS"));
        const bool bIsAdapter = !b.contains(QLatin1String("/ttyS"));
        return aIsAdapter != bIsAdapter ? bIsAdapter : order.compare(a, b) < 0;
    });
    std::transform(devices.begin(), devices.end(), devices.begin(), lastingName);
    return devices;
}

QStringList (*listDevices)() = systemDevices;

QString entryOf(int number) {
    return MachineFolder() + QStringLiteral("/dosdevices/com%1").arg(number);
}

bool anyEntry() {
    for (int number = 1; number <= SerialPortCount; ++number)
        if (LinkStatusOf(HostName(entryOf(number))))
            return true;
    return false;
}

// What the entries lead to, by number from 1. Makes the entries first if there are none.
QStringList devicesByNumber() {
    QStringList devices(SerialPortCount + 1);
    if (!anyEntry()) {
        const QStringList found = listDevices().mid(0, SerialPortCount);
        for (int i = 0; i < found.size(); ++i) {
            devices[i + 1] = found[i];
            // If it cannot be made, the next call tries again; its number stays the same.
            if (!LookingOnly())
                MakeHostLink(HostName(found[i]), HostName(entryOf(i + 1)));
        }
        return devices;
    }
    for (int number = 1; number <= SerialPortCount; ++number) {
        const QString entry = entryOf(number);
        if (const auto status = LinkStatusOf(HostName(entry)))
            devices[number] =
                status->kind == HostStatus::Kind::Link ? QFileInfo(entry).symLinkTarget() : entry;
    }
    return devices;
}

SerialPortFacts factsOf(int number, const QString& device) {
    SerialPortFacts facts{number, device, false, {}, {}};
    const QString real = device.isEmpty() ? QString() : realPath(device);
    const std::optional<HostStatus> status = StatusOf(HostName(real));
    facts.present = status && status->kind == HostStatus::Kind::CharacterDevice;
    if (!facts.present)
        return facts;
    facts.description = QSerialPortInfo(QFileInfo(real).fileName()).description();
    facts.holder = uses().value(real);
    if (facts.holder.isEmpty())
        if (const auto holder = HolderOfDevice(real))
            facts.holder = holder->text();
    return facts;
}

} // namespace

QString SerialPortFacts::name() const {
    return QStringLiteral("COM%1").arg(number);
}

SerialPortFacts FactsOfSerialPort(int number) {
    const bool known = number >= 1 && number <= SerialPortCount;
    return factsOf(number, known ? devicesByNumber()[number] : QString());
}

QList<SerialPortFacts> SerialPorts() {
    const QStringList devices = devicesByNumber();
    QList<SerialPortFacts> ports;
    for (int number = 1; number <= SerialPortCount; ++number)
        ports += factsOf(number, devices[number]);
    return ports;
}

SerialPortUse::SerialPortUse(const QString& device, const QString& use)
    : device_(realPath(device)) {
    uses().insert(device_, use);
}

SerialPortUse::~SerialPortUse() {
    uses().remove(device_);
}

void SetSerialDevices(QStringList (*devices)()) {
    listDevices = devices ? devices : systemDevices;
}

} // namespace tolvex::platform
