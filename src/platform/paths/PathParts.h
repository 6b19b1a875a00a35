// A Windows path in pieces, without asking any disk: its
// drive, share or device, and the names below it.
#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace tolvex::platform {

struct PathParts {
    // Folders below dosdevices/ that lead to the root: {"c:"}, {"unc", "SERVER", "SHARE"}, {"com1"}.
    QStringList root;
    // Names below the root, without empty names, "." and "..".
    QStringList names;

    bool isShare() const { return root.size() == 3; }
    // As a Windows path: "C:\X\Y", "C:\", "\\SERVER\SHARE\X".
    QString text() const;
};

// Splits a path; a missing drive or folder comes from `current`. "/"
// separates like "\", ".." stops at the root, blanks and points at the
// end of a name are ignored, and so is a "\\?\" in front. Nothing for
// an empty path, a zero character, or a share without a proper name.
std::optional<PathParts> SplitPath(const QString& path, const PathParts& current);

// A bare name: no separator, no drive.
bool IsBareName(const QString& path);

// Whether the platform allows this name for a new file or folder: no control characters, none of <>:"|?*.
bool IsValidName(const QString& name);

// Names that differ only in case fold to the same text: each character in its upper-case form, as the
// platform compares names.
QString FoldName(const QString& name);

// The 8.3 form of a name. A name that already has this form stays as it is; any other becomes its first
// letters, "~" and four digits of a hash, and its extension cut to three. It depends only on the name.
QString ShortName(const QString& name);

} // namespace tolvex::platform
