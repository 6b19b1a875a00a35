// Copies of the cart lists, by day.
#pragma once

namespace tolvex {

struct Settings;

// For each part with a location whose list "Carts<n>.LST" is there, copies it to Backups\<yyyy-mm-dd> below
// the location, with progress. Without `force` the copy is left out where Backups itself (not the folder of
// the day) holds a list of that name. The first failure ends it; nothing is reported. False then.
bool BackupCartLists(const Settings& settings, bool force);

} // namespace tolvex
