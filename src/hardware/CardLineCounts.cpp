#include "hardware/CardLineCounts.h"

#include "core/Numbers.h"
#include "core/ProblemReport.h"
#include "hardware/AdvantechDriver.h"

#include <limits>

namespace tolvex {

namespace {

constexpr int FileNotFoundError = 53; // the run-time's number for a library that is not there

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

struct Counts {
    qint32 inputs = 0;
    qint32 outputs = 0;
};

// The first three ports have eight lines each.
Counts countPorts(const PortModes& modes) {
    Counts counts;
    for (std::size_t port = 0; port < 3; ++port) {
        switch (modes[port]) {
        case 0:
            counts.inputs += 8;
            break;
        case 1:
            counts.outputs += 8;
            break;
        case 3:
        case 4:
            counts.inputs += 4;
            counts.outputs += 4;
            break;
        default:
            break;
        }
    }
    return counts;
}

qint16 asCount(qint32 value) {
    return static_cast<qint16>(HeldBetween(value, 0, int{std::numeric_limits<qint16>::max()}));
}

bool askAdvantechCard(qint16 device, qint16& total, qint16& inputs, qint16& outputs, DriverReports& reports) {
    AdvantechDriver* driver = advantechDriver();
    if (!driver) {
        reports.add(ProblemReport(QStringLiteral("Calling the Advantech Driver"), FileNotFoundError, true));
        return false;
    }
    const auto failed = [&](const char* sentence, qint32 error) {
        if (error == 0)
            return false;
        reports.add(QLatin1String(sentence) + QStringLiteral("\n\n") + driver->errorText(error));
        return true;
    };
    qint32 handle = 0;
    if (failed(connecting, driver->open(device, handle)))
        return false;
    bool good = true;
    BoardFeatures features;
    if (!failed(asking, driver->features(handle, features))) {
        PortModes modes{};
        if (!isConfiguredByPort(features.board)) {
            inputs = asCount(features.maximumInputs);
            outputs = asCount(features.maximumOutputs);
            total = asCount(inputs + outputs);
        } else if (failed(asking, driver->portModes(handle, modes))) {
            good = false;
        } else {
            const Counts counts = countPorts(modes);
            inputs = asCount(counts.inputs);
            outputs = asCount(counts.outputs);
            total = 3 * 8;
        }
    }
    if (failed(disconnecting, driver->close(handle)))
        good = false;
    return good;
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

bool GetCardLineCounts(qint32 cardType, qint16 baseAddress, qint16& total, qint16& inputs, qint16& outputs,
                       DriverReports& reports) {
    const CardTypeRow* row = FindCardType(cardType);
    total = row ? row->lines : qint16(0);
    inputs = row ? row->inputs : qint16(0);
    outputs = row ? row->outputs : qint16(0);
    if (!row)
        return false;
    return cardType != CardAdvantech || askAdvantechCard(baseAddress, total, inputs, outputs, reports);
}

bool GetCardLineCounts(qint32 cardType, qint16 baseAddress, qint16& total, qint16& inputs, qint16& outputs) {
    DriverReports reports;
    return GetCardLineCounts(cardType, baseAddress, total, inputs, outputs, reports);
}

} // namespace tolvex
