// Values as people write them at a shell: flags, words of a list, whole numbers, colours. A text that is not
// one gives an invalid variant, and in *why the end of a sentence that begins with the setting's name.
#pragma once

#include <QString>
#include <QVariant>

#include <span>

namespace tolvex {

QString FlagWord(bool flag); // "yes", "no"
// 0, 1, -1, true, false, on, off, yes, no, in any case.
QVariant ParseFlag(const QString& text, QString* why);

// The number of a word in its list. The text is the word, in any case and with or without its full stop, or
// the number itself.
QVariant ParseWord(std::span<const char* const> words, const QString& text, QString* why);

// A whole number from `lowest` to `highest`.
QVariant ParseWhole(const QString& text, qint64 lowest, qint64 highest, QString* why);

// A blue-green-red integer, "0x00FF00" or decimal; system colours have the top bit ("0x8000000F").
QString ColourWord(qint32 colour);
QVariant ParseColour(const QString& text, QString* why);

} // namespace tolvex
