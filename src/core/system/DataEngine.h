// Whether the data access components that the suite's databases need are usable.
#pragma once

#include <QString>

namespace tolvex {

// True if a version of at least 2.5 is installed; *version gets it, and is empty otherwise. With
// `showMessages` the user is told what is missing; for a version that is too old the download page is opened
// in any case.
bool CheckDataEngine(bool showMessages, QString* version = nullptr);

} // namespace tolvex
