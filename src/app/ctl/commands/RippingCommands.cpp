// The settings for CD ripping, which lie beside the audio.
#include "app/ctl/Commands.h"
#include "app/ctl/SetupOutput.h"

#include "audio/ripping/RippingSetup.h"
#include "console/ConsoleJobs.h"
#include "core/settings/SettingsLoader.h"

namespace tolvex::ctl {

namespace {

// In the order of RippingRows().
const Columns columns = {
    {"askBeforeProcess", "Ask before processing"},
    {"autoTopAudio", "Trim silence at the start"},
    {"normaliseAudioPercent", "Normalise to (percent, 0 not at all)"},
    {"allowCddb", "Look up CD titles"},
    {"serverAddress", "Server of CD titles"},
    {"emailAddress", "E-mail address"},
    {"allowSubmit", "Users may submit titles"},
};

// False, with the exit status in *status, when there is no file of these settings: the window is not opened
// then, with the same words.
bool read(Call& call, int* status) {
    if (!ReadForSetup(call, status))
        return false;
    const ConsoleJob* job = FindConsoleJob(QStringLiteral("cmdCDRipping"));
    if (CheckHolds(job->check, call.station.settings))
        return true;
    *status = call.no(QString::fromLatin1(job->message));
    return false;
}

QJsonValue valueOf(const SettingRow& row, Settings& settings) {
    const QString text = StoredText(row, 0, settings).value_or(QString());
    if (row.kind == SettingKind::Flag)
        return text.toInt() != 0;
    return row.kind == SettingKind::Number ? QJsonValue(text.toInt()) : QJsonValue(text);
}

int show(Call& call) {
    int status = Done;
    if (!read(call, &status))
        return status;
    Settings stored = RippingSettingsOf(LoadRippingSetup(call.station.settings));
    QJsonObject record;
    for (std::size_t at = 0; at < columns.size(); ++at)
        record[QLatin1String(columns[at].key)] = valueOf(*RippingRows()[at], stored);
    call.output.record(record, columns);
    return Done;
}

int set(Call& call) {
    int status = Done;
    if (!read(call, &status))
        return status;
    const QString key = call.argument(0);
    QStringList known;
    for (const SettingRow* row : RippingRows()) {
        known += QLatin1String(row->key);
        if (key.compare(known.last(), Qt::CaseInsensitive) != 0)
            continue;
        RippingSetup shown = LoadRippingSetup(call.station.settings);
        RippingSetup setup = shown;
        QString why;
        if (!SetRippingValue(setup, *row, call.argument(1), &why))
            return call.wrong(QStringLiteral("%1: %2").arg(known.last(), why));
        return EndSetup(call, StoreRippingSetup(setup, shown, call.station.settings));
    }
    return call.wrong(QStringLiteral("KEY is one of %1.").arg(known.join(QStringLiteral(", "))));
}

} // namespace

CommandRows RippingCommands() {
    return {
        {"ripping show", "", "Show what is done to audio from CDs, and where CD titles are looked up", show},
        Changing({"ripping set", "KEY VALUE", "Change one of these settings by its key in Audwall.ini", set}),
    };
}

} // namespace tolvex::ctl
