// Tables in HTML for printing.
#pragma once

#include <QStringList>

namespace tolvex {

struct PrintedColumn {
    const char* heading;
    int width; // percent of the page
};

// A table whose heading is repeated on each page. Each row has one cell per column.
QString TableHtml(const QList<PrintedColumn>& columns, const QList<QStringList>& rows);

} // namespace tolvex
