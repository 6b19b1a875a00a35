// The text of a command as bytes and as something a user can read and type. A text box or a shell cannot hold
// control characters as they are: a carriage return comes back as a line feed, others vanish. With escapes
// every byte can be shown and typed:
//
//     \r  \n  \t  \\      carriage return, line feed, tab, backslash
//     \x02                any byte, two hexadecimal digits
//
// A line break that is typed into a box is a carriage return and a line feed.
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace tolvex {

enum class TextForm {
    AsItStands, // every character is its byte
    Box,        // the same, but a line feed alone is a line break
    Escaped     // from a box, with escapes
};

// Shows bytes with escapes for everything but printable characters. `lineBreaks`: each pair of carriage
// return and line feed becomes a line break ("\n") instead, as in a box of several lines. The result reads
// back as the same bytes.
QString ShowCommandText(const QByteArray& bytes, bool lineBreaks);

// What is wrong with a text, and at which character.
struct TextFault {
    QString sentence;
    qsizetype place = 0;
};

// The bytes that a text stands for. Nothing, and the reason in *fault, for a character that code page 1252
// does not have and for an escape that does not exist.
std::optional<QByteArray> ReadCommandText(const QString& text, TextForm form, TextFault* fault = nullptr);

// "02 0D 48": bytes in hexadecimal.
QString HexOf(const QByteArray& bytes);

} // namespace tolvex
