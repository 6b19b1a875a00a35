#include "databases/store/Report.h"

#include "core/report/ProblemReport.h"

#include <algorithm>

namespace tolvex {

namespace {

// A box has room for this many lines.
constexpr std::size_t mostLines = 10;

} // namespace

HeldReports* HeldReports::current_ = nullptr;
SilentErrors* SilentErrors::current_ = nullptr;

SilentErrors::SilentErrors()
    : outer_(current_) {
    current_ = this;
}

SilentErrors::~SilentErrors() {
    current_ = outer_;
}

int KeepSilent(const DatabaseError& error, const QString& database) {
    if (SilentErrors::current_) {
        SilentErrors::current_->errors_.push_back(error);
        QString& text = SilentErrors::current_->errors_.back().text;
        if (!database.isEmpty() && !text.contains(database))
            text.prepend(database + QStringLiteral(": "));
    }
    return error.number;
}

HeldReports::HeldReports(const QString& summary)
    : outer_(current_)
    , summary_(summary) {
    current_ = this;
}

HeldReports::~HeldReports() {
    current_ = outer_;
    if (summary_.isEmpty() || entries_.size() < 2) {
        for (const Entry& entry : entries_)
            Report(entry.action, entry.error);
        return;
    }
    QString lines;
    for (std::size_t i = 0; i < std::min(entries_.size(), mostLines); ++i)
        lines += QStringLiteral("\n%1 (%2)").arg(entries_[i].action).arg(entries_[i].error.number);
    if (entries_.size() > mostLines)
        lines += QStringLiteral("\nand %1 more").arg(entries_.size() - mostLines);
    ProblemReport(summary_ + u'\n' + lines);
}

int Report(const QString& action, const DatabaseError& error) {
    if (HeldReports::current_)
        HeldReports::current_->entries_.push_back({action, error});
    else
        ProblemReport(action, error.number, false, error.text);
    return error.number;
}

} // namespace tolvex
