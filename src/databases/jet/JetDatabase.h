// Database files behind the face of SuiteDatabase: the one place that talks to the engine. Paths of the suite
// become paths of this machine here, and the engine's errors become DatabaseErrors.
#pragma once

#include "databases/store/SuiteDatabase.h"
#include "jet/Error.h"
#include "jet/Value.h"

namespace tolvex {

std::unique_ptr<SuiteDatabase> OpenJetDatabase(const QString& path);

// The path on this machine, in the encoding of the engine. Throws DatabaseError when its drive or folder is
// not there.
std::string EnginePath(const QString& path);

// `path`: the database as the suite names it, which the error then names instead of the path on this machine.
DatabaseError FromEngine(const jet::Error& error, const QString& path = {});

// Values as the suite has them and as the engine does. Both throw TypeMismatchError for what the other does
// not know.
QVariant ToVariant(const jet::Value& value);
jet::Value ToEngineValue(const QVariant& value);

} // namespace tolvex
