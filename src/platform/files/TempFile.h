// The platform's own rule for the names of temporary files.
#pragma once

#include <QString>

namespace tolvex::platform {

// Makes an empty file with a free name in an existing folder: the first three characters of `prefix`, a
// hexadecimal number of four digits and ".TMP". Returns its Windows path; empty, with the FileError in
// *error, if none can be made (PathNotFound for a missing folder, FileAlreadyExists if all 65535 names are
// taken).
QString MakeTempFile(const QString& folder, const QString& prefix, int* error = nullptr);

} // namespace tolvex::platform
