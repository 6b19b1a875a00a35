#include "audio/forms/CartResultList.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>

namespace tolvex {

namespace {

// Twips, 15 a pixel.
constexpr int twipsPerPixel = 15;
constexpr int numberWidth = 700; // of the columns "Cart" and "Length"
constexpr int beside = 90 + 225 + 30;
// Pixels around the text of a heading or a row.
constexpr int cellMargins = 20;
constexpr int rowMargin = 6;

} // namespace

CartResultList::CartResultList(QWidget* parent)
    : QTableView(parent) {
    setModel(&carts_);
    hideColumn(FoundCarts::Key);
    setSelectionMode(SingleSelection);
    setSelectionBehavior(SelectRows);
    setEditTriggers(NoEditTriggers);
    setShowGrid(false);
    setTabKeyNavigation(false);
    setWordWrap(false);
    setCornerButtonEnabled(false);
    setStyleSheet(QStringLiteral("QTableView::item { padding: 0 5px; }")); // below the headings' texts
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    QHeaderView* header = horizontalHeader();
    header->setSectionsClickable(true);
    header->setHighlightSections(false);
    header->setMinimumSectionSize(20);
    connect(header, &QHeaderView::sectionClicked, this, &CartResultList::sortBy);
    connect(this, &QTableView::doubleClicked, this,
            [this](const QModelIndex& index) { emit chosen(carts_.cart(index.row())); });
}

void CartResultList::clear() {
    clearSpans();
    carts_.clear();
}

void CartResultList::showNone() {
    carts_.addNone();
    setSpan(0, FoundCarts::CartNo, 1, FoundCarts::ColumnCount - FoundCarts::CartNo);
}

void CartResultList::selectAny() {
    if (carts_.rowCount() > 0 && !selectionModel()->hasSelection())
        setCurrentIndex(carts_.index(0, FoundCarts::CartNo));
}

void CartResultList::sortBy(int section) {
    const int column = section == FoundCarts::CartNo ? int(FoundCarts::Key) : section;
    order_ = column == sortedBy_ && order_ == Qt::AscendingOrder ? Qt::DescendingOrder : Qt::AscendingOrder;
    sortedBy_ = column;
    carts_.sort(column, order_);
    horizontalHeader()->setSortIndicatorShown(true);
    horizontalHeader()->setSortIndicator(section, order_);
}

void CartResultList::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        if (currentIndex().isValid())
            emit chosen(carts_.cart(currentIndex().row()));
        return;
    }
    QTableView::keyPressEvent(event);
}

void CartResultList::mousePressEvent(QMouseEvent* event) {
    QTableView::mousePressEvent(event);
    drag_.press(*event, carts_.cart(rowAt(event->position().toPoint().y())));
}

void CartResultList::mouseMoveEvent(QMouseEvent* event) {
    if (drag_.isDown())
        return drag_.move(*event, this);
    QTableView::mouseMoveEvent(event);
}

void CartResultList::mouseReleaseEvent(QMouseEvent* event) {
    drag_.release();
    QTableView::mouseReleaseEvent(event);
}

void CartResultList::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    fitColumns();
}

// Numbers have the room that they need at the text size in force; the lines share the rest.
void CartResultList::fitColumns() {
    const QFontMetrics font = fontMetrics();
    verticalHeader()->setDefaultSectionSize(font.height() + rowMargin);
    const int number = qMax(numberWidth / twipsPerPixel,
                            cellMargins + qMax(font.horizontalAdvance(QStringLiteral("99999")),
                                               font.horizontalAdvance(QStringLiteral("Length"))));
    const int line = (width() - 2 * number - beside / twipsPerPixel) / 3;
    for (const int column : {FoundCarts::CartNo, FoundCarts::Length})
        setColumnWidth(column, number);
    for (const int column : {FoundCarts::Line1, FoundCarts::Line2, FoundCarts::Line3})
        setColumnWidth(column, line);
}

} // namespace tolvex
