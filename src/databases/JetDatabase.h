// Database files behind the face of SuiteDatabase: the one place that talks to the engine. Paths of the suite
// become paths of this machine here, and the engine's errors become DatabaseErrors.
#pragma once

#include "databases/SuiteDatabase.h"
#include "jet/Error.h"

namespace tolvex {

std::unique_ptr<SuiteDatabase> OpenJetDatabase(const QString& path);

// The path on this machine, in the encoding of the engine. Throws DatabaseError when its drive or folder is
// not there.
std::string EnginePath(const QString& path);

DatabaseError FromEngine(const jet::Error& error);

} // namespace tolvex
