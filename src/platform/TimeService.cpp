#include "platform/TimeService.h"

#include "platform/System.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <chrono>

namespace tolvex::platform {

namespace {

const QString service = QStringLiteral("org.freedesktop.timedate1");
const QString path = QStringLiteral("/org/freedesktop/timedate1");
const QString connectionName = QStringLiteral("tolvex-time");

// A user who is asked for a password needs time.
constexpr int askingMilliseconds = 120'000;
constexpr int plainMilliseconds = 10'000;

const QString keptByNetwork = QStringLiteral(
    "This computer keeps its time by the network, so the radio clock does not set it. Turn network time off "
    "(\"timedatectl set-ntp false\") to go by the radio clock");
const QString noRight = QStringLiteral("This user may not set the computer's clock");

ClockRefusal setDirectly(const QDateTime& time) {
    if (SystemClockKeptInStep())
        return {ClockKeptByNetwork, keptByNetwork};
    const std::error_code error = SetSystemClock(std::chrono::milliseconds(time.toMSecsSinceEpoch()));
    if (!error)
        return {};
    return {NoRightToSetClock,
            error == std::errc::operation_not_permitted ? noRight : QString::fromStdString(error.message())};
}

bool isMissing(const QString& error) {
    return error.startsWith(QLatin1String("org.freedesktop.DBus.Error.Spawn")) ||
           error == QLatin1String("org.freedesktop.DBus.Error.ServiceUnknown") ||
           error == QLatin1String("org.freedesktop.DBus.Error.NameHasNoOwner") ||
           error == QLatin1String("org.freedesktop.DBus.Error.Disconnected");
}

ClockRefusal refusalOf(const QDBusError& error) {
    const QString name = error.name();
    if (name == service + QStringLiteral(".AutomaticTimeSyncEnabled"))
        return {ClockKeptByNetwork, keptByNetwork};
    if (name == QLatin1String("org.freedesktop.DBus.Error.AccessDenied") ||
        name == QLatin1String("org.freedesktop.DBus.Error.InteractiveAuthorizationRequired") ||
        name.startsWith(QLatin1String("org.freedesktop.PolicyKit1.Error")))
        return {NoRightToSetClock, noRight};
    return {NoRightToSetClock, QStringLiteral("The system's time service refused: ") + error.message()};
}

} // namespace

void SetSystemTime(const QDateTime& time, bool mayAsk, const Clock::SetDone& done) {
    if (!time.isValid() || time.toMSecsSinceEpoch() < 0)
        return done({NoRightToSetClock, QStringLiteral("There is no such time")});
    // A connection of its own: a shared one would be dead after the bus is restarted.
    const QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SystemBus, connectionName);
    if (!bus.isConnected()) {
        QDBusConnection::disconnectFromBus(connectionName);
        return done(setDirectly(time));
    }
    QDBusMessage call = QDBusMessage::createMethodCall(service, path, service, QStringLiteral("SetTime"));
    call << time.toMSecsSinceEpoch() * 1000 << false << mayAsk;
    call.setInteractiveAuthorizationAllowed(mayAsk);
    auto* watcher =
        new QDBusPendingCallWatcher(bus.asyncCall(call, mayAsk ? askingMilliseconds : plainMilliseconds));
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [watcher, time, done] {
        const QDBusPendingReply<> reply = *watcher;
        const QDBusError error = reply.error();
        watcher->deleteLater();
        QDBusConnection::disconnectFromBus(connectionName);
        if (!reply.isError())
            done({});
        else
            done(isMissing(error.name()) ? setDirectly(time) : refusalOf(error));
    });
}

} // namespace tolvex::platform
