// Shows an error at its field.
#pragma once

#include "platform/Prompts.h"

class QWidget;

namespace tolvex {

// Selects the tab of the field and marks tab and field, shows the message, and moves the focus to the field
// with its text selected. The next edit anywhere in the window removes the marks. Returns false, so that a
// check can say `return ShowFieldError(...)`.
bool ShowFieldError(QWidget* field, const QString& message,
                    platform::Icon icon = platform::Icon::Exclamation);

} // namespace tolvex
