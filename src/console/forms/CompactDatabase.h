// Compaction from the console.
#pragma once

class QWidget;

namespace tolvex {

struct Workstation;

// Lets the user pick a database in the data location, compacts it, and shows what could not be saved in a
// window that can print and save the list. The users database is closed meanwhile, so that it can be picked.
void CompactDatabase(Workstation& station, QWidget* console);

} // namespace tolvex
