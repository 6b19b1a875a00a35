#include "network/forms/RowTable.h"

#include "ui/style/Style.h"

#include <QHeaderView>
#include <QPainter>
#include <QScrollBar>

namespace tolvex {

namespace {

// What the size asks for.
constexpr int fewestRows = 5;
constexpr int mostRows = 14;
constexpr int fewestCharacters = 16; // of the stretched column
constexpr int rowPadding = 12;
constexpr int columnPadding = 16;

} // namespace

RowTable::RowTable(QWidget* parent)
    : QTableView(parent) {
    setSelectionMode(QAbstractItemView::SingleSelection);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setTabKeyNavigation(false);
    setCornerButtonEnabled(false);
    setWordWrap(false);
    setShowGrid(false);
    // Headings begin where the texts of the cells do.
    setStyleSheet(QStringLiteral("QHeaderView::section { padding: 6px 4px; }"));
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    verticalHeader()->hide();
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + rowPadding);
    horizontalHeader()->setSectionsClickable(false);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
}

void RowTable::setEmptyText(const QString& text) {
    emptyText_ = text;
    viewport()->update();
}

int RowTable::row() const {
    return currentIndex().isValid() ? currentIndex().row() : -1;
}

void RowTable::selectRow(int row) {
    const int column = qMax(0, currentIndex().column());
    setCurrentIndex(model()->index(qMin(row, model()->rowCount() - 1), column));
}

void RowTable::fitColumns(int stretched) {
    for (int column = 0; column < model()->columnCount(); ++column) {
        const int content = qMax(sizeHintForColumn(column), horizontalHeader()->sectionSizeHint(column));
        setColumnWidth(column, content + columnPadding);
    }
    stretched_ = stretched;
    content_ = columnWidth(stretched);
    stretch();
    updateGeometry();
}

void RowTable::stretch() {
    if (stretched_ < 0)
        return;
    const int others = horizontalHeader()->length() - columnWidth(stretched_);
    const int narrowest = qMin(content_, fontMetrics().averageCharWidth() * fewestCharacters);
    setColumnWidth(stretched_, qMax(narrowest, viewport()->width() - others));
}

QSize RowTable::sizeHint() const {
    const int rows = qBound(fewestRows, model() ? model()->rowCount() : 0, mostRows);
    int width = content_;
    for (int column = 0; model() && column < model()->columnCount(); ++column)
        width += column == stretched_ ? 0 : columnWidth(column);
    const int height =
        horizontalHeader()->sizeHint().height() + rows * verticalHeader()->defaultSectionSize();
    const int border = 2 * qMax(frameWidth(), 1) + 2;
    return {width + verticalScrollBar()->sizeHint().width() + border, height + border};
}

void RowTable::paintEvent(QPaintEvent* event) {
    QTableView::paintEvent(event);
    if (!model() || model()->rowCount() > 0)
        return;
    QPainter painter(viewport());
    painter.setPen(tokens().quiet);
    painter.drawText(viewport()->rect().adjusted(24, 16, -24, -16), Qt::AlignCenter | Qt::TextWordWrap,
                     emptyText_);
}

// The first row of an empty list tells how wide its columns have to be.
void RowTable::rowsInserted(const QModelIndex& parent, int first, int last) {
    QTableView::rowsInserted(parent, first, last);
    if (stretched_ >= 0 && first == 0)
        fitColumns(stretched_);
}

void RowTable::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    stretch();
}

} // namespace tolvex
