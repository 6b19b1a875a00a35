// Names that users give to database files, what is asked before one goes, and the copy that a user makes.
#pragma once

#include <QStringList>

#include <functional>

namespace tolvex {

// Why a name cannot be given to a new database, a sentence; empty when it can.
QString DatabaseNameFault(const QString& name);

// The file name that a database is renamed to: with ".MDB" unless there is a point in it.
QString RenamedDatabase(const QString& given);

// The two questions, each of which has to be answered with Yes. `title`: of the kind, "K-Ova V2.6 Database".
QStringList DeletionQuestions(const QString& title, const QString& description);

// Copies a database (CopyDatabaseFile), which then says of itself that it is a copy. False: it was stopped.
// After an error or a stop there is no copy.
bool CopyDatabase(const QString& from, const QString& to,
                  const std::function<bool(qint64 done, qint64 total)>& step);

} // namespace tolvex
