// The platform's own routine for the name of a temporary file.
#pragma once

#include <QString>

namespace tolvex::platform {

// Makes an empty file of a name that was free, the first three characters of `prefix`, a hexadecimal number
// of four digits and ".TMP", in a folder that exists. Gives its Windows path; empty, with the FileError in
// *error, when none can be made (PathNotFound for a missing folder, FileAlreadyExists when all 65535 names
// are taken).
QString MakeTempFile(const QString& folder, const QString& prefix, int* error = nullptr);

} // namespace tolvex::platform
