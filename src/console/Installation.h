// The items that automatic configuration makes on a machine, and their present state.
#pragma once

#include <QList>
#include <QString>

namespace tolvex {

struct Workstation;

struct InstalledItem {
    QString what; // "Hotlist"
    QString path;
    bool present = false; // complete, as far as its length tells
};

// For the locations in the settings. Cost: a few file lengths and two reads of the local ini file; if no
// default automation database is set, each database of its folder is opened.
QList<InstalledItem> LookAtInstallation(Workstation& station);

// Those that are missing.
QList<InstalledItem> MissingItems(Workstation& station);

} // namespace tolvex
