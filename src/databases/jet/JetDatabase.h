// Database files behind the interface SuiteDatabase: the one place that talks to the engine. It converts
// paths of the suite to paths of this machine, and the engine's errors to DatabaseErrors.
#pragma once

#include "databases/store/SuiteDatabase.h"
#include "jet/Error.h"
#include "jet/Value.h"

namespace tolvex {

std::unique_ptr<SuiteDatabase> OpenJetDatabase(const QString& path);

// The path on this machine, in the engine's encoding.
// Throws DatabaseError if its drive or folder is missing.
std::string EnginePath(const QString& path);

// `path`: the database as the suite names it, which the error then names instead of the path on this machine.
DatabaseError FromEngine(const jet::Error& error, const QString& path = {});

// Conversion of values between the suite and the engine. Both throw TypeMismatchError for values that the
// other side lacks.
QVariant ToVariant(const jet::Value& value);
jet::Value ToEngineValue(const QVariant& value);

} // namespace tolvex
