// Taking over the settings of a document (core/SettingsDocument.h) into the files of a workstation.
//
// First a plan is made: which files the document leads to, what each of them gets, and whether all of it can
// be stored. Showing it and carrying it out work from the same plan. The locations in the document count
// before those of the workstation: one that moves the data location or the first part of the audiowall goes
// into the files there. Settings that the document does not name stay as they are.
#pragma once

#include "core/exchange/SettingsDocument.h"

namespace tolvex {

struct ImportPlan {
    struct Change {
        const SettingRow* row = nullptr;
        QString key;                   // with its number
        std::optional<QString> before; // the text in the file; nothing when it has no such key
        QString after;
    };
    struct File {
        SettingsFile kind = SettingsFile::Local;
        QString path;
        QList<Change> changes; // in the order of the table of settings
    };
    QList<File> files;   // those that change
    QStringList folders; // that are missing, to be made first, from the top down
    QStringList unknown; // "[section] key" that no row declares for that file; left out
    QStringList remarks; // values that are taken as they stand, though they could not be set by hand
    QStringList refused; // with the reason; nothing is written while there are any
    QString problem;     // why the document cannot be used at all, or what failed in writing
    int error = 0;       // the profile error of that, where there is one
    QString record;      // lies there while the files change
    QStringList backups; // copies of the files as they were, once it was carried out

    bool usable() const { return problem.isEmpty() && refused.isEmpty(); }
};

// Makes the plan; changes nothing. `namedSystemIni`: the station's file where one was named, empty where it
// lies in the data location.
ImportPlan PlanImport(const QByteArray& document, const QString& localIni, const QString& namedSystemIni);

// Carries a usable plan out: makes the folders, copies each file that changes to "<file>.<time>.bak", and
// changes all of them or none. False, with the reason in plan.problem, when nothing was changed.
bool ApplyImport(ImportPlan& plan);

// An import into this local ini file that was cut short, by a power failure for instance, perhaps with some
// of its files changed. Changes nothing.
bool ImportWasInterrupted(const QString& localIni);

// Puts the files of such an import back as they were before it. Sentences for the user about what was done
// and what could not be; empty when there was no such import, or nothing had been changed.
QString UndoInterruptedImport(const QString& localIni);

} // namespace tolvex
