// Automatic configuration from a shell.
#include "app/ctl/Commands.h"

#include "audio/CartStore.h"
#include "audio/Hotlist.h"
#include "console/AutoConfiguration.h"
#include "console/Installation.h"
#include "core/settings/Settings.h"
#include "databases/users/UsersDatabase.h"
#include "platform/paths/Paths.h"

namespace tolvex::ctl {

namespace {

// For people the items of a kind are one line: the first one, and the number of others.
QJsonArray inShort(const QList<InstalledItem>& items) {
    QJsonArray lines;
    for (qsizetype first = 0; first < items.size();) {
        qsizetype end = first;
        QStringList missing;
        for (; end < items.size() && items[end].what == items[first].what; ++end)
            if (!items[end].present)
                missing += items[end].path;
        const qsizetype more = end - first - 1;
        lines += QJsonObject{
            {QStringLiteral("what"), items[first].what},
            {QStringLiteral("path"),
             items[first].path + (more > 0 ? QStringLiteral(" and %1 more").arg(more) : QString())},
            {QStringLiteral("state"),
             missing.isEmpty() ? QStringLiteral("there")
                               : QStringLiteral("missing: ") + missing.join(QStringLiteral(", "))}};
        first = end;
    }
    return lines;
}

// Reports the present state. The exit status says whether it is complete, and whether it can be used.
int tell(Call& call, bool usersOpened) {
    const Settings& values = call.station.settings;
    const QList<InstalledItem> items = LookAtInstallation(call.station);
    QJsonArray records;
    bool complete = true;
    for (const InstalledItem& item : items) {
        records += QJsonObject{{QStringLiteral("what"), item.what},
                               {QStringLiteral("path"), item.path},
                               {QStringLiteral("present"), item.present}};
        complete = complete && item.present;
    }
    QJsonArray carts;
    for (int part = 1; part <= CartPartCount; ++part)
        carts += values.CartPartTable[part].Location;
    if (call.output.json()) {
        call.output.record({{QStringLiteral("dataLocation"), values.DataLocation},
                            {QStringLiteral("cartLocations"), carts},
                            {QStringLiteral("linkMeshId"), values.LinkMeshId},
                            {QStringLiteral("machineFolder"), platform::MachineFolder()},
                            {QStringLiteral("items"), records}},
                           {});
    } else {
        QJsonArray lines = inShort(items);
        lines += QJsonObject{{QStringLiteral("what"), QStringLiteral("Workstation")},
                             {QStringLiteral("path"), QString::number(values.LinkMeshId)},
                             {QStringLiteral("state"), QStringLiteral("chosen")}};
        lines += QJsonObject{{QStringLiteral("what"), QStringLiteral("Machine folder")},
                             {QStringLiteral("path"), platform::MachineFolder()},
                             {QStringLiteral("state"), QStringLiteral("in use")}};
        call.output.records(lines, {{"what", "What"}, {"path", "Where"}, {"state", "State"}});
    }
    if (!complete)
        return call.fail(QStringLiteral("Not everything could be made."));
    return usersOpened || values.DataLocation.isEmpty()
               ? Done
               : call.fail(UsersDatabaseFile(values) + QStringLiteral(" could not be opened."));
}

// Loads, configures, and closes what configuration leaves open for the windows.
int configure(Call& call, InstallOutcome (*install)(Call& call)) {
    if (!call.session.read())
        return call.fail(QStringLiteral("No local ini file was chosen."));
    const InstallOutcome outcome = install(call);
    const bool usersOpened = call.station.users.database != nullptr;
    call.session.close();
    if (outcome == InstallOutcome::Configured)
        return tell(call, usersOpened);
    const QString nothing = QStringLiteral("Nothing was configured.");
    return outcome == InstallOutcome::Failed ? call.fail(nothing) : call.no(nothing);
}

int local(Call& call) {
    return configure(call, [](Call& called) { return ConfigureLocally(called.station); });
}

int network(Call& call) {
    return configure(call, [](Call& called) { return ConfigureForNetwork(called.station); });
}

int search(Call& call) {
    return configure(
        call, [](Call& called) { return ConfigureFromSearch(called.station, called.has("--network-only")); });
}

} // namespace

CommandRows AutoConfigCommands() {
    return {
        Changing({"autoconfig local", "",
                  "Configure this workstation for one local folder; make what is missing", local}),
        Changing(
            {"autoconfig network", "", "Configure it for data on drive M: and audio on drive U:", network}),
        Changing({"autoconfig search",
                  "",
                  "Search the drives for an existing system and configure this workstation for it",
                  search,
                  {{"--network-only", nullptr, "look at network drives only"}}}),
    };
}

} // namespace tolvex::ctl
