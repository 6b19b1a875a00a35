#include "audio/DeviceIdentity.h"

#include "core/report/ProblemReport.h"
#include "core/settings/Settings.h"
#include "core/settings/StoredSettings.h"
#include "platform/devices/WaveDevices.h"
#include "platform/host/FileLock.h"
#include "platform/host/Replacement.h"
#include "platform/paths/Paths.h"

#include <utility>

namespace tolvex {

namespace {

using platform::WaveDevice;

constexpr qint64 longestFile = 1 << 20;

// A saved use of a device.
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

// The same for every spelling of an ini file's name.
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

// The number of a use in the settings; 0 where it has none.
int storedOf(const Settings& settings, int player) {
    if (player == 0)
        return settings.RecordingSoundCard;
    if (player > settings.TotalNumberCartPlayers || settings.AutomaticPlayerAssignment)
        return 0;
    return settings.CartPlayerTable[player].Device;
}

// Empty where no device has the number. -1 is the system's own choice.
QString nameOf(const QList<WaveDevice>& devices, int number) {
    if (number < 0)
        return platform::WaveMapperName();
    return number < devices.size() ? devices[number].name : QString();
}

// Compares places where both are known, otherwise ids.
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

// Whether a number that has no device any more may have become that of another use of it: the window shows
// the last recording device instead, and for a player the system's own choice, and OK stores what is shown. A
// user who wants that chooses it, which is known (`DeviceUses`).
bool isPulledDown(const Settings& settings, const Remembered& one) {
    if (one.player == 0)
        return one.stored > devicesFor(0).size() && storedOf(settings, 0) == devicesFor(0).size();
    return one.player <= settings.TotalNumberCartPlayers && !settings.AutomaticPlayerAssignment &&
           settings.CartPlayerTable[one.player].Device == 0;
}

// Whether the number of a use in the settings means another device than it did.
bool hasMoved(const Settings& settings, const Remembered& one) {
    const QList<WaveDevice>& devices = devicesFor(one.player);
    const int stored = storedOf(settings, one.player);
    if (one.stored < 1)
        return false;
    if (one.stored != stored)
        return isPulledDown(settings, one);
    return one.stored > devices.size() || !isSame(devices[one.stored - 1], one);
}

// What is remembered, with the devices of the settings instead of the former ones of their ini file.
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
    const QString where =
        now < 0 ? QStringLiteral("not there now") : QStringLiteral("now number %1").arg(now);
    const QString instead = number < 0 ? QStringLiteral("it has '%1' now").arg(other)
                            : other.isEmpty()
                                ? QStringLiteral("no device has number %1 now").arg(number)
                                : QStringLiteral("number %1 is now '%2'").arg(number).arg(other);
    return QStringLiteral("%1 was '%2', which is %3; %4").arg(use, name, where, instead);
}

QString RememberDevices(const Settings& settings, DeviceUses chosen) {
    if (withDevicesOf(settings, chosen, read()) == read())
        return {}; // most of the time
    const platform::FileLock lock(filePath());
    if (lock.held() && platform::ReplaceHostFile(
                           filePath(), textOf(withDevicesOf(settings, chosen, read()))) == platform::NoError)
        return {};
    static QString said; // of the file that could not be written
    if (std::exchange(said, filePath()) == filePath())
        return {};
    return QStringLiteral("%1 cannot be written: a number that means another sound device later will not be "
                          "noticed.")
        .arg(filePath());
}

QList<MovedDevice> FindMovedDevices(const Settings& settings) {
    QList<MovedDevice> moved;
    const QString iniFile = iniName(settings);
    for (const Remembered& one : read())
        if (one.iniFile == iniFile && one.player >= 0 && one.player <= CartPlayerCount &&
            hasMoved(settings, one)) {
            const int number = storedOf(settings, one.player) - 1;
            moved += {one.player, one.name, numberNow(one), number, nameOf(devicesFor(one.player), number)};
        }
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
    if (const int error = SaveLocalFile(next))
        return NothingStored(error, platform::ProfilePath(next.LocalIniFile));
    settings = next;
    if (const QString fault = RememberDevices(settings); !fault.isEmpty())
        ShowExclamation(fault);
    return {};
}

} // namespace tolvex
