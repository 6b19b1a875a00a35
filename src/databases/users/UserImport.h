// The first run of a users database: makes its groups, and imports the accounts of an older users file.
#pragma once

#include <QString>

namespace tolvex {

struct Settings;
struct UsersState;

// Recreates the default groups in the open users database and offers to import the accounts of the older
// users file that Tolvex.ini names, or of one that the user picks.
void MakeDefaultGroupsAndImport(UsersState& state, bool silent);

// The older users file that Tolvex.ini names, as a full path; empty if it names none.
QString OlderUsersFile(const Settings& settings);

// Hides passwords from a casual glance, and reverses it: swaps bits 0 and 4 and bits 1 and 3 of each
// character's code. Without `keepCase` the text is upper-cased first.
QString TransformPassword(const QString& text, bool keepCase);

} // namespace tolvex
