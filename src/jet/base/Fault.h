// What is wrong in a database, as the check, a compaction and the reader of older files tell it.
#pragma once

#include "jet/base/Error.h"
#include "jet/base/Pager.h"

#include <string>

namespace jet {

struct Fault {
    PageNumber page = 0;
    std::u16string table;  // empty: of no table
    std::string reason;    // what is wrong with the page, as the end of a sentence: "page 12 ..."
    bool harmless = false; // only a remark: nothing is lost or wrong by it
};

// The fault that a reader met. Readers name the page themselves ("page 12: reason"), which is more exact than
// `page`, where they were begun.
Fault FaultOf(const Error& error, PageNumber page, const std::u16string& table);

} // namespace jet
