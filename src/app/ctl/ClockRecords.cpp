#include "app/ctl/ClockRecords.h"

#include "network/commands/CommandText.h"

namespace tolvex::ctl {

void AddClockLine(QJsonObject& record, const ClockLine& line, int percent) {
    constexpr const char* kinds[] = {"time", "strength", "dropped"};
    record[QStringLiteral("line")] = ShowCommandText(line.raw, false);
    record[QStringLiteral("kind")] = QLatin1String(kinds[static_cast<int>(line.kind)]);
    if (line.kind == ClockLine::Kind::Time) {
        record[QStringLiteral("valid")] = line.valid;
        record[QStringLiteral("lowBattery")] = line.lowBattery;
        record[QStringLiteral("setsClock")] = line.setsClock();
        if (!line.setsClock())
            record[QStringLiteral("whyNot")] = line.whyNot();
        if (line.date && line.seconds >= 0)
            record[QStringLiteral("dateTime")] =
                QDateTime(*line.date, QTime::fromMSecsSinceStartOfDay(line.seconds * 1000))
                    .toString(Qt::ISODate);
    } else if (line.kind == ClockLine::Kind::Strength && line.level >= 0) {
        record[QStringLiteral("strength")] = percent;
    }
}

} // namespace tolvex::ctl
