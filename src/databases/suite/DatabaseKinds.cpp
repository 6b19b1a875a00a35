#include "databases/suite/DatabaseKinds.h"

namespace tolvex {

namespace {

constexpr DatabaseKind kinds[] = {
    {UsersDatabaseType, 0, nullptr, nullptr},
    {RotaweaveType, 2.6F, "rotaweave", "Rotaweave Database"},
    {AdvertsType, 2.51F, "adverts", "Adverts Database"},
    {OldKOVAType, 1.3F, "kova", "K-Ova Database"},
    {10, 3.03F, nullptr, nullptr},
    {RotaweaveV3Type, 3.21F, "rotaweavev3", "Rotaweave v3 Database"},
    {12, 3.5F, nullptr, nullptr},
    {KOVAType, 2.6F, "kova", "K-Ova V2.6 Database"},
    {QuillType, 3.061F, "legacy", "Quill v3 Database"},
    {30, 1.0F, nullptr, nullptr},
    {31, 1.071F, nullptr, nullptr},
    {99, 1.753F, nullptr, nullptr},
};

} // namespace

std::span<const DatabaseKind> DatabaseKinds() {
    return kinds;
}

const DatabaseKind* FindDatabaseKind(qint32 type) {
    for (const DatabaseKind& kind : kinds)
        if (kind.type == type)
            return &kind;
    return nullptr;
}

} // namespace tolvex
