// One line of a registry export: a key's header, or a value in its textual form.
#pragma once

#include "platform/registry/RegistryStore.h"

namespace tolvex::platform {

// A line of a key, "name"=value. No value: the line removes the name ("name"=-).
struct RegistryLine {
    QString name; // empty: the key's default value, "@"
    std::optional<RegistryValue> value;
};

// `ansi`: texts in hexadecimal are code page 1252, not UTF-16. Nothing for any other line.
std::optional<RegistryLine> ParseRegistryLine(QStringView line, bool ansi);

// The normalised path of a header line "[path]"; empty for any other line.
QString ParseRegistryHeader(QStringView line);

// The line (or lines) for a value, with line ends, wrapped as in the platform's own export.
QString FormatRegistryLine(const QString& name, const RegistryValue& value, bool ansi);

// A key path without empty components.
QString NormalRegistryPath(const QString& path);

} // namespace tolvex::platform
