#include "hardware/forms/LineGrid.h"

#include "core/text/Numbers.h"
#include "hardware/LineDisplay.h"
#include "hardware/LineRows.h"
#include "hardware/forms/LineUsageModel.h"
#include "platform/Prompts.h"
#include "ui/binding/OptionList.h"
#include "ui/style/Style.h"
#include "ui/style/TextBoxes.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QScrollBar>

namespace tolvex {

namespace {

// The given widths are for smaller letters than ours: 15 twips a pixel there.
constexpr int TwipsPerPixel = 12;
constexpr int SelectedOfDescription = 20;
constexpr int MostUndone = 100;
// Used to calculate the size.
constexpr int FewestRowsShown = 12;
constexpr int WidestDescription = 480; // pixels

bool isTyping(const QKeyEvent* key) {
    return !key->text().isEmpty() && key->text()[0].isPrint() &&
           !(key->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
}

} // namespace

LineGrid::LineGrid(QWidget* parent)
    : QTableView(parent)
    , txtDescription_(editor_.addTextBox("txtDescription", "Description of the selected lines"))
    , txtInfo_(editor_.addTextBox("txtInfo", "Number for the selected lines"))
    , ListOptions_(editor_.addList("ListOptions", "Choices for the selected lines")) {
    txtDescription_->setMaxLength(LongestDescription);
    RestrictTo(txtDescription_, FittingDescription, QStringLiteral("The file cannot hold this character."));
    connect(&editor_, &InCellEditor::chosen, this, &LineGrid::choose);
    connect(&editor_, &InCellEditor::committed, this, &LineGrid::storeText);
    connect(&editor_, &InCellEditor::dropped, this, [this] { takeBack(before_); });

    setStyleSheet(
        QStringLiteral("QTableView { gridline-color: %1; } QHeaderView::section { padding: 6px 4px; }")
            .arg(tokens().line.name()));
    setSelectionMode(QAbstractItemView::ContiguousSelection);
    setSelectionBehavior(QAbstractItemView::SelectItems);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setTabKeyNavigation(false);
    setCornerButtonEnabled(false);
    setWordWrap(false);
    verticalHeader()->hide();
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 10);
    horizontalHeader()->setSectionsClickable(false);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setMinimumSectionSize(24);

    const auto addCommand = [this](const char* text, const QKeySequence& keys, void (LineGrid::*run)()) {
        auto* action = new QAction(QLatin1String(text), this);
        action->setShortcut(keys);
        action->setShortcutContext(Qt::WidgetShortcut);
        connect(action, &QAction::triggered, this, run);
        addAction(action);
    };
    addCommand("&Undo", QKeySequence::Undo, &LineGrid::undo);
    addCommand("&Copy lines", QKeySequence::Copy, &LineGrid::copyLines);
    addCommand("&Paste lines", QKeySequence::Paste, &LineGrid::pasteLines);
    addCommand("&Not in use", QKeySequence::Delete, &LineGrid::clearLines);
    setContextMenuPolicy(Qt::ActionsContextMenu);
}

void LineGrid::setLines(LineUsageModel* model) {
    model_ = model;
    setModel(model);
    // As wide as given, and never narrower than the content.
    const QFontMetrics metrics(font());
    const QStringList widest = {"100", "Output", "Y", {}, "ZQS - Group Active", {}, {}, {}, {}};
    for (int column = 0; column < LineColumnCount; ++column) {
        const LineColumnRow& row = LineColumns()[static_cast<std::size_t>(column)];
        const int content = qMax(metrics.horizontalAdvance(QLatin1String(row.heading)),
                                 metrics.horizontalAdvance(widest[column])) +
                            20;
        setColumnWidth(column, qMax(row.twips / TwipsPerPixel, content));
    }
    descriptionWidth_ = columnWidth(ColumnDescription);
    for (const int column : {ColumnLine, ColumnType, ColumnLogic, ColumnAction, ColumnInfo1, ColumnInfo2})
        columnsWidth_ += columnWidth(column);
}

// Room beyond the given widths goes to the descriptions.
void LineGrid::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    fillWidth();
}

void LineGrid::fillWidth() {
    const int others = horizontalHeader()->length() - columnWidth(ColumnDescription);
    setColumnWidth(ColumnDescription, qMax(descriptionWidth_, viewport()->width() - others));
}

HardwareCard& LineGrid::card() const {
    return model_->card();
}

CardLines LineGrid::lines() const {
    return {card(), *type_, model_->rowCount()};
}

void LineGrid::setCardType(const CardTypeRow* type) {
    finishEditing();
    type_ = type;
    undo_.clear();
}

void LineGrid::showLines() {
    model_->UpdateGridDisplay();
    hideEmptyColumns();
    hideRows();
    updateGeometry();
}

// The columns that can have content, and all rows, but enough that an empty grid does not look lost.
QSize LineGrid::sizeHint() const {
    const int rows = qMax(model_->rowCount(), FewestRowsShown);
    const int descriptions =
        qBound(descriptionWidth_, sizeHintForColumn(ColumnDescription), WidestDescription);
    const QSize bars(verticalScrollBar()->sizeHint().width(), horizontalScrollBar()->sizeHint().height());
    const QSize cells(columnsWidth_ + descriptions, horizontalHeader()->sizeHint().height() +
                                                        rows * verticalHeader()->defaultSectionSize());
    return cells + bars + QSize(2, 2) * frameWidth();
}

void LineGrid::showOnlyLinesInUse(bool on) {
    finishEditing();
    onlyInUse_ = on;
    hideRows();
}

void LineGrid::hideRows() {
    for (int row = 0; row < model_->rowCount(); ++row)
        setRowHidden(row, onlyInUse_ && !card().Lines[row + 1].inUse());
    viewport()->update();
}

// An Info column is visible while a visible line has content or choices in it.
void LineGrid::hideEmptyColumns() {
    for (const int column : {ColumnInfo1, ColumnInfo2, ColumnInfo3, ColumnInfo4}) {
        bool used = false;
        for (int row = 0; row < model_->rowCount() && !used; ++row)
            used = EditorOf(card().Lines[row + 1], column).kind != CellEditor::Kind::None;
        setColumnHidden(column, !used);
    }
    if (currentIndex().isValid() && isColumnHidden(currentIndex().column()))
        selectionModel()->setCurrentIndex(currentIndex().siblingAtColumn(ColumnAction),
                                          QItemSelectionModel::NoUpdate);
    fillWidth();
}

void LineGrid::setEmptyText(const QString& text) {
    emptyText_ = text;
    viewport()->update();
}

void LineGrid::paintEvent(QPaintEvent* event) {
    QTableView::paintEvent(event);
    for (int row = 0; row < model_->rowCount(); ++row)
        if (!isRowHidden(row))
            return;
    QPainter painter(viewport());
    painter.setPen(tokens().quiet);
    painter.drawText(viewport()->rect().adjusted(24, 24, -24, -24), Qt::AlignCenter | Qt::TextWordWrap,
                     model_->rowCount() == 0 ? emptyText_
                                             : QStringLiteral("No line of this card is in use."));
}

LineNumbers LineGrid::selectedLines() const {
    LineNumbers lines;
    const QModelIndex current = currentIndex();
    if (!current.isValid())
        return lines;
    int top = current.row();
    int bottom = top;
    for (const QItemSelectionRange& range : selectionModel()->selection()) {
        top = qMin(top, range.top());
        bottom = qMax(bottom, range.bottom());
    }
    for (int row = top; row <= bottom; ++row)
        if (!isRowHidden(row))
            lines.append(row + 1);
    // The cursor is at the end of a selection: if it is at the top, the selection was made upwards.
    if (current.row() == top)
        std::reverse(lines.begin(), lines.end());
    return lines;
}

// Selections stay in the column where they began.
void LineGrid::setSelection(const QRect& rect, QItemSelectionModel::SelectionFlags flags) {
    const int column = pressedColumn_ >= 0 ? pressedColumn_ : currentIndex().column();
    if (column < 0) {
        QTableView::setSelection(rect, flags);
        return;
    }
    QRect narrow = rect;
    narrow.setLeft(columnViewportPosition(column) + 1);
    narrow.setWidth(1);
    QTableView::setSelection(narrow, flags);
}

QModelIndex LineGrid::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) {
    const QModelIndex next = QTableView::moveCursor(action, modifiers);
    if (!(modifiers & Qt::ShiftModifier) || !next.isValid())
        return next;
    return next.siblingAtColumn(currentIndex().column());
}

void LineGrid::selectAll() {
    const int rows = model_->rowCount();
    if (rows == 0)
        return;
    const int column = qMax(0, currentIndex().column());
    selectionModel()->setCurrentIndex(model_->index(rows - 1, column), QItemSelectionModel::NoUpdate);
    selectionModel()->select(QItemSelection(model_->index(0, column), model_->index(rows - 1, column)),
                             QItemSelectionModel::ClearAndSelect);
}

void LineGrid::mousePressEvent(QMouseEvent* event) {
    finishEditing();
    const QModelIndex cell = indexAt(event->pos());
    const bool extends = event->modifiers() & Qt::ShiftModifier;
    if (event->button() == Qt::RightButton && selectionModel()->isSelected(cell))
        return; // the menu is for the selection
    pressedColumn_ = extends && currentIndex().isValid() ? currentIndex().column() : cell.column();
    QTableView::mousePressEvent(event);
}

void LineGrid::mouseReleaseEvent(QMouseEvent* event) {
    QTableView::mouseReleaseEvent(event);
    const int column = std::exchange(pressedColumn_, -1);
    if (event->button() != Qt::LeftButton || column < 0 || !currentIndex().isValid())
        return;
    selectionModel()->setCurrentIndex(currentIndex().siblingAtColumn(column), QItemSelectionModel::NoUpdate);
    editCell();
}

// Treats a double click as two clicks.
void LineGrid::mouseDoubleClickEvent(QMouseEvent* event) {
    mousePressEvent(event);
}

void LineGrid::keyPressEvent(QKeyEvent* event) {
    const int key = event->key();
    if (event->matches(QKeySequence::SelectAll)) {
        selectAll();
    } else if (key == Qt::Key_F2 || key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Space) {
        editCell();
    } else if (isTyping(event) && currentIndex().column() >= ColumnDescription) {
        editCell(event);
    } else if (!isTyping(event)) {
        QTableView::keyPressEvent(event);
    }
}

void LineGrid::editCell(const QKeyEvent* key) {
    finishEditing();
    lines_ = selectedLines();
    tag_ = -1;
    if (lines_.isEmpty() || !type_)
        return;
    const QModelIndex cell = model_->index(lines_.first() - 1, currentIndex().column());
    beginChange();
    const HardwareLine& current = card().Lines[lines_.first()];
    const CellEditor editor = EditorOf(current, cell.column());
    tag_ = editor.tag;
    scrollTo(cell);
    switch (editor.kind) {
    case CellEditor::Kind::Type:
        ToggleLineType(card(), *type_, lines_);
        endChange();
        break;
    case CellEditor::Kind::Logic:
        ToggleLogic(card(), lines_);
        endChange();
        break;
    case CellEditor::Kind::Description:
        editor_.openText(txtDescription_, cell, current.description(), SelectedOfDescription, key);
        break;
    case CellEditor::Kind::Number: {
        const QString number = QString::number(editor.number);
        editor_.openText(txtInfo_, cell, number, number.size(), key);
        break;
    }
    case CellEditor::Kind::List:
        editor_.openList(ListOptions_, cell, editor.choices, editor.selected, key);
        break;
    case CellEditor::Kind::None:
        break;
    }
}

// Starts from the lines as they were when the list opened, so that moving past an entry by key leaves no
// trace.
void LineGrid::choose(qint32 value) {
    card().Lines = before_;
    if (tag_ == 0)
        ChooseAction(card(), lines_, value);
    else if (tag_ > 0)
        SetParameter(card(), lines_, tag_, value);
    changed();
}

void LineGrid::storeText(QWidget* box) {
    QString wrong;
    if (box == txtDescription_)
        wrong = SetDescription(lines(), lines_, txtDescription_->text());
    else if (box == txtInfo_)
        SetParameter(card(), lines_, tag_, ToLong(LeadingNumber(txtInfo_->text())));
    endChange();
    if (!wrong.isEmpty())
        platform::prompts().ask({wrong, platform::Icon::Information, platform::Buttons::Ok});
}

void LineGrid::endChange() {
    const auto differs = [this](int n) { return !card().Lines[n].isStoredAs(before_[n]); };
    for (int n = 1; n <= LinesPerCard; ++n) {
        if (!differs(n))
            continue;
        undo_.append(before_);
        if (undo_.size() > MostUndone)
            undo_.removeFirst();
        break;
    }
    changed();
}

void LineGrid::takeBack(const Lines& lines) {
    card().Lines = lines;
    changed();
}

void LineGrid::undo() {
    if (!undo_.isEmpty())
        takeBack(undo_.takeLast());
}

void LineGrid::changed() {
    model_->UpdateGridDisplay();
    hideEmptyColumns();
    emit linesChanged();
}

void LineGrid::copyLines() {
    LineNumbers lines = selectedLines();
    std::sort(lines.begin(), lines.end());
    if (!lines.isEmpty())
        QApplication::clipboard()->setText(RowsOfLines(card(), lines));
}

void LineGrid::pasteLines() {
    LineNumbers over = selectedLines();
    if (over.isEmpty() || !type_)
        return;
    // From the top of the selection down, over the visible lines.
    int line = *std::min_element(over.begin(), over.end());
    over.clear();
    for (; line <= model_->rowCount(); ++line)
        if (!isRowHidden(line - 1))
            over.append(line);
    QString why;
    const auto pasted = LinesOfRows(QApplication::clipboard()->text(), &why);
    beginChange();
    if (pasted && PasteLines(lines(), over, *pasted, &why)) {
        endChange();
        if (pasted->size() <= over.size())
            return;
        why = QStringLiteral("Only the first %1 of %2 lines were pasted: the card has no more.")
                  .arg(over.size())
                  .arg(pasted->size());
    }
    platform::prompts().ask({why, platform::Icon::Information, platform::Buttons::Ok});
}

void LineGrid::clearLines() {
    const LineNumbers lines = selectedLines();
    if (lines.isEmpty())
        return;
    beginChange();
    ChooseAction(card(), lines, 0);
    endChange();
}

} // namespace tolvex
