// An error of one field, shown where it is.
#pragma once

#include "platform/Prompts.h"

class QWidget;

namespace tolvex {

// Selects the tab on which the field stands and marks tab and field, gives the message, and puts the focus on
// the field with its text selected. The marks go with the next edit anywhere in the window. Gives false, so
// that a check can say `return ShowFieldError(...)`.
bool ShowFieldError(QWidget* field, const QString& message,
                    platform::Icon icon = platform::Icon::Exclamation);

} // namespace tolvex
