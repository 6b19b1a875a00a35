// The kinds of databases of the suite. The number in a database's description identifies its kind; its file
// name never does.
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
    const char* word;  // the chooser's callers use it; null: the chooser does not offer this kind
    const char* title; // used by the chooser
};

std::span<const DatabaseKind> DatabaseKinds();
// Null for an unknown type.
const DatabaseKind* FindDatabaseKind(qint32 type);

} // namespace tolvex
