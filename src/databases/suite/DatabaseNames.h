// Names that users give to database files, the questions before one is deleted, and copies that users make.
#pragma once

#include <QStringList>

#include <functional>

namespace tolvex {

// Why a name cannot be given to a new database, a sentence; empty when it can.
QString DatabaseNameFault(const QString& name);

// The file name that a database gets when a user renames it: ".MDB" is added unless the name has a point.
QString RenamedDatabase(const QString& given);

// The two questions before a delete; both need a Yes. `title`: that of the kind, "K-Ova V2.6 Database".
QStringList DeletionQuestions(const QString& title, const QString& description);

// Copies a database (CopyDatabaseFile) and writes into the copy's description that it is one. Result: false
// when it was stopped. There is no copy after a stop or an error.
bool CopyDatabase(const QString& from, const QString& to,
                  const std::function<bool(qint64 done, qint64 total)>& step);

} // namespace tolvex
