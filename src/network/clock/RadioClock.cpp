#include "network/clock/RadioClock.h"

#include "core/report/ProblemReport.h"

namespace tolvex {

// ---- Port and button

RadioClock::RadioClock()
    : serial_(QStringLiteral("the radio clock"))
    , poll_([this](char byte) { return send(byte); })
    , strength_([this] { changed(); }) {
    serial_.onReceived = [this](const QByteArray& bytes) { receive(bytes); };
    serial_.onFailed = [this](const QString& what) {
        if (!serial_.isOpen())
            endTest();
        fail(what);
    };
}

RadioClock::~RadioClock() = default;

bool RadioClock::send(char byte) {
    const bool sent = serial_.write(QByteArray(1, byte));
    counts_.requests += sent && byte == '\r';
    return sent;
}

void RadioClock::changed() {
    if (onChanged)
        onChanged();
}

void RadioClock::fail(const QString& what) {
    status_ = QStringLiteral(" Error - ") + what;
    if (onError)
        onError(what);
    changed();
}

void RadioClock::connectTo(int port) {
    if (closed_)
        return;
    poll_.stop();
    serial_.close();
    reader_.clear();
    port_ = port;
    mayAsk_ = true;
    if (port < 1) {
        status_ = QStringLiteral(" Disabled");
        return changed();
    }
    if (const platform::SerialFault fault = serial_.open(port, {}, platform::Handshaking::None)) {
        fail(fault.text);
        ProblemReport(QStringLiteral("connecting to the radio clock"), fault.number, false, fault.text);
        return;
    }
    status_ = QStringLiteral(" Enabled");
    poll_.start(ClockPoll::Mode::Running);
    changed();
}

QString RadioClock::buttonCaption() const {
    if (testing())
        return QStringLiteral("Testing");
    return port_ < 1 || serial_.isOpen() ? QStringLiteral("Test") : QStringLiteral("Connect");
}

void RadioClock::pressButton() {
    if (closed_ || port_ < 1)
        return;
    if (testing() && serial_.isOpen())
        return endTest();
    if (!serial_.isOpen())
        connectTo(port_);
    if (!serial_.isOpen())
        return;
    strength_.clear();
    poll_.start(ClockPoll::Mode::Testing);
    changed();
}

void RadioClock::endTest() {
    if (!testing())
        return;
    poll_.start(ClockPoll::Mode::Running);
    strength_.clear();
    changed();
}

void RadioClock::close() {
    closed_ = true;
    poll_.stop();
    serial_.close();
}

// ---- Answers of the receiver

void RadioClock::receive(const QByteArray& bytes) {
    for (const ClockLine& line : reader_.take(bytes)) {
        counts_.dropped += line.kind == ClockLine::Kind::Other;
        if (onLine)
            onLine(line);
        if (line.kind == ClockLine::Kind::Time)
            takeTime(line);
        else if (line.kind == ClockLine::Kind::Strength && testing() && line.level >= 0)
            strength_.aim(ServerStrength(line.level), line.level);
    }
}

void RadioClock::takeTime(const ClockLine& line) {
    lastTime_ = line;
    lastTimeCame_ = platform::clock().now();
    difference_.reset();
    ++(line.setsClock() ? counts_.good : counts_.unusable);
    if (line.setsClock())
        setClock(line);
    lowBattery_ = line.lowBattery;
    changed();
}

void RadioClock::setClock(const ClockLine& line) {
    if (setting_)
        return;
    setting_ = true;
    const QDateTime now = platform::clock().now();
    const QDateTime moment = LocalMoment(*line.date, line.seconds, now);
    const double difference = static_cast<double>(now.msecsTo(moment)) / 1000;
    platform::clock().set(
        moment, mayAsk_,
        [this, difference, alive = std::weak_ptr<bool>(alive_)](const platform::ClockRefusal& refusal) {
            if (!alive.expired())
                clockSet(refusal, difference);
        });
}

void RadioClock::clockSet(const platform::ClockRefusal& refusal, double difference) {
    setting_ = false;
    if (!refusal) {
        difference_ = difference;
        refusal_.clear();
        poll_.clockMoved(qRound64(difference * 1000));
        if (onClockSet)
            onClockSet(difference);
        return changed();
    }
    // The user is neither asked again nor told the same every five minutes.
    mayAsk_ = false;
    if (refusal.text == refusal_)
        return;
    refusal_ = refusal.text;
    if (onError)
        onError(refusal.text);
    ProblemReport(QStringLiteral("setting the Time/Date on the computer"), refusal.number, false,
                  refusal.text);
}

} // namespace tolvex
