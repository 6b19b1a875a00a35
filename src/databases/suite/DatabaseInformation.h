// What a database says about itself in the one row of its Description table.
#pragma once

#include <QString>

namespace tolvex {

struct DatabaseInformation {
    QString FullName; // as used, with ".mdb" appended for a file
    QString FileName; // its name part
    QString Connect;  // empty for a file
    QString Description;
    float Version = 0;
    QString EngineVersion;   // of a file: "4.0", "3.0"
    qint32 Type = 0;         // DatabaseKinds.h
    QString Path;            // folder of a file; for a server the database's name
    double LastAccessed = 0; // serial date
    QString LastAccessedSoftware;
    QString LastBackup;
    bool IsServer = false;
};

// Reads it. `databaseName`: a path (".mdb" is appended if absent) or, with an ODBC connect string in
// `connect`, a name on a server. A file that the engine does not recognise is compacted, keeping the old one,
// and tried once more. Result: 0; -1 for a missing file or server database, a failed connection or a failed
// repair; else the engine's error number. An empty Description table gives 0 and no description. *information
// is untouched if the result is -1.
qint16 GetDatabaseInformation(const QString& databaseName, DatabaseInformation* information,
                              bool reportErrors, const QString& connect = {});

// Changes the description, cut to the size of its field; reports failures. Result: -1 (true) or 0.
qint16 ChangeDatabaseDescription(const QString& databaseName, const QString& newDescription,
                                 const QString& connect = {});

} // namespace tolvex
