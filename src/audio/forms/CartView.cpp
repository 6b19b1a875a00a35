#include "audio/forms/CartView.h"

#include "ui/style/Colours.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace tolvex {

namespace {

// Pixels. The gap below the times bar is 30 twips.
constexpr int Inset = 2;
constexpr int GapBelowBar = 2;
constexpr int BarHeight = 16;
constexpr int MarkSize = 9;

// Draws edges in two colours, the light one to the left and above.
void drawBevel(QPainter& painter, const QRect& around, const QColor& light, const QColor& dark, int width) {
    for (int i = 0; i < width; ++i) {
        const QRect edge = around.adjusted(i, i, -i, -i);
        painter.setPen(light);
        painter.drawLine(edge.bottomLeft(), edge.topLeft());
        painter.drawLine(edge.topLeft(), edge.topRight());
        painter.setPen(dark);
        painter.drawLine(edge.topRight(), edge.bottomRight());
        painter.drawLine(edge.bottomRight(), edge.bottomLeft());
    }
}

} // namespace

CartView::CartView(QWidget* parent)
    : QWidget(parent) {
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void CartView::setFace(const CartFace& face) {
    if (face == face_)
        return;
    face_ = face;
    setAccessibleName(QStringLiteral("Cart %1 %2").arg(face.number).arg(face.description));
    update();
}

void CartView::setLooks(const CartLooks& looks) {
    looks_ = looks;
    update();
}

void CartView::setExtro(bool shown) {
    extro_ = shown;
    update();
}

// Whether the cart is selected and its colours show it.
bool CartView::shownByColour() const {
    return face_.state == CartFace::State::Selected && !looks_.selectedPushedIn;
}

QColor CartView::ground() const {
    const bool empty = face_.state == CartFace::State::Empty;
    return ToColor(shownByColour() ? looks_.selectedBack : empty ? looks_.emptyBack : face_.back, palette());
}

QColor CartView::text() const {
    const bool empty = face_.state == CartFace::State::Empty;
    return ToColor(shownByColour() ? looks_.selectedText : empty ? looks_.emptyFore : face_.fore, palette());
}

// A stored bevel or font may be of any size: what is painted leaves room for the rest of the cart.
int CartView::bevel() const {
    return std::clamp(looks_.bevel, 0, std::min(width(), height()) / 6);
}

QFont CartView::describedFont(int room) const {
    QFont font(looks_.fontName, qMax(1, looks_.fontSize));
    font.setBold(looks_.fontBold);
    if (QFontMetrics(font).height() > 2 * room)
        font.setPixelSize(qMax(1, room * 3 / 4));
    return font;
}

QRect CartView::timesBar() const {
    const int left = bevel() + Inset;
    return {left, height() - BarHeight - GapBelowBar - bevel(), width() - 2 * left, BarHeight};
}

QString CartView::timeText() const {
    const int minutes = face_.seconds / 60;
    const QString seconds = QStringLiteral("%1").arg(face_.seconds % 60, 2, 10, QChar(u'0'));
    if (looks_.timeInHours)
        return QStringLiteral("%1:%2:%3")
            .arg(minutes / 60)
            .arg(minutes % 60, 2, 10, QChar(u'0'))
            .arg(seconds);
    return QStringLiteral("%1:%2").arg(minutes).arg(seconds);
}

void CartView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QColor back = ground();
    const QColor fore = text();
    painter.fillRect(rect(), back);
    const bool sunken = face_.state == CartFace::State::Selected && looks_.selectedPushedIn;
    drawBevel(painter, rect(), sunken ? back.darker(170) : back.lighter(160),
              sunken ? back.lighter(160) : back.darker(170), bevel());
    const bool empty = face_.state == CartFace::State::Empty;
    const int edge = bevel() + Inset;
    const QRect inner = rect().adjusted(edge, edge, -edge, -edge);
    QFont small = font();
    small.setPointSizeF(small.pointSizeF() * 0.85);
    painter.setFont(small);
    const int line = QFontMetrics(small).height();
    painter.setPen(ToColor(empty ? looks_.emptyNumber : looks_.number, palette()));
    painter.drawText(QRect(inner.left(), inner.top(), inner.width(), line), Qt::AlignLeft | Qt::AlignVCenter,
                     face_.number > 0 ? QString::number(face_.number) : QString());
    painter.setPen(fore);
    int right = inner.right() - MarkSize;
    if (face_.hasAudio) {
        const QRect mark(right, inner.top() + (line - MarkSize) / 2, MarkSize, MarkSize);
        QPainterPath shape;
        if (looks_.audioAsSquare)
            shape.addRect(mark);
        else
            shape.addEllipse(mark);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.fillPath(shape, fore);
        painter.setRenderHint(QPainter::Antialiasing, false);
        right -= MarkSize + 2;
    }
    if (face_.compressed && looks_.showCompressed)
        painter.drawText(QRect(right - line, inner.top(), line + MarkSize, line),
                         Qt::AlignHCenter | Qt::AlignVCenter, QStringLiteral("C"));

    const QRect bar = timesBar();
    if (!empty) {
        if (looks_.timesBarInColour)
            painter.fillRect(bar, ToColor(looks_.timesBar, palette()));
        painter.setPen(looks_.timesBarInColour ? ToColor(looks_.timesBarText, palette()) : fore);
        painter.drawText(bar.adjusted(4, 0, -4, 0), Qt::AlignRight | Qt::AlignVCenter, timeText());
        if (extro_)
            painter.drawText(bar.adjusted(4, 0, -4, 0), Qt::AlignLeft | Qt::AlignVCenter,
                             QStringLiteral("E"));
    }
    const int top = inner.top() + line;
    const QRect middle(inner.left(), top, inner.width(), (empty ? inner.bottom() : bar.top()) - top);
    painter.setFont(describedFont(middle.height()));
    painter.setPen(fore);
    painter.drawText(middle, Qt::AlignCenter | Qt::TextWordWrap, face_.description);
}

} // namespace tolvex
