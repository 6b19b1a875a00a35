// What automatic configuration leaves on a machine, item by item, as it is there now.
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

// Of the locations that the settings hold. Cost: a few file lengths and two reads of the local ini file;
// where no default automation database is set, each database of its folder is opened.
QList<InstalledItem> LookAtInstallation(Workstation& station);

// Those that are not present.
QList<InstalledItem> MissingItems(Workstation& station);

} // namespace tolvex
