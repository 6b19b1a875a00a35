// Finds databases of one kind.
#pragma once

#include <QString>

namespace tolvex {

// Counts the databases of a type in a folder or, if `connect` holds an ODBC
// connect string ("odbc;..."), on a server. *firstName gets the file name of the
// first one (empty on a server). Stops at `maxCount` if that is above 0.
// Databases that cannot be read are skipped; those of a folder that cannot be
// repaired either are reported together. Cost: each file of the folder is opened.
qint32 FindDatabaseOfType(const QString& folder, qint32 type, QString* firstName, qint16 maxCount,
                          const QString& connect = {});

} // namespace tolvex
