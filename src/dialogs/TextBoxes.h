// Habits of text boxes that several forms share.
#pragma once

class QLineEdit;

namespace tolvex {

// Selects the whole text.
void SelectAll(QLineEdit* box);

// Selects the whole text whenever the box gets the focus.
void SelectAllOnFocus(QLineEdit* box);

// A box that holds a path: what is typed turns to upper case, and it selects its text on getting the focus.
void TypeInUpperCase(QLineEdit* box);

} // namespace tolvex
