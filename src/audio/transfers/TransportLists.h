// Transport lists: empty files with the extension .OTL in a folder of the station, filled by other programs
// of the suite. Names match without regard to case.
#pragma once

#include "audio/SetupOutcome.h"
#include "platform/Prompts.h"

#include <QStringList>

namespace tolvex {

// The path of a list; its name is without folder and extension.
QString TransportListFile(const QString& directory, const QString& name);

// Whether there is such a list; an empty file counts.
bool TransportListExists(const QString& directory, const QString& name);

// The names of the lists in a folder, sorted without regard to case; empty when it cannot be read. Cost: one
// look at each file, and none at those of `known`, names that were listed before.
QStringList TransportLists(const QString& directory, const QStringList& known = {});

// Why a list cannot have this name, a sentence; empty when it can.
QString ListNameFault(const QString& name);

// Makes an empty list; outer blanks of the name do not count. Nothing that is there is changed.
SetupOutcome AddTransportList(const QString& directory, const QString& name);

// What is asked before a list is deleted; only Yes goes on.
platform::Message DeletionQuestion(const QString& name);
SetupOutcome DeleteTransportList(const QString& directory, const QString& name);

} // namespace tolvex
