#include "automation/AutomationEditing.h"

#include "core/report/Folders.h"
#include "core/report/ProblemReport.h"
#include "core/settings/Settings.h"
#include "databases/store/Report.h"
#include "databases/users/UsersDatabase.h"
#include "platform/Clock.h"
#include "platform/Prompts.h"
#include "platform/paths/Paths.h"

#include <QLocale>

namespace tolvex {

namespace {

constexpr qsizetype MostLines = 12; // of changes in a message
constexpr qsizetype MostSaves = 3;  // in a message

// "ANN on STUDIO2 at 14:38:33", with the date unless it is today.
QString inWords(const AutomationSave& save) {
    const QDate day = save.time.date();
    QString text =
        save.login.isEmpty() ? save.computer : QStringLiteral("%1 on %2").arg(save.login, save.computer);
    if (day != platform::clock().now().date())
        text += QStringLiteral(" on ") + QLocale::system().toString(day, QLocale::ShortFormat);
    return text + save.time.toString(QStringLiteral(" 'at' HH:mm:ss"));
}

} // namespace

QList<AutomationSave> AutomationSaves(UsersState& users) {
    QList<AutomationSave> saves;
    if (!users.database)
        return saves;
    try {
        const auto rows = users.database->open(
            QStringLiteral("SELECT * FROM [UserHistory] WHERE [Action]=%1 ORDER BY [EventTime] DESC")
                .arg(AutomationSettingsSaved),
            RecordsetMode::Dynaset);
        for (; !rows->eof(); rows->moveNext())
            saves.append({rows->value(QStringLiteral("EventTime")).toDateTime(),
                          rows->value(QStringLiteral("LoginName")).toString(),
                          rows->value(QStringLiteral("ComputerName")).toString()});
    } catch (const DatabaseError& error) {
        KeepSilent(error); // the message names nobody then
    }
    return saves;
}

AutomationEditing::AutomationEditing(KOVADatabaseSettings& record, const Settings& settings,
                                     UsersState& users)
    : record_(record)
    , settings_(settings)
    , users_(users) {}

AutomationEditing::~AutomationEditing() = default;

bool AutomationEditing::open(const QString& databaseName, const QString& connect) {
    close();
    if (connect.isEmpty() && FileLength(databaseName) <= 0)
        return false;
    for (const AutomationSave& save : AutomationSaves(users_))
        knownSaves_.insert(save.time);
    try {
        database_ = OpenSuiteDatabase(databaseName, connect);
    } catch (const DatabaseError& error) {
        Report(QStringLiteral("opening the database"), error);
        return false;
    }
    if (connect.isEmpty())
        file_ = platform::StampOf(platform::HostPath(databaseName));
    record_.FileName = databaseName;
    const qint32 result = LoadKOVASettings(*database_, record_, settings_.DataLocation);
    if (result > 0) { // a database that was never configured can be configured here
        if (const QString item = ItemOutOfRange(*database_, settings_.DataLocation); !item.isEmpty())
            ShowExclamation(
                QStringLiteral("The setting %1 of %2 holds a number that is too large for it, so the "
                               "settings after it could not be read. Give it a smaller number first, "
                               "with \"tolvexctl db settings set\".")
                    .arg(item, databaseName));
        close();
        return false;
    }
    loaded_ = record_;
    return true;
}

void AutomationEditing::close() {
    database_.reset();
    file_.reset();
    knownSaves_.clear();
}

bool AutomationEditing::isStillThere() const {
    if (!file_)
        return true;
    const auto now = platform::StampOf(platform::HostPath(record_.FileName));
    return now && now->device == file_->device && now->number == file_->number;
}

bool AutomationEditing::store() {
    if (!database_)
        return false;
    if (!isStillThere()) {
        ShowExclamation(
            QStringLiteral("%1 was removed or replaced while its settings were being edited. Nothing "
                           "has been stored.")
                .arg(record_.FileName));
        return false;
    }
    const platform::PointerKeeper pointer(platform::Pointer::Wait);
    if (StoreKOVASettings(*database_, record_, loaded_, settings_.DataLocation,
                          [this](const auto& changes) { return mayOverwrite(changes); }) != 0)
        return false;
    if (const auto time =
            AddEventToUserHistory(users_, users_.currentLogin, AutomationSettingsSaved, EventSucceeded, {}))
        knownSaves_.insert(*time);
    return true;
}

// The history may name nobody: its entry comes after the settings, and can be switched off.
QString AutomationEditing::whoStored() {
    QStringList who;
    for (const AutomationSave& save : AutomationSaves(users_)) {
        if (knownSaves_.contains(save.time))
            continue;
        knownSaves_.insert(save.time);
        if (who.size() < MostSaves)
            who += inWords(save);
    }
    return who.isEmpty()
               ? QStringLiteral("Another workstation has changed settings of this database since "
                                "they were shown here")
               : QStringLiteral("Settings of this database have changed since they were shown here. "
                                "Since then settings were stored by ") +
                     who.join(QStringLiteral(", "));
}

bool AutomationEditing::mayOverwrite(const QList<AutomationChange>& changes) {
    using namespace platform;
    const PointerKeeper pointer(Pointer::Default);
    QString lines;
    for (qsizetype at = 0; at < qMin(changes.size(), MostLines); ++at)
        lines += QStringLiteral("%1: \"%2\", was \"%3\"\n")
                     .arg(changes[at].item, changes[at].now, changes[at].before);
    if (changes.size() > MostLines)
        lines += QStringLiteral("and %1 more\n").arg(changes.size() - MostLines);
    return prompts().ask({QStringLiteral("%1:\n\n%2\nDo you want to overwrite them with yours?")
                              .arg(whoStored(), lines),
                          Icon::Question, Buttons::YesNo, Answer::No}) == Answer::Yes;
}

} // namespace tolvex
