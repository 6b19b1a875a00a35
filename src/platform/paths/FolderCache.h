// Names in host folders, found without regard to case. A folder is listed once and again when it changed.
//
// A listing counts as long as the folder's time of change is the one it was made at. A change in the same
// tick of the file system's clock would not show in that time, so a listing is kept only when the folder was
// at rest before it was made.
#pragma once

#include "platform/host/HostFiles.h"

#include <QByteArray>
#include <QHash>
#include <QString>

#include <optional>

namespace tolvex::platform {

class FolderCache {
public:
    // The name in `folder` (a host path) that `name` means: the exact spelling; else one that differs in case
    // only, the first in byte order; else the one that has it for its short name. Nothing when there is none.
    // Names that are not UTF-8 are not seen. *isFolder tells whether `folder` is one. Cost: one stat and one
    // hash look-up while the folder is unchanged.
    std::optional<QByteArray> find(const QByteArray& folder, const QString& name, bool* isFolder = nullptr);

    // Whether `name`'s short form means `name` and no other one in its folder.
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
