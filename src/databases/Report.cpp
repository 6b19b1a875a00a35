#include "databases/Report.h"

#include "core/ProblemReport.h"

namespace tolvex {

HeldReports* HeldReports::current_ = nullptr;

HeldReports::HeldReports()
    : outer_(current_) {
    current_ = this;
}

HeldReports::~HeldReports() {
    current_ = outer_;
    for (const Entry& entry : entries_)
        Report(entry.action, entry.error);
}

int Report(const QString& action, const DatabaseError& error) {
    if (HeldReports::current_)
        HeldReports::current_->entries_.push_back({action, error});
    else
        ProblemReport(action, error.number, false, error.text);
    return error.number;
}

} // namespace tolvex
