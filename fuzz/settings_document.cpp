// Exported settings that come back from outside, and the short texts of settings files: dates, numbers,
// times.
#include "Require.h"

#include "core/exchange/SettingsImport.h"
#include "core/text/Numbers.h"
#include "core/time/Dates.h"
#include "core/time/TimeText.h"
#include "platform/files/Files.h"
#include "platform/paths/Paths.h"

#include <QTemporaryDir>

#include <cmath>

using namespace tolvex;

namespace {

void readText(const QString& text) {
    require(std::isfinite(LeadingNumber(text)));
    if (const std::optional<double> date = ParseDate(text)) {
        // Its written form reads back as the same second.
        const QString written = DateText(FromSerialDate(*date));
        const std::optional<double> again = ParseDate(written);
        require(again && std::abs(*again - *date) < 1.0 / 86400);
    }
    for (int format : {0, 1, 2, 3, 4}) {
        const double seconds = TimeToSeconds(text, format);
        require(seconds >= 0 || seconds == -1);
        if (seconds >= 0 && seconds < 86400 && format < 2)
            require(std::abs(TimeToSeconds(SecondsToTime(seconds, format), format) - seconds) < 0.0051);
    }
}

// The imported settings are exported and imported by another station, with the same result.
void takeOver(const QByteArray& bytes, const QString& station, ImportPlan plan) {
    if (!plan.usable() || plan.files.isEmpty())
        return;
    for (const ImportPlan::File& file : plan.files)
        if (file.path != station && !file.path.startsWith(QStringLiteral("C:\\")))
            return; // drives of the machine that runs the fuzzer
    if (!ApplyImport(plan))
        return;
    const ImportPlan again = PlanImport(bytes, station, {});
    require(again.usable() && again.files.isEmpty());
    const Settings values = LoadFrom({station, {}, {}});
    const QByteArray document = ExportSettings(
        {station, SystemIniIn(values.DataLocation), AudiowallIniIn(values.CartPartTable[1].Location)});
    require(PlanImport(document, QStringLiteral("C:\\B.INI"), {}).usable());
    for (const ImportPlan::File& file : plan.files)
        platform::RemoveFile(file.path);
    for (const QString& backup : plan.backups)
        platform::RemoveFile(backup);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const QTemporaryDir folder;
    static const bool ready = platform::SetMachineFolder(folder.path());
    require(ready);
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const QString station = QStringLiteral("C:\\A.INI");
    const ImportPlan plan = PlanImport(bytes, station, {});
    for (const ImportPlan::File& file : plan.files)
        require(!file.path.isEmpty() && !file.changes.isEmpty());
    takeOver(bytes, station, plan);
    readText(QString::fromLatin1(bytes.left(200)));
    return 0;
}
