// A fault in a database, as reported by the check, a compaction and the reader of older files.
#pragma once

#include "jet/base/Error.h"
#include "jet/base/Pager.h"

#include <string>

namespace jet {

struct Fault {
    PageNumber page = 0;
    std::u16string table;  // empty: not of a table
    std::string reason;    // what is wrong with the page, as the end of a sentence: "page 12 ..."
    bool harmless = false; // only a remark: it causes no loss and no error
};

// The fault that a reader found. Readers name the page themselves ("page 12: reason"), which is more exact
// than `page`, where they began.
Fault FaultOf(const Error& error, PageNumber page, const std::u16string& table);

} // namespace jet
