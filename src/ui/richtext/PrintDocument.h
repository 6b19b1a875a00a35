// Prints a document in HTML, such as the tables of core/report/TableHtml.h, or saves it as PDF.
#pragma once

#include <QString>

namespace tolvex {

// Lets the user choose the printer and prints. Failures are reported.
void PrintHtml(const QString& html);

// Asks for the file and writes the PDF as a whole. `question` is the chooser's title, `title` the document's,
// `fileName` the proposed name ("Hardware.pdf"). Failures are reported.
void SaveHtmlAsPdf(const QString& html, const QString& title, const QString& question,
                   const QString& fileName);

} // namespace tolvex
