#include "hardware/LineList.h"

#include "core/report/TableHtml.h"
#include "hardware/LineDisplay.h"

namespace tolvex {

namespace {

const QList<PrintedColumn> columns = {
    {"Line", 8}, {"Type", 10}, {"Logic", 12}, {"Description", 32}, {"Action", 38}};

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
        QList<QStringList> rows;
        for (int n = 1; n <= card.lines; ++n)
            if (!onlyInUse || card.card->Lines[n].inUse())
                rows += cellsOf(n, card.card->Lines[n]);
        html += QStringLiteral("<h3>Card %1: %2%3</h3>\n")
                    .arg(QString::number(card.number), card.about.toHtmlEscaped(),
                         card.applied ? QString() : QStringLiteral(" (not applied yet)"));
        if (rows.isEmpty()) {
            html += QStringLiteral("<p>No line of this card is in use.</p>\n");
            continue;
        }
        html += TableHtml(columns, rows);
    }
    return html;
}

} // namespace tolvex
