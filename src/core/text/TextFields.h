// Text helpers.
#pragma once

#include <QString>

namespace tolvex {

enum class CharacterClass {
    Digits = 1,
    DigitsAndLetters = 2,
    Letters = 3,
    DigitsLettersBlank = 4,
    DigitsBlank = 5,
};

// Whether every character belongs to the class; letters are A to Z and a to z. An unknown class accepts
// everything.
bool ValidateCharacters(const QString& text, CharacterClass allowed);

// The field of `text` that begins at `start` (from 1) and runs to the next separator. With `skipLeading` it
// begins at the first character from there that is not a blank. *position gets the separator's position, or 0
// if the text ended first. With `trim` the field is trimmed. Empty if nothing is left to read.
QString TextField(const QString& text, qsizetype start, QChar separator, qsizetype* position = nullptr,
                  bool trim = true, bool skipLeading = false);

// The text in upper case, character by character, as far as the suite's files can hold it: a character whose
// upper case has two characters or lies outside code page 1252 stays as it is.
QString UpperCased(QString text);

// The value of a command line switch: the text after its first match, up to the next blank, trimmed. Null if
// the switch is missing. Switches are in upper case, as the command line is.
QString SwitchValue(const QString& commandLine, const QString& name);

} // namespace tolvex
