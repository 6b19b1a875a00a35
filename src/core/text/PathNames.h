// Parts of a path; "\" and "/" separate alike.
#pragma once

#include <QString>

namespace tolvex {

// The part after the last separator; the whole path if it has none.
QString FileNameOf(const QString& path);

// The text before the last point, if no separator follows it; else the whole path.
QString PathWithoutExtension(const QString& path);

// The text before the last separator, including it if `keepSeparator` is set; empty if there is none.
QString FolderOf(const QString& path, bool keepSeparator = false);

// The platform's short form of a path, at most 1023 characters; empty if the path does not exist.
QString MakeShortPath(const QString& path);

// The text without one trailing backslash.
QString WithoutTrailingBackslash(QString path);

// A data or cart location as it is shown and stored: trimmed, in upper case, without one trailing backslash.
// Of two it loses only one, so each writer calls this once.
QString TidyLocation(const QString& path);

// What is wrong with a location, as the end of a sentence that begins with its setting; empty if nothing is.
// A location may be empty; its names must be names that the file system allows.
QString LocationFault(const QString& path);

// Why the file system takes no file of that name, a sentence without its full stop; empty when it does.
QString FileNameFault(const QString& name);

} // namespace tolvex
