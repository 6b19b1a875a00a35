// Finds entries of the automation log whose texts name something that is about to be removed.
#pragma once

#include <QList>
#include <QString>

#include <functional>

namespace tolvex {

struct Settings;

struct LogMention {
    double entry = 0; // its number in the log (KIndex)
    QString field;    // "ItemReference"
    QString text;     // of the field
};

// The database of a workstation's automation log; empty when none is chosen.
QString AutomationLogPath(const Settings& values);

// Entries of the log in the database that have a text which fits: the first such text of each, and at most
// `highest` entries. None, with a sentence in *why, when the database cannot be read.
QList<LogMention> FindInAutomationLog(const QString& path, const std::function<bool(const QString&)>& fits,
                                      int highest, QString* why = nullptr);

} // namespace tolvex
