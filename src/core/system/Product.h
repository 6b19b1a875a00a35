// The program's own names and texts: in the about box, message titles and on the command line.
#pragma once

#include <QString>

namespace tolvex {

inline constexpr char ProductName[] = "Tolvex Configuration";
inline constexpr char CompanyName[] = "Norvane";
inline constexpr char Copyright[] =
    "Copyright 2026 the Tolvex Configuration authors. Licensed under the Apache License 2.0.";
// The build takes the version of the packages from these lines.
inline constexpr int VersionMajor = 0;
inline constexpr int VersionMinor = 1;
inline constexpr int VersionRevision = 0;

// "0.1.0".
inline QString ProductVersion() {
    return QStringLiteral("%1.%2.%3").arg(VersionMajor).arg(VersionMinor).arg(VersionRevision);
}

} // namespace tolvex
