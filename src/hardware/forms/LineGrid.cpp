#include "hardware/forms/LineGrid.h"

#include "core/Numbers.h"
#include "dialogs/Style.h"
#include "dialogs/TextBoxes.h"
#include "hardware/LineDisplay.h"
#include "hardware/LineRows.h"
#include "hardware/forms/LineUsageModel.h"
#include "hardware/forms/OptionList.h"
#include "platform/Prompts.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>

namespace tolvex {

namespace {

// Widths are told for smaller letters than ours: 15 twips a pixel there.
constexpr int TwipsPerPixel = 12;
constexpr int LongestDescription = 254;
constexpr int SelectedOfDescription = 20;

bool isTyping(const QKeyEvent* key) {
    return !key->text().isEmpty() && key->text()[0].isPrint() &&
           !(key->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
}

QLineEdit* makeBox(const char* name, const char* accessibleName, QWidget* grid) {
    auto* box = new QLineEdit(grid);
    box->setObjectName(QLatin1String(name));
    box->setAccessibleName(QLatin1String(accessibleName));
    box->setStyleSheet(QStringLiteral("QLineEdit { border-radius: 0; padding: 0 4px; min-height: 0; }"));
    box->hide();
    return box;
}

} // namespace

LineGrid::LineGrid(QWidget* parent)
    : QTableView(parent)
    , txtDescription_(makeBox("txtDescription", "Description of the selected lines", viewport()))
    , txtInfo_(makeBox("txtInfo", "Number for the selected lines", viewport()))
    , ListOptions_(new OptionList(viewport())) {
    ListOptions_->setObjectName(QStringLiteral("ListOptions"));
    ListOptions_->setAccessibleName(QStringLiteral("Choices for the selected lines"));
    txtDescription_->setMaxLength(LongestDescription);
    for (QLineEdit* box : {txtDescription_, txtInfo_})
        box->installEventFilter(this);

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

    connect(ListOptions_, &OptionList::clicked, this, &LineGrid::choose);
    connect(ListOptions_, &OptionList::reached, this, &LineGrid::choose);
    connect(ListOptions_, &OptionList::cancelled, this, &LineGrid::restore);
    connect(ListOptions_, &OptionList::closed, this, [this] { leaveEditor(ListOptions_); });

    const auto addCommand = [this](const char* text, const QKeySequence& keys, void (LineGrid::*run)()) {
        auto* action = new QAction(QLatin1String(text), this);
        action->setShortcut(keys);
        action->setShortcutContext(Qt::WidgetShortcut);
        connect(action, &QAction::triggered, this, run);
        addAction(action);
    };
    addCommand("&Copy lines", QKeySequence::Copy, &LineGrid::copyLines);
    addCommand("&Paste lines", QKeySequence::Paste, &LineGrid::pasteLines);
    addCommand("&Not in use", QKeySequence::Delete, &LineGrid::clearLines);
    setContextMenuPolicy(Qt::ActionsContextMenu);
}

void LineGrid::setLines(LineUsageModel* model) {
    model_ = model;
    setModel(model);
    // As wide as told, and never narrower than what stands in it.
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
}

// Room beyond the told widths goes to the descriptions.
void LineGrid::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    const int others = horizontalHeader()->length() - columnWidth(ColumnDescription);
    setColumnWidth(ColumnDescription, qMax(descriptionWidth_, viewport()->width() - others));
}

HardwareCard& LineGrid::card() const {
    return model_->card();
}

void LineGrid::showOnlyLinesInUse(bool on) {
    onlyInUse_ = on;
    hideRows();
}

void LineGrid::hideRows() {
    for (int row = 0; row < model_->rowCount(); ++row)
        setRowHidden(row, onlyInUse_ && !card().Lines[row + 1].inUse());
    viewport()->update();
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
    // The cursor stands at the end of a selection: one whose end is its top was made upwards.
    if (current.row() == top)
        std::reverse(lines.begin(), lines.end());
    return lines;
}

// Selections keep to the column in which they began.
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

// The second click of two quick ones is a click like the first.
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

void LineGrid::editCell(QKeyEvent* key) {
    lines_ = selectedLines();
    tag_ = -1;
    if (lines_.isEmpty() || !type_)
        return;
    const QModelIndex cell = model_->index(lines_.first() - 1, currentIndex().column());
    before_.clear();
    for (const int n : lines_)
        before_.append(card().Lines[n]);
    const HardwareLine& current = card().Lines[lines_.first()];
    const CellEditor editor = EditorOf(current, cell.column());
    tag_ = editor.tag;
    scrollTo(cell);
    switch (editor.kind) {
    case CellEditor::Kind::Type:
        if (ToggleLineType(card(), *type_, lines_))
            changed();
        break;
    case CellEditor::Kind::Logic:
        ToggleLogic(card(), lines_);
        changed();
        break;
    case CellEditor::Kind::Description:
        openText(txtDescription_, visualRect(cell), current.description(), SelectedOfDescription, key);
        break;
    case CellEditor::Kind::Number: {
        const QString number = QString::number(editor.number);
        openText(txtInfo_, visualRect(cell), number, static_cast<int>(number.size()), key);
        break;
    }
    case CellEditor::Kind::List:
        ListOptions_->open(editor.choices, editor.selected, visualRect(cell));
        if (key)
            ListOptions_->press(key);
        break;
    case CellEditor::Kind::None:
        break;
    }
}

void LineGrid::openText(QLineEdit* box, const QRect& cell, const QString& text, int selected,
                        QKeyEvent* key) {
    box->setText(key ? key->text() : text);
    box->setGeometry(cell);
    box->show();
    box->setFocus();
    if (!key)
        box->setSelection(0, qMin(selected, static_cast<int>(text.size())));
}

// The range as it was when the list opened, so that a key that leads past an entry leaves nothing of it.
void LineGrid::restore() {
    for (qsizetype i = 0; i < lines_.size(); ++i)
        card().Lines[lines_[i]] = before_[i];
    changed();
}

void LineGrid::choose(qint32 value) {
    for (qsizetype i = 0; i < lines_.size(); ++i)
        card().Lines[lines_[i]] = before_[i];
    if (tag_ == 0)
        ChooseAction(card(), lines_, value);
    else if (tag_ > 0)
        SetParameter(card(), lines_, tag_, value);
    changed();
}

void LineGrid::storeText(QLineEdit* box) {
    if (!box->isVisible())
        return;
    if (box == txtDescription_)
        SetDescription(card(), lines_, box->text());
    else
        SetParameter(card(), lines_, tag_, ToLong(LeadingNumber(box->text())));
    changed();
    leaveEditor(box);
}

void LineGrid::finishEditing() {
    storeText(txtDescription_);
    storeText(txtInfo_);
    if (ListOptions_->isVisible()) {
        ListOptions_->hidePopup();
        leaveEditor(ListOptions_);
    }
}

void LineGrid::leaveEditor(QWidget* editor) {
    if (!editor->isVisible())
        return;
    const bool focused = editor->hasFocus();
    editor->hide();
    if (focused || editor == ListOptions_)
        setFocus();
}

void LineGrid::changed() {
    model_->UpdateGridDisplay();
    emit linesChanged();
}

bool LineGrid::eventFilter(QObject* watched, QEvent* event) {
    auto* box = qobject_cast<QLineEdit*>(watched);
    if (box != txtDescription_ && box != txtInfo_)
        return QTableView::eventFilter(watched, event);
    if (event->type() == QEvent::FocusOut) {
        if (static_cast<QFocusEvent*>(event)->reason() != Qt::PopupFocusReason)
            storeText(box);
    } else if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Escape)
            leaveEditor(box);
        else if (key == Qt::Key_Return || key == Qt::Key_Enter)
            storeText(box);
        else
            return false;
        return true;
    }
    return false;
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
    // From the top of the selection on, over the lines that can be seen.
    int line = *std::min_element(over.begin(), over.end());
    over.clear();
    for (; line <= model_->rowCount(); ++line)
        if (!isRowHidden(line - 1))
            over.append(line);
    QString why;
    const auto lines = LinesOfRows(QApplication::clipboard()->text(), &why);
    if (lines && PasteLines(card(), *type_, over, *lines, &why)) {
        changed();
        if (lines->size() <= over.size())
            return;
        why = QStringLiteral("Only the first %1 of %2 lines were pasted: the card has no more.")
                  .arg(over.size())
                  .arg(lines->size());
    }
    platform::prompts().ask({why, platform::Icon::Information, platform::Buttons::Ok});
}

void LineGrid::clearLines() {
    const LineNumbers lines = selectedLines();
    if (lines.isEmpty())
        return;
    ChooseAction(card(), lines, 0);
    changed();
}

} // namespace tolvex
