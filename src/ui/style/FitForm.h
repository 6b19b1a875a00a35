// The size of a form: what its texts and an error mark in its tabs ask for at the text size in force, up to
// what the screen has room for.
// (Qt by itself stops at two thirds of the screen and forgets texts that wrap.)
#pragma once

class QWidget;

namespace tolvex {

// Gives a form the size that it opens with.
void FitForm(QWidget* form);

// Lets a form grow from now on whenever its texts need more height, up to the screen's. What stands on a
// ScrollPage scrolls when even that is too little.
void KeepFitted(QWidget* form);

} // namespace tolvex
