#include "core/report/ProblemReport.h"

#include "platform/Prompts.h"

namespace tolvex {

namespace {

struct RunTimeError {
    int number;
    const char* text;
};

constexpr RunTimeError runTimeErrors[] = {
    {3, "Return without GoSub"},
    {5, "Invalid procedure call or argument"},
    {6, "Overflow"},
    {7, "Out of memory"},
    {9, "Subscript out of range"},
    {10, "This array is fixed or temporarily locked"},
    {11, "Division by zero"},
    {13, "Type mismatch"},
    {14, "Out of string space"},
    {16, "Expression too complex"},
    {17, "Can't perform requested operation"},
    {18, "User interrupt occurred"},
    {20, "Resume without error"},
    {28, "Out of stack space"},
    {35, "Sub or Function not defined"},
    {47, "Too many DLL application clients"},
    {48, "Error in loading DLL"},
    {49, "Bad DLL calling convention"},
    {51, "Internal error"},
    {52, "Bad file name or number"},
    {53, "File not found"},
    {54, "Bad file mode"},
    {55, "File already open"},
    {57, "Device I/O error"},
    {58, "File already exists"},
    {59, "Bad record length"},
    {61, "Disk full"},
    {62, "Input past end of file"},
    {63, "Bad record number"},
    {67, "Too many files"},
    {68, "Device unavailable"},
    {70, "Permission denied"},
    {71, "Disk not ready"},
    {74, "Can't rename with different drive"},
    {75, "Path/File access error"},
    {76, "Path not found"},
    {91, "Object variable or With block variable not set"},
    {92, "For loop not initialized"},
    {93, "Invalid pattern string"},
    {94, "Invalid use of Null"},
    {321, "Invalid file format"},
    {322, "Can't create necessary temporary file"},
    {325, "Invalid format in resource file"},
    {380, "Invalid property value"},
    {381, "Invalid property array index"},
    {424, "Object required"},
    {429, "ActiveX component can't create object"},
    {438, "Object doesn't support this property or method"},
    {440, "Automation error"},
    {448, "Named argument not found"},
    {449, "Argument not optional"},
    {450, "Wrong number of arguments or invalid property assignment"},
    {457, "This key is already associated with an element of this collection"},
    {481, "Invalid picture"},
    {482, "Printer error"},
    {483, "Printer driver does not support specified property"},
};

} // namespace

QString ErrorText(int errorNumber) {
    for (const RunTimeError& error : runTimeErrors)
        if (error.number == errorNumber)
            return QLatin1String(error.text);
    return {};
}

QString ProblemReport(const QString& action, int errorNumber, bool quiet, const QString& description) {
    const platform::PointerKeeper pointer(platform::Pointer::Default);
    QString report = QStringLiteral("There was a problem ") + action.trimmed();
    if (errorNumber != 0) {
        QString text = ErrorText(errorNumber);
        if (text.isEmpty())
            text = description.trimmed();
        if (text.isEmpty())
            text = QStringLiteral("Application-defined or object-defined error");
        report += QStringLiteral(" and the error's description was reported as : \n\n\"") + text +
                  QStringLiteral("\" (") + QString::number(errorNumber) + u')';
    }
    if (!quiet)
        ShowExclamation(report);
    return report;
}

void ShowExclamation(const QString& text, const QString& title) {
    platform::Message message;
    message.text = text;
    message.icon = platform::Icon::Exclamation;
    message.title = title;
    platform::prompts().ask(message);
}

} // namespace tolvex
