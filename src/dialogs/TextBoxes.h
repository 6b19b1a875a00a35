// Habits of text boxes that several forms share.
#pragma once

class QLineEdit;
class QString;

namespace tolvex {

// Selects the whole text.
void SelectAll(QLineEdit* box);

// Selects the whole text whenever the box gets the focus.
void SelectAllOnFocus(QLineEdit* box);

// Marks a box with a word at its right end ("not found") and a coloured edge; an empty word takes the mark
// away.
void MarkBox(QLineEdit* box, const QString& word);

// A box that holds a path: what is typed turns to upper case, and it selects its text on getting the focus.
void TypeInUpperCase(QLineEdit* box);

} // namespace tolvex
