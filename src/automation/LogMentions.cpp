#include "automation/LogMentions.h"

#include "core/settings/Settings.h"
#include "databases/store/SuiteDatabase.h"

namespace tolvex {

namespace {

// The fields of an entry that hold names and texts for people.
constexpr const char* textFields[] = {"ItemReference",      "SchedulerReference", "HDReference",
                                      "Description1",       "Description2",       "Description3",
                                      "Description4",       "InformationString1", "InformationString2",
                                      "InformationString3", "InformationString4"};

} // namespace

QString AutomationLogPath(const Settings& values) {
    if (values.DefaultDatabase.isEmpty() || values.DataLocation.isEmpty())
        return {};
    return values.DataLocation + QStringLiteral("\\SCHEDULE\\") + values.DefaultDatabase;
}

QList<LogMention> FindInAutomationLog(const QString& path, const std::function<bool(const QString&)>& fits,
                                      int highest, QString* why) {
    QList<LogMention> found;
    try {
        const auto database = OpenSuiteDatabase(path);
        const auto rows = database->open(QStringLiteral("Log"), RecordsetMode::Table);
        for (; !rows->eof() && found.size() < highest; rows->moveNext()) {
            for (const char* name : textFields) {
                const QString field = QLatin1String(name);
                const QString text = rows->value(field).toString();
                if (!fits(text))
                    continue;
                found += LogMention{rows->value(QStringLiteral("KIndex")).toDouble(), field, text};
                break;
            }
        }
    } catch (const DatabaseError& error) {
        if (why)
            *why = QStringLiteral("%1 could not be read: %2").arg(path, error.text);
    }
    return found;
}

} // namespace tolvex
