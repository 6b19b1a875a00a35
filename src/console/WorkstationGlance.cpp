#include "console/WorkstationGlance.h"

#include "audio/DeviceIdentity.h"
#include "audio/WaveSearch.h"
#include "audio/transfers/TransferSetup.h"
#include "station/CheckConfiguration.h"
#include "station/Workstation.h"

namespace tolvex {

namespace {

// Where each finding of the check (identified by a piece of its text) can be corrected, and the line shown if
// it is absent.
struct Row {
    const char* finding;
    const char* control;
    const char* done; // empty: another row of the same subject has it
};
constexpr Row rows[] = {
    {"The Data Location", "cmdFileLocations", "Data location found"},
    {"AudioWall Location/s have not been set", "cmdFileLocations", ""},
    {"AudioWall Location/s could not be found", "cmdFileLocations", "Audiowall locations found"},
    {"LinkMesh ID", "cmdLinkmeshSetup", "Workstation chosen"},
    {"Default Audio Format", "cmdAudioSetup", "Default audio format set"},
};

QString orNotSet(const QString& text) {
    return text.isEmpty() ? QStringLiteral("not set") : text;
}

} // namespace

WorkstationGlance LookAtWorkstation(Workstation& station) {
    const Settings& s = station.settings;
    WorkstationGlance glance;
    const QStringList lines = CheckConfiguration(station).split(u'\n', Qt::SkipEmptyParts);
    for (const QString& line : lines)
        for (const Row& row : rows)
            if (line.contains(QLatin1String(row.finding)))
                glance.toDo.append({line, QString::fromLatin1(row.control)});
    for (const Row& row : rows) {
        const bool found = std::any_of(lines.begin(), lines.end(), [&row](const QString& line) {
            return line.contains(QLatin1String(row.finding));
        });
        if (!found && *row.done)
            glance.done.append(QString::fromLatin1(row.done));
    }
    for (const QString& moved : MovedDeviceTexts(s))
        glance.toDo.append({moved, QStringLiteral("cmdAudioSetup")});
    if (const QString fault = TransferFault(s); !fault.isEmpty())
        glance.toDo.append({fault, QStringLiteral("cmdOPAL")});
    int open = 0;
    for (int part = 1; part <= CartPartCount; ++part)
        open += s.CartPartTable[part].IsOpen ? 1 : 0;
    if (open > 0)
        glance.done.append(QStringLiteral("%1 cart list%2 open").arg(open).arg(open == 1 ? "" : "s"));

    glance.facts = {
        {QStringLiteral("Configuration"), orNotSet(s.ConfigName), false},
        {QStringLiteral("Data location"), orNotSet(s.DataLocation), s.DataLocation.isEmpty()},
        {QStringLiteral("LinkMesh ID"), s.LinkMeshId < 1 ? orNotSet({}) : QString::number(s.LinkMeshId),
         s.LinkMeshId < 1},
        {QStringLiteral("Cart players"),
         QStringLiteral("%1 of %2 devices").arg(s.TotalNumberCartPlayers).arg(CountSuitableOutputs(44100, 1)),
         false},
        {QStringLiteral("Carts"), QString::number(s.NoCarts), false},
    };
    return glance;
}

} // namespace tolvex
