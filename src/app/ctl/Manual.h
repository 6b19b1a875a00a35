// The manual page of tolvexctl, from the rows of its commands.
#pragma once

#include <QString>

namespace tolvex::ctl {

// Section 1 of the manual, in the man macros.
QString ManualPage();

} // namespace tolvex::ctl
