// Makes sure that a database exists, opens, and has a description.
#pragma once

#include <QString>

#include <functional>

namespace tolvex {

class SuiteDatabase;

// Characters of the Description field, which holds the title of a database.
constexpr int LongestTitle = 200;

// Fills a new database with its content. 0 or, reported, the number of the error.
using DatabaseContents = std::function<int(SuiteDatabase&)>;

// Makes sure that the database exists and has a filled Description table; creates what is missing and changes
// nothing that exists. `databaseName`: a path (".mdb" is appended if absent) or, with an ODBC connect string
// in `connect`, a name on a server. `silentMode`: the user is asked nothing. *title: the description for a
// database that has none; asked for if empty, and set to what is stored. A file of no bytes is made anew. A
// new file gets its name when it is complete: with its description and with `contents`, which is called for a
// new file only; if that fails there is no file. If several workstations make a file at the same time one
// succeeds, and the others find it. Result: 0; -1 if the user declined; else, reported, the number of the
// error.
qint16 ValidateDatabase(const QString& databaseName, qint32 type, bool silentMode, QString* title,
                        const QString& connect = {}, const DatabaseContents& contents = {});

} // namespace tolvex
