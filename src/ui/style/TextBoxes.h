// Behaviour of text boxes that several forms share.
#pragma once

#include <QString>

#include <functional>

class QLineEdit;

namespace tolvex {

// Selects the whole text.
void SelectAll(QLineEdit* box);

// Selects the whole text whenever the box gets the focus.
void SelectAllOnFocus(QLineEdit* box);

// Marks a box with a word at its right end ("not found")
// and a coloured edge; an empty word removes the mark.
void MarkBox(QLineEdit* box, const QString& word);

// Removes from typed text what `fitting` rejects, and says why at the box.
void RestrictTo(QLineEdit* box, const std::function<QString(const QString& text)>& fitting,
                const QString& why);

// Makes a box wide enough for this number of digits at the current text size.
void SetWidthInDigits(QLineEdit* box, int digits);

// A box for a number: accepts only digits and the characters of `also`, however they are entered, at most
// `longest` (0: no limit), and selects its text on getting the focus.
void TakeDigits(QLineEdit* box, int longest = 0, const QString& also = {});

// Moves a number outside the range to its nearer end when the box is left. A text without a number is 0.
void ClampOnLeaving(QLineEdit* box, qint32 lowest, qint32 highest);

// A box for a path: typed text becomes upper case, and the box selects its text on getting the focus.
void TypeInUpperCase(QLineEdit* box);

} // namespace tolvex
