// Copying a file as the shell does: with its progress shown, and a Stop that leaves no half file.
#pragma once

#include "platform/files/Files.h"

#include <QString>

#include <functional>

namespace tolvex::platform {

// Copies a file block by block; `step` is called before each block with the bytes done and the length of the
// file, and stops the copy when it gives false (*stopped is then true and the result NoError). The target is
// replaced all or nothing and gets the time of change of the source. FileError; PathFileAccess for a folder,
// and for a file onto itself.
int CopyInSteps(const QString& from, const QString& to,
                const std::function<bool(qint64 done, qint64 total)>& step, bool* stopped = nullptr);

// Results of the shell's copy that callers ask for by name; others are the system's error numbers.
inline constexpr int ShellCopied = 0;
inline constexpr int ShellCancelled = 1223;

// Copies `from` to `to`, a file or an existing folder, making missing folders above. Shows progress under
// `title`; a Stop, or No to replacing a file that is there (asked unless `noConfirmation`), gives
// ShellCancelled. Names hold no wildcards. With `silent` no progress is shown. Result: 0, or the system's
// number for what went wrong (2 no such file, 3 no such folder, 5 no access, 32 in use, 112 disk full, ...);
// nothing is reported to the user.
int CopyFileWithProgress(const QString& from, const QString& to, const QString& title, bool noConfirmation,
                         bool silent);

} // namespace tolvex::platform
