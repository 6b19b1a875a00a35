// The tables of the users database.
#pragma once

#include "databases/store/Schema.h"

namespace tolvex {

const Table& UsersSchema();
const Table& UserGroupsSchema();
const Table& UserHistorySchema();
const Table& UserPreferencesSchema();

// All tables except the description's, in the order in which they are checked.
TableList UsersDatabaseTables();

// Brings all tables of a users database, a file or, with `connect`, one on a server, up to date. Result: 0
// or, reported, the error number of the first failure.
qint16 ValidateUsersDatabaseTables(const QString& databaseName, const QString& connect = {});

// A group of users in every new users database.
struct UserGroup {
    int number;
    const char* name;
    bool allowMultipleUsers;
    bool accessRights; // all six
};
inline constexpr int AccessRightCount = 6;
std::span<const UserGroup> DefaultUserGroups();

} // namespace tolvex
