// Copying a file as the shell does: with progress, and a Stop that leaves no partial file.
#pragma once

#include "platform/files/Files.h"

#include <QString>

#include <functional>

namespace tolvex::platform {

// Copies a file block by block. `step` is called before each block with the bytes done and the length of the
// file; if it returns false the copy stops, *stopped is true and the result NoError. The target is replaced
// all or nothing and gets the source's time of change. FileError; PathFileAccess for a folder, and for a file
// onto itself.
int CopyInSteps(const QString& from, const QString& to,
                const std::function<bool(qint64 done, qint64 total)>& step, bool* stopped = nullptr);

// Results of the shell's copy that callers use by name; others are the system's error numbers.
inline constexpr int ShellCopied = 0;
inline constexpr int ShellCancelled = 1223;

// Copies `from` to `to`, a file or an existing folder, and makes missing parent folders. Shows progress under
// `title`; Stop, or No to replacing an existing file (asked unless `noConfirmation`), returns ShellCancelled.
// Names hold no wildcards. With `silent` no progress is shown. Result: 0, or the system's number for the
// failure (2 no such file, 3 no such folder, 5 no access, 32 in use, 112 disk full, ...). Nothing is reported
// to the user.
int CopyFileWithProgress(const QString& from, const QString& to, const QString& title, bool noConfirmation,
                         bool silent);

} // namespace tolvex::platform
