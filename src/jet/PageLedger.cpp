#include "jet/PageLedger.h"

#include "jet/ErrorDetail.h"
#include "jet/Value.h"

#include <cstdio>

namespace jet {

// Readers name the page themselves ("page 12: reason"), which is more exact than where the check was.
void FaultSink::damage(PageNumber page, const Error& error) {
    if (error.code() != ErrorNumber::ReadVerification && error.code() != ErrorNumber::Corrupt &&
        error.code() != ErrorNumber::InvalidArgument)
        throw error;
    const std::string detail = ErrorDetail(error);
    const std::string text = detail.empty() ? error.what() : detail;
    unsigned named = 0;
    int length = 0;
    if (std::sscanf(text.c_str(), "page %9u: %n", &named, &length) == 1 && length > 0)
        fault(named, text.substr(static_cast<std::size_t>(length)));
    else
        fault(page, text);
}

PageLedger::Owner PageLedger::add(const std::string& name, bool shared) {
    names_.push_back({faults_.table(), name, shared});
    return static_cast<Owner>(names_.size());
}

bool PageLedger::claim(PageNumber page, Owner owner) {
    if (page == 0 || page >= pages()) {
        faults_.fault(page, "lies outside the file but is listed among the " + names_[owner - 1].what);
        return false;
    }
    Owner& current = owners_[page];
    if (current == Nobody) {
        current = owner;
        return true;
    }
    const Name& present = names_[current - 1];
    if (present.shared && present.what == names_[owner - 1].what)
        return true;
    faults_.fault(page,
                  "is listed among the " + names_[owner - 1].what + " but belongs to the " + describe(page));
    return false;
}

std::string PageLedger::describe(PageNumber page) const {
    const Name& name = names_[owners_[page] - 1];
    return name.table.empty() ? name.what : name.what + " of table '" + ToUtf8(name.table) + "'";
}

} // namespace jet
