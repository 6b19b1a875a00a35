// Making sure that a database exists, opens, and says what it is.
#pragma once

#include <QString>

#include <functional>

namespace tolvex {

class SuiteDatabase;

// Characters of the Description field, where the title of a database stands.
constexpr int LongestTitle = 200;

// Puts into a database what it is to have. 0 or, reported, the number of the error.
using DatabaseContents = std::function<int(SuiteDatabase&)>;

// Makes sure that the database exists and has a filled Description table; creates what is missing and changes
// nothing that is there. `databaseName`: a path (".mdb" is added if absent) or, with an ODBC connect string
// in `connect`, a name on a server. `silentMode`: nothing is asked of the user. *title: the description of a
// database that has none; asked for when it is empty, and set to what is stored. A file of no bytes is made
// anew. A new file gets its name when it is whole: with its description and with `contents`, which is called
// for a new file only; when that fails there is no file. Of several workstations that make a file at the same
// time one does, and the others find it. Result: 0; -1 when the user declined; else, reported, the number of
// the error.
qint16 ValidateDatabase(const QString& databaseName, qint32 type, bool silentMode, QString* title,
                        const QString& connect = {}, const DatabaseContents& contents = {});

} // namespace tolvex
