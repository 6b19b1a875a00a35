#include "core/report/TableHtml.h"

namespace tolvex {

namespace {

QString rowOf(const QList<PrintedColumn>& columns, const QStringList& cells, const char* tag) {
    QString row = QStringLiteral("<tr>");
    for (qsizetype i = 0; i < cells.size(); ++i)
        row += QStringLiteral("<%1 align='left' width='%2%'>%3</%1>")
                   .arg(QLatin1String(tag), QString::number(columns[i].width), cells[i].toHtmlEscaped());
    return row + QStringLiteral("</tr>\n");
}

} // namespace

QString TableHtml(const QList<PrintedColumn>& columns, const QList<QStringList>& rows) {
    QStringList headings;
    for (const PrintedColumn& column : columns)
        headings += QLatin1String(column.heading);
    QString html = QStringLiteral("<table border='1' cellspacing='0' cellpadding='3' width='100%'><thead>") +
                   rowOf(columns, headings, "th") + QStringLiteral("</thead>\n");
    for (const QStringList& row : rows)
        html += rowOf(columns, row, "td");
    return html + QStringLiteral("</table>\n");
}

} // namespace tolvex
