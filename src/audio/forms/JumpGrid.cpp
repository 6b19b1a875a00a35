#include "audio/forms/JumpGrid.h"

#include "audio/AudiowallSetup.h"
#include "core/text/Numbers.h"
#include "ui/style/Style.h"
#include "ui/style/TextBoxes.h"

#include <QAction>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>

namespace tolvex {

namespace {

enum Column { CartColumn = 0, DescriptionColumn = 1, ColumnCount = 2 };
constexpr int CartColumnWidth = 1000 / 15; // twips, 15 a pixel

QString digitsOf(const QString& text) {
    QString digits;
    for (const QChar c : text)
        if (c >= u'0' && c <= u'9')
            digits += c;
    return digits;
}

} // namespace

JumpGrid::JumpGrid(QWidget* parent)
    : QTableWidget(0, ColumnCount, parent)
    , entry_(new QLineEdit(viewport())) {
    setHorizontalHeaderLabels({QStringLiteral("Cart Number"), QStringLiteral("Description")});
    horizontalHeader()->setSectionResizeMode(CartColumn, QHeaderView::Fixed);
    horizontalHeader()->setSectionResizeMode(DescriptionColumn, QHeaderView::Stretch);
    horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    setEditTriggers(NoEditTriggers);
    setSelectionMode(SingleSelection);
    setTabKeyNavigation(false);
    setStyleSheet(QStringLiteral("QTableView { gridline-color: %1; }"
                                 "QTableCornerButton::section { background: transparent; border: none; }")
                      .arg(tokens().line.name()));
    entry_->setObjectName(QStringLiteral("txtGridEntry"));
    entry_->hide();
    entry_->installEventFilter(this);
    connect(entry_, &QLineEdit::textEdited, this, [this](const QString& text) {
        if (currentColumn() == CartColumn && digitsOf(text) != text)
            entry_->setText(digitsOf(text));
    });
    connect(this, &QTableWidget::cellClicked, this, [this](int row, int column) { openEntry(row, column); });
}

void JumpGrid::setJumps(const QList<JumpCartButton>& jumps) {
    setRowCount(0);
    setJumpCount(int(jumps.size()));
    for (int row = 0; row < rowCount(); ++row) {
        const JumpCartButton& jump = jumps[row];
        item(row, CartColumn)->setText(jump.Cart > 0 ? QString::number(jump.Cart) : QString());
        item(row, DescriptionColumn)->setText(jump.Cart > 0 ? jump.Description : QString());
    }
}

QList<JumpCartButton> JumpGrid::jumps() {
    finishEntry();
    QList<JumpCartButton> jumps;
    for (int row = 0; row < rowCount(); ++row)
        jumps += {ToLong(LeadingNumber(item(row, CartColumn)->text())), item(row, DescriptionColumn)->text()};
    return jumps;
}

void JumpGrid::setJumpCount(int count) {
    finishEntry();
    const int before = rowCount();
    setRowCount(count);
    for (int row = before; row < count; ++row)
        for (int column = 0; column < ColumnCount; ++column)
            setItem(row, column, new QTableWidgetItem);
    const int header = horizontalHeader()->fontMetrics().horizontalAdvance(QStringLiteral("Cart Number"));
    setColumnWidth(CartColumn, qMax(CartColumnWidth, header + 24));
}

void JumpGrid::finishEntry() {
    closeEntry(true);
}

void JumpGrid::offerPickers() {
    const struct {
        const char* name;
        const char* icon;
        const char* tip;
        QKeySequence keys;
        void (JumpGrid::*wanted)(qint32 cart);
    } all[] = {
        {"actKeypad", "keypad", "Type the cart's number on a keypad (F4)", Qt::Key_F4,
         &JumpGrid::keypadWanted},
        {"actFindCart", "find", "Find a cart (Ctrl+F)", Qt::CTRL | Qt::Key_F, &JumpGrid::searchWanted}};
    for (const auto& picker : all) {
        auto* action = new QAction(LineIcon(QLatin1String(picker.icon)), QLatin1String(picker.tip), this);
        action->setObjectName(QLatin1String(picker.name));
        action->setShortcut(picker.keys);
        action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        addAction(action);
        connect(action, &QAction::triggered, this, [this, wanted = picker.wanted] { pick(wanted); });
        pickers_ += action;
    }
}

void JumpGrid::pick(void (JumpGrid::*wanted)(qint32 cart)) {
    finishEntry();
    if (!currentItem())
        return;
    pickedRow_ = currentRow();
    emit(this->*wanted)(ToLong(LeadingNumber(item(pickedRow_, CartColumn)->text())));
}

void JumpGrid::JumpToCart(double cart) {
    if (cart < 1 || pickedRow_ < 0 || pickedRow_ >= rowCount())
        return;
    finishEntry();
    item(pickedRow_, CartColumn)->setText(QString::number(ToLong(cart)));
    setCurrentCell(pickedRow_, CartColumn);
    emit edited();
}

void JumpGrid::openEntry(int row, int column) {
    closeEntry(true);
    setCurrentCell(row, column);
    for (QAction* picker : pickers_) {
        entry_->removeAction(picker);
        if (column == CartColumn)
            entry_->addAction(picker, QLineEdit::TrailingPosition);
    }
    entry_->setMaxLength(column == CartColumn ? 9 : LongestJumpDescription);
    entry_->setText(item(row, column)->text());
    entry_->setAccessibleName(
        QStringLiteral("%1 of jump button %2").arg(horizontalHeaderItem(column)->text()).arg(row + 1));
    placeEntry();
    entry_->show();
    entry_->setFocus();
    SelectAll(entry_);
}

void JumpGrid::placeEntry() {
    if (currentItem())
        entry_->setGeometry(visualItemRect(currentItem()));
}

void JumpGrid::closeEntry(bool store) {
    if (!entry_->isVisibleTo(viewport()))
        return;
    const bool hadFocus = entry_->hasFocus();
    entry_->hide();
    if (hadFocus)
        setFocus();
    if (!store || !currentItem())
        return;
    QString text = entry_->text();
    if (currentColumn() == CartColumn)
        text = LeadingNumber(text) > 0 ? text : QString();
    if (text == currentItem()->text())
        return;
    currentItem()->setText(text);
    emit edited();
}

// Cell by cell along the rows; past an end the box closes.
void JumpGrid::moveOn(int step) {
    closeEntry(true);
    const int cell = currentRow() * ColumnCount + currentColumn() + step;
    if (cell >= 0 && cell < rowCount() * ColumnCount)
        openEntry(cell / ColumnCount, cell % ColumnCount);
}

bool JumpGrid::eventFilter(QObject* watched, QEvent* event) {
    if (watched != entry_)
        return QTableWidget::eventFilter(watched, event);
    if (event->type() == QEvent::FocusOut &&
        static_cast<QFocusEvent*>(event)->reason() != Qt::PopupFocusReason)
        closeEntry(true);
    if (event->type() == QEvent::ShortcutOverride || event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        const bool ends = key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Tab ||
                          key == Qt::Key_Backtab || key == Qt::Key_Escape;
        if (ends && event->type() == QEvent::ShortcutOverride)
            event->accept();
        if (!ends || event->type() == QEvent::ShortcutOverride)
            return false;
        if (key == Qt::Key_Escape)
            closeEntry(false);
        else
            moveOn(key == Qt::Key_Backtab ? -1 : 1);
        return true;
    }
    return QTableWidget::eventFilter(watched, event);
}

void JumpGrid::keyPressEvent(QKeyEvent* event) {
    const QString text = event->text();
    const bool opens = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const bool types = !text.isEmpty() && text[0].isPrint() &&
                       !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier));
    if (!currentItem() || (!opens && !types))
        return QTableWidget::keyPressEvent(event);
    openEntry(currentRow(), currentColumn());
    if (!types)
        return;
    QKeyEvent typed(QEvent::KeyPress, event->key(), event->modifiers(), text);
    QCoreApplication::sendEvent(entry_, &typed);
}

void JumpGrid::resizeEvent(QResizeEvent* event) {
    QTableWidget::resizeEvent(event);
    placeEntry();
}

} // namespace tolvex
