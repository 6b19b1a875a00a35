#include "hardware/LineList.h"

#include "hardware/LineDisplay.h"

#include <QStringList>

namespace tolvex {

namespace {

struct Column {
    const char* heading;
    int width; // percent
};
constexpr Column columns[] = {{"Line", 8}, {"Type", 10}, {"Logic", 12}, {"Description", 32}, {"Action", 38}};

QString rowOf(const QStringList& cells, const char* tag) {
    QString row = QStringLiteral("<tr>");
    const Column* column = columns;
    for (const QString& cell : cells)
        row += QStringLiteral("<%1 align='left' width='%2%'>%3</%1>")
                   .arg(QLatin1String(tag), QString::number((column++)->width), cell.toHtmlEscaped());
    return row + QStringLiteral("</tr>\n");
}

QString heading() {
    QStringList cells;
    for (const Column& column : columns)
        cells += QLatin1String(column.heading);
    return rowOf(cells, "th");
}

QString actionOf(const HardwareLine& line) {
    QStringList words;
    if (FindLineAction(line.Action)) {
        const LineTexts texts = TextsOf(line);
        words = {texts.action, texts.info1, texts.info2};
        words.removeAll(QString());
    } else {
        words += QStringLiteral("Action %1").arg(line.Action);
        for (const qint32 data : line.ActionData)
            words += QString::number(data);
    }
    return words.join(QStringLiteral(", "));
}

QStringList cellsOf(int number, const HardwareLine& line) {
    return {QString::number(number), TextsOf(line).type,
            line.ActiveLow ? QStringLiteral("Active low") : QStringLiteral("Normal"), line.description(),
            actionOf(line)};
}

} // namespace

QString LineListHtml(const QString& title, const QString& about, const QList<ListedCard>& cards,
                     bool onlyInUse) {
    QString html = QStringLiteral("<h2>%1</h2><p>%2</p>\n").arg(title.toHtmlEscaped(), about.toHtmlEscaped());
    for (const ListedCard& card : cards) {
        if (card.lines == 0)
            continue;
        QString rows;
        for (int n = 1; n <= card.lines; ++n)
            if (!onlyInUse || card.card->Lines[n].inUse())
                rows += rowOf(cellsOf(n, card.card->Lines[n]), "td");
        html += QStringLiteral("<h3>Card %1: %2%3</h3>\n")
                    .arg(QString::number(card.number), card.about.toHtmlEscaped(),
                         card.applied ? QString() : QStringLiteral(" (not applied yet)"));
        if (rows.isEmpty()) {
            html += QStringLiteral("<p>No line of this card is in use.</p>\n");
            continue;
        }
        html += QStringLiteral("<table border='1' cellspacing='0' cellpadding='3' width='100%'><thead>") +
                heading() + QStringLiteral("</thead>\n") + rows + QStringLiteral("</table>\n");
    }
    return html;
}

} // namespace tolvex
