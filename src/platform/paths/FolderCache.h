// Looks up names in host folders without regard to case. A folder is listed once, and again after it changed.
//
// A listing is valid while the folder's time of change is the one it was made at. A change in the same tick
// of the file system's clock would not show in that time, so a listing is kept only if the folder was at rest
// before it was made.
#pragma once

#include "platform/host/HostFiles.h"

#include <QByteArray>
#include <QHash>
#include <QString>

#include <optional>

namespace tolvex::platform {

class FolderCache {
public:
    // The name in `folder` (a host path) that `name` refers to: the exact spelling; else the first in byte
    // order that differs only in case; else the one whose short name it is. Nothing if there is none. Names
    // that are not UTF-8 are ignored. *isFolder says whether `folder` is one. Cost: one stat and one hash
    // look-up while the folder is unchanged.
    std::optional<QByteArray> find(const QByteArray& folder, const QString& name, bool* isFolder = nullptr);

    // Whether the short form of `name` refers to `name` and to no other name in its folder.
    bool hasShortName(const QByteArray& folder, const QString& name);

    void clear();

private:
    struct Listing {
        HostStatus status;
        bool settled = false;
        bool readable = false;
        QMultiHash<QString, QByteArray> names; // by FoldName
    };
    const Listing* listing(const QByteArray& folder);

    QHash<QByteArray, Listing> listings_;
    qsizetype nameCount_ = 0;
};

} // namespace tolvex::platform
