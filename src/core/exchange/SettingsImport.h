// Imports the settings of a document (core/exchange/SettingsDocument.h) into the files of a workstation.
//
// The first step makes a plan: which files the document leads to, what each of them gets, and whether all of
// it can be stored. Showing and applying both use the same plan. The locations in the document override those
// of the workstation: if it moves the data location or the first part of the audiowall, the files there are
// changed. Settings that the document does not name stay as they are.
#pragma once

#include "core/exchange/SettingsDocument.h"

namespace tolvex {

struct ImportPlan {
    struct Change {
        const SettingRow* row = nullptr;
        QString key;                   // with its number
        std::optional<QString> before; // the text in the file; nothing if it lacks the key
        QString after;
    };
    struct File {
        SettingsFile kind = SettingsFile::Local;
        QString path;
        QList<Change> changes; // in the order of the table of settings
    };
    QList<File> files;   // those that change
    QStringList folders; // missing ones, to be made first, from the top down
    QStringList unknown; // "[section] key" that no row declares for that file; left out
    QStringList remarks; // values imported as they stand, though they could not be set by hand
    QStringList refused; // with the reason; if there are any, nothing is written
    QString problem;     // why the document cannot be used at all, or what writing failed on
    int error = 0;       // the profile error of that, if there is one
    QString record;      // exists while the files change
    QStringList backups; // copies of the files as they were, after it was applied

    bool usable() const { return problem.isEmpty() && refused.isEmpty(); }
};

// Makes the plan; changes nothing. `namedSystemIni`: the station's file if one was named, empty if it lies in
// the data location.
ImportPlan PlanImport(const QByteArray& document, const QString& localIni, const QString& namedSystemIni);

// Applies a usable plan: makes the folders, copies each file that changes to "<file>.<time>.bak", and changes
// all of them or none. False, with the reason in plan.problem, if nothing was changed.
bool ApplyImport(ImportPlan& plan);

// An import into this local ini file that was interrupted, for instance by a power failure, perhaps after
// some of its files changed. Changes nothing.
bool ImportWasInterrupted(const QString& localIni);

// Restores the files of such an import. Sentences for the user about what was and was not restored; empty if
// there was no such import, or nothing had been changed.
QString UndoInterruptedImport(const QString& localIni);

} // namespace tolvex
