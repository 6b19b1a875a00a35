// Prompts that print to a PDF file, as if that printer had been chosen.
#pragma once

#include "support/ScriptedPrompts.h"

#include <QPrinter>

namespace tolvex::tests {

class PrintingPrompts : public ScriptedPrompts {
public:
    QString pdf; // host path; empty: cancelled
    bool offeredSelection = false;
    bool onlySelection = false;

    bool pickPrinter(QPrinter& printer, bool withSelection) override {
        offeredSelection = withSelection;
        if (pdf.isEmpty())
            return false;
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(pdf);
        printer.setPrintRange(onlySelection ? QPrinter::Selection : QPrinter::AllPages);
        return true;
    }
};

} // namespace tolvex::tests
