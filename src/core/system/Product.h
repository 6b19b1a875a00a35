// What the program says of itself: in the about box, message titles and on the command line.
#pragma once

namespace tolvex {

inline constexpr char ProductName[] = "Tolvex Configuration";
inline constexpr char CompanyName[] = "Norvane";
inline constexpr char Copyright[] =
    "Copyright 2026 the Tolvex Configuration authors. Licensed under the Apache License 2.0.";
inline constexpr int VersionMajor = 0;
inline constexpr int VersionMinor = 1;
inline constexpr int VersionRevision = 0;

} // namespace tolvex
