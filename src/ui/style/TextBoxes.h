// Habits of text boxes that several forms share.
#pragma once

#include <QString>

class QLineEdit;

namespace tolvex {

// Selects the whole text.
void SelectAll(QLineEdit* box);

// Selects the whole text whenever the box gets the focus.
void SelectAllOnFocus(QLineEdit* box);

// Marks a box with a word at its right end ("not found") and a coloured edge; an empty word takes the mark
// away.
void MarkBox(QLineEdit* box, const QString& word);

// Takes out of what is typed what `fitting` takes out of it, and says why at the box.
void RestrictTo(QLineEdit* box, QString (*fitting)(const QString& text), const QString& why);

// A box that holds a path: what is typed turns to upper case, and it selects its text on getting the focus.
void TypeInUpperCase(QLineEdit* box);

} // namespace tolvex
