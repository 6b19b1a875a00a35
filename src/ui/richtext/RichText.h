// Rich text files: a small reader that fills a text document from RTF bytes, so that notes and update notices
// show their formatting: bold, italic, underline, strike, sizes, fonts, colours, paragraphs with indents and
// alignment, bullets, and tables as lines of text with a tab between cells. Pictures, headers and unknown
// destinations are skipped.
#pragma once

#include <QByteArray>

class QTextDocument;

namespace tolvex {

// Whether the bytes begin like a rich text file.
bool IsRichText(const QByteArray& bytes);

// Replaces the document's content. Reads as much as it can of a damaged or truncated file; never fails, never
// goes deeper than MaxRichTextDepth groups (deeper ones are skipped). Text is code page 1252 unless written
// as \u characters. Cost: linear in the length of the bytes.
inline constexpr int MaxRichTextDepth = 128;
void LoadRichText(const QByteArray& bytes, QTextDocument& document);

} // namespace tolvex
