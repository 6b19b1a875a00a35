#include "hardware/LineList.h"

#include "hardware/LineDisplay.h"

#include <QStringList>

namespace tolvex {

namespace {

QString rowOf(const QStringList& cells, const char* tag) {
    QString row = QStringLiteral("<tr>");
    for (const QString& cell : cells)
        row += QStringLiteral("<%1 align='left'>%2</%1>").arg(QLatin1String(tag), cell.toHtmlEscaped());
    return row + QStringLiteral("</tr>\n");
}

QStringList cellsOf(int number, const HardwareLine& line) {
    const LineTexts texts = TextsOf(line);
    QStringList action = {texts.action, texts.info1, texts.info2};
    action.removeAll(QString());
    return {QString::number(number), texts.type,
            line.ActiveLow ? QStringLiteral("Active low") : QStringLiteral("Normal"), texts.description,
            action.join(QStringLiteral(", "))};
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
        html += QStringLiteral("<h3>Card %1: %2</h3>\n").arg(card.number).arg(card.about.toHtmlEscaped());
        if (rows.isEmpty()) {
            html += QStringLiteral("<p>No line of this card is in use.</p>\n");
            continue;
        }
        html += QStringLiteral("<table border='1' cellspacing='0' cellpadding='3' width='100%'><thead>") +
                rowOf({QStringLiteral("Line"), QStringLiteral("Type"), QStringLiteral("Logic"),
                       QStringLiteral("Description"), QStringLiteral("Action")},
                      "th") +
                QStringLiteral("</thead>\n") + rows + QStringLiteral("</table>\n");
    }
    return html;
}

} // namespace tolvex
