// Databases on a server behind the face of SuiteDatabase, and the server itself. What the server must offer
// is in docs/databases.md.
#pragma once

#include "databases/store/SuiteDatabase.h"

namespace tolvex {

// Both connect with the attributes of `connect` (OdbcConnectString.h) and throw ConnectionFailed.
std::unique_ptr<SuiteDatabase> OpenServerDatabase(const QString& name, const QString& connect);
std::unique_ptr<DatabaseServer> OpenServer(const QString& connect);

} // namespace tolvex
