// The radio clock's receiver from a shell. These commands never set the computer's clock.
#include "app/ctl/Commands.h"

#include "app/ctl/ClockRecords.h"
#include "app/ctl/Running.h"
#include "core/settings/Settings.h"
#include "network/clock/ReceiverTest.h"
#include "network/commands/CommandText.h"
#include "platform/Clock.h"
#include "platform/devices/SerialPorts.h"

#include <QJsonDocument>

namespace tolvex::ctl {

namespace {

constexpr int testSeconds = 10;

// The named port, as a number or "COM<n>", else the workstation's own; 0 if there is none.
std::optional<int> portOf(const Call& call) {
    if (call.arguments.isEmpty())
        return call.session.read() ? qMax(int{call.station.settings.RadioClockComPort}, 0) : 0;
    QString text = call.argument(0);
    if (text.startsWith(QLatin1String("com"), Qt::CaseInsensitive))
        text = text.mid(3);
    bool isNumber = false;
    const int port = text.toInt(&isNumber);
    return isNumber && port >= 1 && port <= platform::SerialPortCount ? std::optional(port) : std::nullopt;
}

// The port and the seconds of a call, or the exit status that refuses it.
struct Wanted {
    int port = 0;
    int seconds = 0;
    std::optional<int> refused;
};
Wanted wantedOf(const Call& call) {
    const std::optional<int> port = portOf(call);
    const std::optional<int> seconds = SecondsOption(call);
    if (!port)
        return {.refused = call.wrong(QStringLiteral("A port from 1 to %1 is expected, not \"%2\".")
                                          .arg(platform::SerialPortCount)
                                          .arg(call.argument(0)))};
    if (!seconds)
        return {.refused = call.wrong(QStringLiteral("--seconds is a number from 1 upward."))};
    if (*port == 0)
        return {.refused = call.no(QStringLiteral("No radio clock is fitted; name its port."))};
    return {*port, *seconds, std::nullopt};
}

int test(Call& call) {
    const Wanted wanted = wantedOf(call);
    if (wanted.refused)
        return *wanted.refused;
    QJsonArray lines;
    QString error;
    Run run;
    ReceiverTest receiver(ReceiverTest::Scope::All);
    receiver.onLine = [&lines](const ClockLine& line) {
        QJsonObject record;
        AddClockLine(record, line, TestStrength(line.level));
        record[QStringLiteral("raw")] = record.take(QStringLiteral("line"));
        record[QStringLiteral("decoded")] = line.text();
        lines += record;
    };
    receiver.onError = [&](const QString& what) {
        error = what;
        if (!receiver.isOpen())
            run.end();
    };
    const platform::SerialFault fault = receiver.setPort(wanted.port);
    if (fault)
        error = QStringLiteral("Error opening Com Port : ") + fault.text;
    else
        run.go(wanted.seconds > 0 ? wanted.seconds : testSeconds);
    if (error.isEmpty() && lines.isEmpty())
        error = QStringLiteral("The receiver gave no answer.");
    QJsonObject record{{QStringLiteral("port"), wanted.port},
                       {QStringLiteral("opened"), !fault},
                       {QStringLiteral("lines"), lines},
                       {QStringLiteral("error"), error}};
    if (receiver.level() >= 0)
        record[QStringLiteral("strength")] = TestStrength(receiver.level());
    call.output.record(record, {{"port", "Port"}, {"strength", "Strength"}});
    if (!call.output.json())
        call.output.records(lines, {{"raw", "Line"}, {"decoded", "Meaning"}});
    if (receiver.isOpen())
        return lines.isEmpty() ? call.no(error) : int{Done};
    return call.fail(error, fault.number);
}

int watch(Call& call) {
    const Wanted wanted = wantedOf(call);
    if (wanted.refused)
        return *wanted.refused;
    Run run;
    QString lost;
    ReceiverTest receiver(ReceiverTest::Scope::All);
    receiver.onLine = [&call](const ClockLine& line) {
        const QDateTime now = platform::clock().now();
        if (call.output.json()) {
            QJsonObject record{{QStringLiteral("time"), now.toString(Qt::ISODate)}};
            AddClockLine(record, line, TestStrength(line.level));
            call.output.event(QJsonDocument(record).toJson(QJsonDocument::Compact));
        } else {
            call.output.event(QStringLiteral("%1  %2  %3")
                                  .arg(now.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")),
                                       ShowCommandText(line.raw, false), line.text())
                                  .toUtf8());
        }
    };
    receiver.onError = [&](const QString& what) {
        if (receiver.isOpen())
            return call.output.say(what);
        lost = what;
        run.end();
    };
    if (const platform::SerialFault fault = receiver.setPort(wanted.port))
        return call.fail(QStringLiteral("Error opening Com Port : ") + fault.text, fault.number);
    run.go(wanted.seconds);
    return lost.isEmpty() ? int{Done} : call.fail(lost);
}

const std::vector<Option> options = {{"--seconds", "N", "stop after so many seconds"}};

} // namespace

CommandRows ClockCommands() {
    return {
        {"clock test", "[PORT]",
         "Test the radio clock: strength of reception and decoded lines, for ten seconds", test, options},
        {"clock watch", "[PORT]", "Show the lines of the radio clock until it is stopped", watch, options},
    };
}

} // namespace tolvex::ctl
