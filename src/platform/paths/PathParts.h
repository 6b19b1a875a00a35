// A Windows path taken to pieces, without asking any disk: the drive, share or device it begins at and the
// names below it.
#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace tolvex::platform {

struct PathParts {
    // Folders below dosdevices/ that lead to the root: {"c:"}, {"unc", "SERVER", "SHARE"}, {"com1"}.
    QStringList root;
    // Names below the root; no empty ones, no "." and "..".
    QStringList names;

    bool isShare() const { return root.size() == 3; }
    // As a Windows path: "C:\X\Y", "C:\", "\\SERVER\SHARE\X".
    QString text() const;
};

// Splits a path; what it leaves out (drive, folder) is taken from `current`. "/" separates as "\" does, ".."
// stops at the root, blanks and points at the end of a name do not count, a "\\?\" in front is passed over.
// Nothing for an empty path, a zero character, or a share without a
// proper name.
std::optional<PathParts> SplitPath(const QString& path, const PathParts& current);

// No separator, no drive: a name alone.
bool IsBareName(const QString& path);

// Whether the platform allows a new file or folder of this name: no control characters, none of <>:"|?*.
bool IsValidName(const QString& name);

// Names that differ in case only give the same text: each character in its upper-case form, as the platform
// compares names.
QString FoldName(const QString& name);

// The 8.3 form of a name. A name that has this form already stays as it is spelled; any other gives its first
// letters, "~" and four digits of a hash, and its extension cut to three. It depends on nothing but the name.
QString ShortName(const QString& name);

} // namespace tolvex::platform
