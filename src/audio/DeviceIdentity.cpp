#include "audio/DeviceIdentity.h"

#include "core/settings/SaveLocalSettings.h"
#include "core/settings/Settings.h"
#include "core/settings/StoredSettings.h"
#include "platform/devices/WaveDevices.h"
#include "platform/host/FileLock.h"
#include "platform/host/Replacement.h"
#include "platform/paths/Paths.h"

namespace tolvex {

namespace {

using platform::WaveDevice;

constexpr qint64 longestFile = 1 << 20;

// A use of a device that was saved.
struct Remembered {
    QString iniFile;
    int player = 0; // 0: recording
    int stored = 0; // number plus one
    QString place;
    QString id;
    QString name;

    friend bool operator==(const Remembered&, const Remembered&) = default;
};
enum Field { IniField, UseField, PlayerField, StoredField, PlaceField, IdField, NameField, FieldCount };

QString filePath() {
    return platform::MachineFolder() + QStringLiteral("/audiodevices.txt");
}

QString asField(QString text) {
    for (QChar& c : text)
        if (c < u' ')
            c = u' ';
    return text;
}

// One ini file under all the ways to write its name.
QString iniName(const Settings& settings) {
    return asField(platform::ProfilePath(settings.LocalIniFile).toUpper());
}

QList<Remembered> read() {
    QList<Remembered> all;
    const QByteArray bytes = platform::ReadHostFile(filePath(), longestFile).value_or(QByteArray());
    for (const QString& line : QString::fromUtf8(bytes).split(u'\n')) {
        const QStringList fields = line.split(u'\t');
        if (fields.size() == FieldCount)
            all += {fields[IniField],
                    fields[PlayerField].toInt(),
                    fields[StoredField].toInt(),
                    fields[PlaceField],
                    fields[IdField],
                    fields[NameField]};
    }
    return all;
}

QByteArray textOf(const QList<Remembered>& all) {
    QString text;
    for (const Remembered& one : all)
        text += QStringList{one.iniFile,
                            one.player ? QStringLiteral("player") : QStringLiteral("record"),
                            QString::number(one.player),
                            QString::number(one.stored),
                            one.place,
                            one.id,
                            one.name}
                    .join(u'\t') +
                u'\n';
    return text.toUtf8();
}

const QList<WaveDevice>& devicesFor(int player) {
    return player ? platform::WaveOutputs() : platform::WaveInputs();
}

// The stored number of a use, as the settings have it; 0 where none is stored.
int storedOf(const Settings& settings, int player) {
    if (player == 0)
        return settings.RecordingSoundCard;
    if (player > settings.TotalNumberCartPlayers || settings.AutomaticPlayerAssignment)
        return 0;
    return settings.CartPlayerTable[player].Device;
}

// As devices are numbered: by place and id, else by place, else by id.
bool isSame(const WaveDevice& device, const Remembered& one) {
    if (!device.place.isEmpty() && !one.place.isEmpty())
        return device.place == one.place;
    return device.id == one.id;
}

int numberNow(const Remembered& one) {
    const QList<WaveDevice>& devices = devicesFor(one.player);
    for (qsizetype number = 0; number < devices.size(); ++number)
        if (devices[number].present && isSame(devices[number], one))
            return int(number);
    return -1;
}

// Whether the number that the settings have for a use means another device than it did.
bool hasMoved(const Settings& settings, const Remembered& one) {
    const QList<WaveDevice>& devices = devicesFor(one.player);
    const int stored = storedOf(settings, one.player);
    const bool pulledDown = one.player == 0 && one.stored > devices.size() && stored == devices.size();
    if (one.stored < 1 || (one.stored != stored && !pulledDown))
        return false;
    return one.stored > devices.size() || !isSame(devices[one.stored - 1], one);
}

// What is remembered, with the devices of the settings in place of those of their ini file.
QList<Remembered> withDevicesOf(const Settings& settings, DeviceUses chosen, QList<Remembered> all) {
    const QString iniFile = iniName(settings);
    DeviceUses kept;
    all.removeIf([&](const Remembered& one) {
        if (one.iniFile != iniFile)
            return false;
        const bool keep = one.player >= 0 && one.player <= CartPlayerCount && !chosen[size_t(one.player)] &&
                          hasMoved(settings, one);
        if (keep)
            kept.set(size_t(one.player));
        return !keep;
    });
    for (int player = 0; player <= CartPlayerCount; ++player) {
        if (kept[size_t(player)])
            continue;
        const int stored = storedOf(settings, player);
        const QList<WaveDevice>& devices = devicesFor(player);
        if (stored < 1 || stored > devices.size())
            continue;
        const WaveDevice& device = devices[stored - 1];
        all += {iniFile, player, stored, asField(device.place), asField(device.id), asField(device.name)};
    }
    return all;
}

} // namespace

QString MovedDevice::text() const {
    const QString use =
        player ? QStringLiteral("Player %1").arg(player) : QStringLiteral("The recording device");
    return now < 0 ? QStringLiteral("%1 was '%2', which is not there now").arg(use, name)
                   : QStringLiteral("%1 was '%2', which is now number %3").arg(use, name).arg(now);
}

void RememberDevices(const Settings& settings, DeviceUses chosen) {
    if (withDevicesOf(settings, chosen, read()) == read())
        return; // most of the time
    const platform::FileLock lock(filePath());
    if (lock.held())
        platform::ReplaceHostFile(filePath(), textOf(withDevicesOf(settings, chosen, read())));
}

QList<MovedDevice> FindMovedDevices(const Settings& settings) {
    QList<MovedDevice> moved;
    const QString iniFile = iniName(settings);
    for (const Remembered& one : read())
        if (one.iniFile == iniFile && one.player >= 0 && one.player <= CartPlayerCount &&
            hasMoved(settings, one))
            moved += {one.player, one.name, numberNow(one)};
    return moved;
}

QStringList MovedDeviceTexts(const Settings& settings) {
    QStringList texts;
    for (const MovedDevice& moved : FindMovedDevices(settings))
        texts += moved.text();
    return texts;
}

SetupOutcome RepairDevices(Settings& settings) {
    Settings next = settings;
    bool changed = false;
    for (const MovedDevice& moved : FindMovedDevices(settings)) {
        if (moved.now < 0)
            continue;
        changed = true;
        if (moved.player)
            next.CartPlayerTable[moved.player].Device = qint16(moved.now + 1);
        else
            next.RecordingSoundCard = moved.now + 1;
    }
    if (!changed)
        return {};
    if (const int error = SaveLocalSettings(next, next.LocalIniFile))
        return {ProfileErrorText(error, platform::ProfilePath(next.LocalIniFile)), {}, error};
    settings = next;
    RememberDevices(settings);
    return {};
}

} // namespace tolvex
