// The one way to report that a page does not hold what it should.
#pragma once

#include "jet/base/Error.h"
#include "jet/base/Pager.h"

#include <string>

namespace jet {

[[noreturn]] inline void Damaged(PageNumber page, const std::string& reason) {
    throw Error(ErrorNumber::ReadVerification, "page " + std::to_string(page) + ": " + reason);
}

} // namespace jet
