// Databases on a server behind the interface SuiteDatabase, and the server itself. docs/databases.md says
// what the server must offer.
#pragma once

#include "databases/store/SuiteDatabase.h"

namespace tolvex {

// Both connect with the attributes of `connect` (OdbcConnectString.h) and throw ConnectionFailed.
std::unique_ptr<SuiteDatabase> OpenServerDatabase(const QString& name, const QString& connect);
std::unique_ptr<DatabaseServer> OpenServer(const QString& connect);

} // namespace tolvex
