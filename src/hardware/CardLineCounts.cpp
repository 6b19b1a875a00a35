#include "hardware/CardLineCounts.h"

#include "core/report/ProblemReport.h"
#include "core/text/Numbers.h"
#include "hardware/AdvantechDriver.h"

#include <algorithm>
#include <limits>

namespace tolvex {

namespace {

constexpr int FileNotFoundError = 53; // the run-time's number for a missing library

constexpr char connecting[] =
    "There was a problem connecting to the Advantech Card, and the error message was:";
constexpr char asking[] =
    "There was a problem getting information about the Advantech Card, and the error message was:";
constexpr char disconnecting[] =
    "There was a problem disconnecting from the Advantech Card, and the error message was:";

// Boards whose digital lines are configured by port, by the maker's number of their kind.
bool isConfiguredByPort(qint32 board) {
    return board == 6 || board == 8 || board == 9 || board == 39;
}

qint16 asCount(qint32 value) {
    return static_cast<qint16>(std::clamp(value, 0, int{std::numeric_limits<qint16>::max()}));
}

// The first three ports have eight lines each.
void countPorts(const PortModes& modes, LineCounts& counts) {
    counts.total = 3 * 8;
    counts.inputs = counts.outputs = 0;
    for (std::size_t port = 0; port < 3; ++port) {
        const qint16 mode = modes[port];
        const bool halves = mode == 3 || mode == 4;
        counts.inputs += mode == 0 ? 8 : halves ? 4 : 0;
        counts.outputs += mode == 1 ? 8 : halves ? 4 : 0;
    }
}

void askAdvantechCard(qint16 device, LineCounts& counts, DriverReports& reports) {
    counts.good = counts.answered = false;
    AdvantechDriver* driver = advantechDriver();
    if (!driver) {
        reports.add(ProblemReport(QStringLiteral("Calling the Advantech Driver"), FileNotFoundError, true));
        return;
    }
    const auto failed = [&](const char* sentence, qint32 error) {
        if (error == 0)
            return false;
        reports.add(QLatin1String(sentence) + QStringLiteral("\n\n") + driver->errorText(error));
        return true;
    };
    qint32 handle = 0;
    if (failed(connecting, driver->open(device, handle)))
        return;
    counts.good = true;
    BoardFeatures features;
    if (!failed(asking, driver->features(handle, features))) {
        counts.answered = true;
        PortModes modes{};
        if (!isConfiguredByPort(features.board)) {
            counts.inputs = asCount(features.maximumInputs);
            counts.outputs = asCount(features.maximumOutputs);
            counts.total = asCount(counts.inputs + counts.outputs);
        } else if (failed(asking, driver->portModes(handle, modes))) {
            counts.good = counts.answered = false;
        } else {
            countPorts(modes, counts);
        }
    }
    if (failed(disconnecting, driver->close(handle)))
        counts.good = counts.answered = false;
}

} // namespace

void DriverReports::show() {
    held_ = false;
    const QStringList waiting = waiting_;
    waiting_.clear();
    for (const QString& message : waiting)
        add(message);
}

void DriverReports::clear() {
    told_.clear();
    waiting_.clear();
}

void DriverReports::add(const QString& message) {
    QStringList& list = held_ ? waiting_ : told_;
    if (list.contains(message))
        return;
    list.append(message);
    if (!held_)
        ShowExclamation(message);
}

LineCounts GetCardLineCounts(qint32 cardType, qint16 baseAddress, DriverReports& reports) {
    const CardTypeRow* row = FindCardType(cardType);
    if (!row)
        return {};
    LineCounts counts{row->lines, row->inputs, row->outputs, true, true};
    if (cardType == CardAdvantech)
        askAdvantechCard(baseAddress, counts, reports);
    return counts;
}

} // namespace tolvex
