#include "jet/maintenance/PageLedger.h"

#include "jet/base/Value.h"

namespace jet {

void FaultSink::damage(PageNumber page, const Error& error) {
    if (error.code() != ErrorNumber::ReadVerification && error.code() != ErrorNumber::Corrupt &&
        error.code() != ErrorNumber::InvalidArgument)
        throw error;
    give(FaultOf(error, page, table_));
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
