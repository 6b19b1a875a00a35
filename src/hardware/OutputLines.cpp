#include "hardware/OutputLines.h"

namespace tolvex {

void (*WriteHardwareOutputs)(int card, int line) = nullptr;

namespace {

constexpr qint64 hundredthsADay = 86400 * 100;
constexpr double PulseSeconds = 1;

qint16 busy = 0;

bool apply(HardwareLine& line, OutputLineState state) {
    switch (state) {
    case OutputLineState::Off:
    case OutputLineState::On:
    case OutputLineState::Flash:
        line.PulseEnd = {};
        break;
    case OutputLineState::Pulse:
        line.PulseEnd = AddHundredths(CurrentDayTime(), PulseSeconds);
        break;
    default:
        return false;
    }
    line.OutputState = state == OutputLineState::Off ? 0 : -1;
    line.Flashing = state == OutputLineState::Flash ? -1 : 0;
    return true;
}

bool fits(qint32 wanted, qint32 value) {
    return wanted == AnyData || wanted == value;
}

} // namespace

qint16 HardwareBusy() {
    return busy;
}

DayTime AddHundredths(const DayTime& time, double seconds) {
    const qint64 added = qRound64(seconds * 100);
    qint64 day = time.Day + added / hundredthsADay;
    qint64 rest = qRound64(static_cast<double>(time.Seconds) * 100) + added % hundredthsADay;
    if (rest >= hundredthsADay) {
        rest -= hundredthsADay;
        ++day;
    }
    return {static_cast<qint32>(day), static_cast<float>(static_cast<double>(rest) / 100)};
}

bool SetOutputLine(HardwareCardTable& cards, qint32 lineNumber, OutputLineState state) {
    if (lineNumber < 1 || lineNumber > HardwareCardCount * LinesPerCard)
        return false;
    const int number = (lineNumber - 1) / LinesPerCard + 1;
    const int line = (lineNumber - 1) % LinesPerCard + 1;
    HardwareCard& card = cards[number];
    if (card.CardType == CardDisabled)
        return true;
    busy = -1;
    if (apply(card.Lines[line], state) && WriteHardwareOutputs)
        WriteHardwareOutputs(number, line);
    busy = 0;
    return true;
}

void SetLinesForAction(HardwareCardTable& cards, qint32 action, OutputLineState state, qint32 data1,
                       qint32 data2, qint32 data3, qint32 data4, bool outputsOnly) {
    const std::array<qint32, 4> wanted = {data1, data2, data3, data4};
    for (int number = 1; number <= HardwareCardCount; ++number) {
        const HardwareCard& card = cards[number];
        if (card.CardType == CardDisabled)
            continue;
        for (int n = 1; n <= LinesPerCard; ++n) {
            const HardwareLine& line = card.Lines[n];
            if (line.Action == action && (line.isOutput() || !outputsOnly) &&
                std::equal(wanted.begin(), wanted.end(), line.ActionData.begin(), fits))
                SetOutputLine(cards, (number - 1) * LinesPerCard + n, state);
        }
    }
}

} // namespace tolvex
