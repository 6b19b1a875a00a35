// Small files of this program's own. They lie in the machine folder beside the suite's drives, where no
// program of the suite looks.
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace tolvex::platform {

// The whole file. Nothing, with the FileError in *error, if it cannot be read or is longer than a megabyte.
std::optional<QByteArray> ReadOwnFile(const QString& name, int* error);
// Replaces or makes it as a whole. FileError number.
int WriteOwnFile(const QString& name, const QByteArray& bytes);

} // namespace tolvex::platform
