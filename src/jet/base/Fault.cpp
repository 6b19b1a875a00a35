#include "jet/base/Fault.h"

#include <cstdio>

namespace jet {

Fault FaultOf(const Error& error, PageNumber page, const std::u16string& table) {
    std::string reason = error.detail();
    if (reason.empty())
        reason = error.what();
    unsigned named = 0;
    int length = 0;
    if (std::sscanf(reason.c_str(), "page %9u: %n", &named, &length) == 1 && length > 0)
        return {named, table, reason.substr(static_cast<std::size_t>(length)), false};
    return {page, table, reason, false};
}

} // namespace jet
