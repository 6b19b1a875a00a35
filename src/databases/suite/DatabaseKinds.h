// The kinds of databases of the suite. The number in a database's description tells them apart; its file name
// never does.
#pragma once

#include <QtGlobal>

#include <span>

namespace tolvex {

enum DatabaseType : qint32 {
    UsersDatabaseType = 0,
    RotaweaveType = 1,
    AdvertsType = 2,
    OldKOVAType = 4,
    RotaweaveV3Type = 11,
    KOVAType = 14,
    QuillType = 19
};

struct DatabaseKind {
    qint32 type;
    float version;     // stamped at creation; 0: none
    const char* word;  // by which the chooser's callers know it; null: the chooser does not know it
    const char* title; // used by the chooser
};

std::span<const DatabaseKind> DatabaseKinds();
// Null for a type that is not known.
const DatabaseKind* FindDatabaseKind(qint32 type);

} // namespace tolvex
