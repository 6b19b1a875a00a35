// What the automation log says: entries whose texts name something that is about to go.
#pragma once

#include <QList>
#include <QString>

#include <functional>

namespace tolvex {

struct Settings;

struct LogMention {
    double entry = 0; // its number in the log (KIndex)
    QString field;    // "ItemReference"
    QString text;     // what stands there
};

// The database of a workstation's automation log; empty when none is chosen.
QString AutomationLogPath(const Settings& values);

// Entries of the log in the database that have a text which fits, the first such text of each, at most
// `highest` of them. A database that cannot be read gives nothing, with a sentence in *why.
QList<LogMention> FindInAutomationLog(const QString& path, const std::function<bool(const QString&)>& fits,
                                      int highest, QString* why = nullptr);

} // namespace tolvex
