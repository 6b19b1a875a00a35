// Converts the error of a server or its driver to the error number that programs of the suite know.
#pragma once

#include "databases/store/SuiteDatabase.h"

#include <QList>

namespace tolvex {

// One diagnostic record of the driver manager about a failed call.
struct OdbcDiagnostic {
    QString state;  // five characters of the standard: "23000"
    int native = 0; // the server's own number: 2627
    QString text;
};

// The error for a failed call: the number of the first record with a known
// meaning, else ServerCallFailed. Its text is the engine's sentence, then
// all messages of the server, each with the server's number.
DatabaseError FromServer(const QList<OdbcDiagnostic>& records);

// The error for a connection that was not made, whatever the reason.
DatabaseError NotConnected(const QString& server, const QList<OdbcDiagnostic>& records);

// Whether the connection is gone, and whether the server has rolled the transaction back.
bool IsLost(const QList<OdbcDiagnostic>& records);
bool EndsTransaction(const QList<OdbcDiagnostic>& records);

} // namespace tolvex
