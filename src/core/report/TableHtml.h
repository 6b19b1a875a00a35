// Tables in HTML, as they are printed.
#pragma once

#include <QStringList>

namespace tolvex {

struct PrintedColumn {
    const char* heading;
    int width; // percent of the page
};

// A table whose heading comes again on each page. Each row has one cell for each column.
QString TableHtml(const QList<PrintedColumn>& columns, const QList<QStringList>& rows);

} // namespace tolvex
