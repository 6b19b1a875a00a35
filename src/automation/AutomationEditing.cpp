#include "automation/AutomationEditing.h"

#include "core/report/Folders.h"
#include "core/report/ProblemReport.h"
#include "core/settings/Settings.h"
#include "databases/store/Report.h"
#include "databases/users/UsersDatabase.h"
#include "platform/Prompts.h"
#include "platform/paths/Paths.h"

namespace tolvex {

namespace {

constexpr int MostLines = 12; // of changes in a message

} // namespace

std::optional<AutomationSave> LastAutomationSave(UsersState& users) {
    if (!users.database)
        return std::nullopt;
    try {
        const auto rows = users.database->open(
            QStringLiteral("SELECT * FROM [UserHistory] WHERE [Action]=%1 ORDER BY [EventTime] DESC")
                .arg(AutomationSettingsSaved),
            RecordsetMode::Dynaset);
        if (rows->eof())
            return std::nullopt;
        return AutomationSave{rows->value(QStringLiteral("EventTime")).toDateTime(),
                              rows->value(QStringLiteral("LoginName")).toString(),
                              rows->value(QStringLiteral("ComputerName")).toString()};
    } catch (const DatabaseError& error) {
        KeepSilent(error); // the message does without
        return std::nullopt;
    }
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
    if (result > 0) { // a database that was never configured is one to be configured here
        if (const QString item = ItemOutOfRange(*database_, settings_.DataLocation); !item.isEmpty())
            ShowExclamation(
                QStringLiteral("The setting %1 of %2 holds a number that is too large for it, and none "
                               "of those after it could be read. Give it a sound value first: "
                               "\"tolvexctl db settings set\" does.")
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
    AddEventToUserHistory(users_, users_.currentLogin, AutomationSettingsSaved, EventSucceeded, {});
    return true;
}

bool AutomationEditing::mayOverwrite(const QList<AutomationChange>& changes) {
    using namespace platform;
    const PointerKeeper pointer(Pointer::Default);
    QString who = QStringLiteral("Another workstation");
    if (const auto save = LastAutomationSave(users_))
        who = QStringLiteral("%1 (last stored at %2 on %3)")
                  .arg(save->login.isEmpty() ? who : save->login,
                       save->time.toString(QStringLiteral("HH:mm:ss")), save->computer);
    QString lines;
    for (qsizetype at = 0; at < qMin<qsizetype>(changes.size(), MostLines); ++at)
        lines += QStringLiteral("%1: \"%2\", was \"%3\"\n")
                     .arg(changes[at].item, changes[at].now, changes[at].before);
    if (changes.size() > MostLines)
        lines += QStringLiteral("and %1 more\n").arg(changes.size() - MostLines);
    return prompts().ask({QStringLiteral("%1 has changed settings of this database since they were shown "
                                         "here:\n\n%2\nDo you want to overwrite them with yours?")
                              .arg(who, lines),
                          Icon::Question, Buttons::YesNo, Answer::No}) == Answer::Yes;
}

} // namespace tolvex
