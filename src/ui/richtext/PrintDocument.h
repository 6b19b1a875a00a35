// A document in HTML, such as the tables of core/report/TableHtml.h, on paper or in a PDF file.
#pragma once

#include <QString>

namespace tolvex {

// Lets the user choose the printer and prints. What goes wrong is reported.
void PrintHtml(const QString& html);

// Asks for the file and writes the PDF whole. `question` is the chooser's title, `title` the document's,
// `fileName` what is proposed ("Hardware.pdf"). What goes wrong is reported.
void SaveHtmlAsPdf(const QString& html, const QString& title, const QString& question,
                   const QString& fileName);

} // namespace tolvex
