#include "network/clock/ReceiverTest.h"

namespace tolvex {

ReceiverTest::ReceiverTest(Scope scope)
    : scope_(scope)
    , serial_(QStringLiteral("the test of the radio clock"))
    , poll_([this](char byte) { return serial_.write(QByteArray(1, byte)); })
    , strength_([this] {
        if (onChanged)
            onChanged();
    }) {
    serial_.onReceived = [this](const QByteArray& bytes) { receive(bytes); };
    serial_.onFailed = [this](const QString& what) {
        if (onError)
            onError(what);
    };
}

platform::SerialFault ReceiverTest::setPort(int number) {
    poll_.stop();
    serial_.close();
    reader_.clear();
    if (number < 1)
        return {};
    if (platform::SerialFault fault = serial_.open(number, {}, platform::Handshaking::None))
        return fault;
    poll_.start(scope_ == Scope::Strength ? ClockPoll::Mode::Form : ClockPoll::Mode::Measure);
    return {};
}

void ReceiverTest::receive(const QByteArray& bytes) {
    for (const ClockLine& line : reader_.take(bytes)) {
        if (line.kind == ClockLine::Kind::Strength && line.level >= 0) {
            level_ = line.level;
            strength_.aim(TestStrength(level_), level_);
        }
        if (onLine)
            onLine(line);
    }
}

} // namespace tolvex
