// The Terminal list: the workstations of the station by their numbers.
#include "app/ctl/Commands.h"

#include "core/report/Folders.h"
#include "core/settings/Settings.h"
#include "core/settings/StoredSettings.h"
#include "network/WorkstationSetup.h"
#include "platform/Clock.h"
#include "platform/Machine.h"
#include "platform/profile/ProfileFile.h"

#include <algorithm>
#include <optional>

namespace tolvex::ctl {

namespace {

// Loads the settings and opens the list. The exit status if there is none, or nothing.
std::optional<int> open(Call& call, bool mayMakeIt) {
    if (!call.session.read())
        return call.fail(QStringLiteral("No local ini file was chosen."));
    if (!DirectoryExists(call.station.settings.DataLocation))
        return call.no(QStringLiteral("This workstation has no data location that is there."));
    TerminalList& terminals = call.station.terminals;
    const QString path = TerminalListPath(terminals);
    if (!mayMakeIt && FileLength(path) < 0)
        return call.no(QStringLiteral("There is no Terminal list %1.").arg(path));
    if (OpenTerminalList(terminals) && TerminalListIsOpen(terminals))
        return std::nullopt;
    return FileLength(path) < 0 ? call.no(QStringLiteral("The Terminal list was not made."))
                                : call.fail(QStringLiteral("%1 could not be opened.").arg(path));
}

// A number of the list, or 0.
int numberOf(const Call& call, const QString& text) {
    bool good = false;
    const int id = text.toInt(&good);
    return good && id >= 1 && id <= call.station.settings.NumberTerminals ? id : 0;
}

int wrongNumber(const Call& call) {
    return call.wrong(
        QStringLiteral("ID is a number from 1 to %1.").arg(call.station.settings.NumberTerminals));
}

int notWritten(const Call& call, int error) {
    return call.fail(QStringLiteral("%1 could not be written (error %2).")
                         .arg(TerminalListPath(call.station.terminals))
                         .arg(error),
                     error);
}

int list(Call& call) {
    if (const auto status = open(call, false))
        return *status;
    if (const QString fault = TerminalListFault(call.station.terminals); !fault.isEmpty())
        call.output.note(fault);
    QJsonArray records;
    const QList<TerminalRecord> terminals = ReadTerminals(call.station.terminals);
    for (int id = 1; id <= terminals.size(); ++id) {
        const TerminalRecord& terminal = terminals[id - 1];
        const bool own = id == call.station.settings.LinkMeshId;
        QJsonObject record{{QStringLiteral("id"), id},
                           {QStringLiteral("thisWorkstation"), own},
                           {QStringLiteral("idName"), terminal.IdName.trimmed()},
                           {QStringLiteral("networkName"), terminal.NetworkName.trimmed()},
                           {QStringLiteral("lastUsed"), terminal.lastUsed().toString(Qt::ISODate)}};
        if (own && !call.output.json())
            record[QStringLiteral("marker")] = QStringLiteral(">");
        records += record;
    }
    call.output.records(records, {{"id", "No", true},
                                  {"marker", "?"},
                                  {"idName", "Tolvex ID Name"},
                                  {"networkName", "Network Name"},
                                  {"lastUsed", "Last Used:"}});
    return Done;
}

int choose(Call& call) {
    if (const auto status = open(call, true))
        return *status;
    const int id = numberOf(call, call.argument(0));
    if (id == 0)
        return wrongNumber(call);
    TerminalList& terminals = call.station.terminals;
    const QString own = platform::ComputerName();
    const TerminalRow row =
        TerminalRows(ReadTerminals(terminals), own, platform::clock().now()).value(id - 1);
    // Whoever takes the number between this check and the change under the lock keeps it.
    const NumberOutcome stored =
        StoreNumber(id, {}, own, row.networkName.isNull() ? QStringLiteral("") : row.networkName, terminals,
                    call.station.settings);
    if (stored.listError == TerminalTaken)
        return call.no(QStringLiteral("%1 has taken number %2 at this moment.").arg(stored.holder).arg(id));
    if (stored.listError != platform::NoError)
        return notWritten(call, stored.listError);
    if (stored.iniError != platform::ProfileOk)
        return call.fail(ProfileErrorText(stored.iniError, ProfilePath(call.station.settings.LocalIniFile)),
                         stored.iniError);
    if (row.state == TerminalRow::State::Taken)
        call.output.note(QStringLiteral("Number %1 was taken over from %2.").arg(id).arg(row.networkName));
    return Done;
}

int rename(Call& call) {
    if (const auto status = open(call, true))
        return *status;
    const int id = numberOf(call, call.argument(0));
    if (id == 0)
        return wrongNumber(call);
    if (call.argument(1).trimmed().size() > TerminalNameLength)
        return call.wrong(QStringLiteral("A name has at most %1 characters.").arg(TerminalNameLength));
    const QString name = call.argument(1).trimmed();
    if (const auto wrong = std::find_if_not(name.begin(), name.end(), FitsTerminalName); wrong != name.end())
        return call.wrong(
            QStringLiteral("The file cannot hold character %1 of the name.").arg(wrong - name.begin() + 1));
    if (const int error = RenameTerminal(call.station.terminals, id, call.argument(1)))
        return notWritten(call, error);
    return Done;
}

} // namespace

CommandRows TerminalCommands() {
    return {
        {"terminals list", "", "List the workstations of the station", list},
        Changing({"terminals choose", "ID", "Make this computer the workstation of a number", choose}),
        Changing({"terminals rename", "ID NAME", "Give a workstation's number another name", rename}),
    };
}

} // namespace tolvex::ctl
