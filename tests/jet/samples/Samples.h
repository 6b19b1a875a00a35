// Database files that a real engine wrote: all *.mdb files of the folder that TOLVEX_JET_SAMPLES names. They
// are not part of the project.
#pragma once

#include "jet/Database.h"
#include "jet/FaultyStorage.h"
#include "jet/page/PageZero.h"

#include <optional>
#include <string>
#include <vector>

namespace jet::tests {

struct Sample {
    std::string path;
    std::optional<PageZero> header; // nothing: no database of a known version

    std::string name() const; // consists of letters and digits
    Bytes bytes() const;
    bool isJet3() const { return header && header->version == PageZero::Jet3; }
    // Whether it has the present format and can be changed: neither encrypted nor in an unknown sort order.
    bool canBeChanged() const;
};

// Shown if a test of the file fails.
void PrintTo(const Sample& sample, std::ostream* out);

// Sorted by name; none if no folder is named.
const std::vector<Sample>& Samples();

// A sample opened for reading, with its own password, from a copy in memory.
struct OpenSample {
    explicit OpenSample(const Sample& sample);
    tests::FaultyStorage storage;
    std::optional<Database> database;
};

// All rows of a table from an independent reader (mdb-export) and from us, sorted, with the columns that both
// write alike. Nothing if that reader cannot read the table.
struct TwoReadings {
    std::vector<std::string> theirs;
    std::vector<std::string> ours;
};
std::optional<TwoReadings> ReadTwice(const Sample& sample, const Catalog& catalog,
                                     const CatalogObject& object);

} // namespace jet::tests
