// All declared settings of a workstation as one JSON document, for keeping and for setting up others:
//
//     { "format": "tolvex-settings", "version": 1, "computer": "STUDIO1",
//       "settings": { "local": { "Display": { "ShowClock": true, ... }, ... }, "system": ..., "audiowall":
//       ... } }
//
// Flags are booleans, numbers and colours numbers, texts texts, dates ISO 8601. Keys that are derived from
// others, and the devices of automatic assignment, are left out.
#pragma once

#include "core/StoredSettings.h"

namespace tolvex {

QByteArray ExportSettings(const SettingsFiles& files);

// What an import would do, or did.
struct SettingsImport {
    struct Change {
        SettingPlace place;
        QString key;
        QString before;
        QString after;
    };
    QList<Change> changes;
    QStringList unknown; // "[section] key" that no row declares; left out
    QStringList refused; // with the reason; nothing is applied while there are any
    QString problem;     // why the document cannot be used at all
    QStringList backups; // copies of the files as they were, once it was applied
    bool usable() const { return problem.isEmpty() && refused.isEmpty(); }
};

// Reads a document and compares it with the files; changes nothing.
SettingsImport PlanImport(const QByteArray& document, const SettingsFiles& files);

// Copies each file that changes to "<file>.<time>.bak", then applies the changes to it as one replacement.
// False, with the reason in plan.problem, at the first file that fails; files not yet reached keep their
// content.
bool ApplyImport(SettingsImport& plan, const SettingsFiles& files);

} // namespace tolvex
