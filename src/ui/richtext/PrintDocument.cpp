#include "ui/richtext/PrintDocument.h"

#include "core/report/ProblemReport.h"
#include "platform/Prompts.h"
#include "platform/files/Files.h"

#include <QBuffer>
#include <QPdfWriter>
#include <QPrinter>
#include <QTextDocument>

namespace tolvex {

namespace {

constexpr int PdfDotsPerInch = 300;

void printTo(QPagedPaintDevice& device, const QString& html) {
    QTextDocument document;
    document.setHtml(html);
    document.print(&device);
}

} // namespace

void PrintHtml(const QString& html) {
    QPrinter printer;
    if (!platform::prompts().pickPrinter(printer, false))
        return;
    printTo(printer, html);
    if (printer.printerState() == QPrinter::Error || !printer.isValid())
        ProblemReport(QStringLiteral("while printing."), platform::DeviceIoError);
}

void SaveHtmlAsPdf(const QString& html, const QString& title, const QString& question,
                   const QString& fileName) {
    platform::FileQuestion asked;
    asked.title = question;
    asked.filter = QStringLiteral("PDF|*.PDF");
    asked.fileName = fileName;
    asked.defaultExtension = QStringLiteral("PDF");
    asked.mustExist = false;
    asked.saving = true;
    const QString file = platform::prompts().pickFile(asked).value_or(QString()).trimmed();
    if (file.isEmpty())
        return;
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    writer.setTitle(title);
    writer.setResolution(PdfDotsPerInch);
    printTo(writer, html);
    buffer.close();
    if (const int error = platform::ReplaceWholeFile(file, bytes))
        ProblemReport(QStringLiteral("saving the file ") + file, error);
}

} // namespace tolvex
