// Exported settings that come back from outside, and the short texts of settings files: dates, numbers,
// times.
#include "Require.h"

#include "core/Dates.h"
#include "core/Numbers.h"
#include "core/SettingsDocument.h"
#include "core/TimeText.h"
#include "platform/Paths.h"

#include <QTemporaryDir>

#include <cmath>

using namespace tolvex;

namespace {

void readText(const QString& text) {
    require(std::isfinite(LeadingNumber(text)));
    if (const std::optional<double> date = ParseDate(text)) {
        // What is written of it reads back as the same second.
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

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const QTemporaryDir folder;
    static const bool ready = platform::SetMachineFolder(folder.path());
    require(ready);
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const SettingsImport plan = PlanImport(
        bytes, {QStringLiteral("C:\\A.INI"), QStringLiteral("C:\\B.INI"), QStringLiteral("C:\\C.INI")});
    for (const SettingsImport::Change& change : plan.changes)
        require(CheckSettingValue(*change.place.row, change.after, nullptr).has_value());
    readText(QString::fromLatin1(bytes.left(200)));
    return 0;
}
