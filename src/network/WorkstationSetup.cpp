#include "network/WorkstationSetup.h"

#include "core/report/ProblemReport.h"
#include "core/settings/SettingText.h"
#include "core/settings/StoredSettings.h"
#include "core/time/Dates.h"
#include "platform/files/Files.h"
#include "platform/profile/ProfileCheck.h"

namespace tolvex {

namespace {

using Outcome = WorkstationResult::Outcome;
using State = TerminalRow::State;

struct Unit {
    qint64 seconds;
    const char* name;
};
constexpr Unit units[] = {{86400, "day"}, {3600, "hour"}, {60, "minute"}};

// "3 minutes ago"; empty for a moment to come, which says nothing.
QString agoText(qint64 seconds) {
    if (seconds < 0)
        return {};
    for (const Unit& unit : units)
        if (const qint64 count = seconds / unit.seconds; count > 0)
            return QStringLiteral("%1 %2%3 ago")
                .arg(count)
                .arg(QLatin1String(unit.name))
                .arg(count == 1 ? "" : "s");
    return QStringLiteral("just now");
}

TerminalRow rowOf(int id, const TerminalRecord& record, const QString& ownName, const QDateTime& now) {
    TerminalRow row;
    row.id = id;
    row.idName = record.IdName.trimmed();
    row.networkName = NetworkNameOf(record);
    const QDateTime used = record.lastUsed();
    if (used.isValid())
        row.lastUsed = ShortDate(used.date()) + used.time().toString(QStringLiteral(" HH:mm:ss"));
    if (row.networkName.isEmpty()) {
        row.stateText = QStringLiteral("free");
    } else if (IsOnComputer(record, ownName)) {
        row.state = State::Own;
        row.stateText = QStringLiteral("this computer");
    } else {
        row.state = State::Taken;
        const QString ago = used.isValid() ? agoText(used.secsTo(now)) : QString();
        row.stateText = ago.isEmpty() ? row.networkName : row.networkName + QStringLiteral(", ") + ago;
    }
    return row;
}

} // namespace

QList<TerminalRow> TerminalRows(const QList<TerminalRecord>& records, const QString& ownName,
                                const QDateTime& now) {
    QList<TerminalRow> rows;
    for (const TerminalRecord& record : records)
        rows += rowOf(static_cast<int>(rows.size()) + 1, record, ownName, now);
    return rows;
}

QString TakeoverNotice(const TerminalRow& row) {
    if (row.state != State::Taken)
        return {};
    return QStringLiteral("Number %1 belongs to another computer (%2). OK takes it over.")
        .arg(row.id)
        .arg(row.stateText);
}

NumberOutcome StoreNumber(int id, const QStringList& idNames, const QString& ownName, const QString& seenName,
                          TerminalList& terminals, Settings& values) {
    const SettingRow& row = RowOf<&Settings::LinkMeshId>();
    const QString& file = values.LocalIniFile;
    const QString text = QString::number(id);
    NumberOutcome outcome;
    // A name can be changed while the file is write-protected: the number in it stays.
    const bool isStored = StoredTextOf(row, 0, file) == text;
    outcome.iniError = isStored ? platform::ProfileOk : platform::CheckProfileWrite(file);
    if (outcome.iniError != platform::ProfileOk)
        return outcome;
    outcome.listError = AssignTerminal(terminals, id, idNames, ownName, seenName, &outcome.holder, [&] {
        outcome.iniError = isStored ? platform::ProfileOk : WriteSettingText(row, text, file);
        return outcome.iniError == platform::ProfileOk;
    });
    if (outcome.listError == platform::NoError && outcome.iniError == platform::ProfileOk)
        values.LinkMeshId = id;
    return outcome;
}

WorkstationResult StoreWorkstations(const WorkstationChoice& choice, const QString& ownName,
                                    TerminalList& terminals, Settings& values) {
    if (choice.chosenId <= 0 || choice.chosenId > values.NumberTerminals)
        return {Outcome::NotChosen,
                QStringLiteral("You must choose which LinkMesh ID you will use for this workstation")};
    if (!OpenTerminalList(terminals) || !TerminalListIsOpen(terminals)) {
        if (platform::FileSize(TerminalListPath(terminals)) >= 0)
            return {Outcome::Failed,
                    QStringLiteral("%1 could not be opened.").arg(TerminalListPath(terminals))};
        return {Outcome::NoList, QStringLiteral("There is no Terminal List, so nothing was stored.")};
    }
    QStringList names(values.NumberTerminals); // null texts: the names stay
    for (auto name = choice.names.begin(); name != choice.names.end(); ++name)
        if (name.key() >= 1 && name.key() <= names.size())
            names[name.key() - 1] = name.value().isNull() ? QStringLiteral("") : name.value();
    // A null name would take the number from anybody; here it means that the number was free.
    const QString seen = choice.seenName.isNull() ? QStringLiteral("") : choice.seenName;
    const NumberOutcome stored = StoreNumber(choice.chosenId, names, ownName, seen, terminals, values);
    CloseTerminalList(terminals);
    if (stored.listError == TerminalTaken)
        return {Outcome::TakenSince,
                QStringLiteral("%1 has taken number %2 in the meantime. Choose another number, or press OK "
                               "again to take it over.")
                    .arg(stored.holder)
                    .arg(choice.chosenId)};
    if (stored.listError != platform::NoError)
        return {Outcome::Failed,
                ProblemReport(QStringLiteral("writing the Terminal List"), stored.listError, true)};
    if (stored.iniError != platform::ProfileOk)
        return {Outcome::Failed, ProfileErrorText(stored.iniError, ProfilePath(values.LocalIniFile))};
    return {};
}

} // namespace tolvex
