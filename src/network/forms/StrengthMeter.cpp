#include "network/forms/StrengthMeter.h"

#include "network/clock/StrengthPanel.h"
#include "ui/style/Colours.h"
#include "ui/style/Style.h"

#include <QPainter>

namespace tolvex {

namespace {

constexpr int barWidth = 160;
constexpr int gap = 8;
constexpr qreal radius = 6;

} // namespace

StrengthMeter::StrengthMeter(QWidget* parent)
    : QWidget(parent) {
    clear();
}

void StrengthMeter::show(const StrengthPanel& strength) {
    percent_ = strength.percent();
    isGood_ = strength.colour() == StrengthGreen;
    colour_ = ToColor(strength.colour(), palette());
    setAccessibleName(QStringLiteral("Signal strength: ") + text());
    update();
}

void StrengthMeter::clear() {
    percent_ = -1;
    colour_ = QColor();
    setAccessibleName(QStringLiteral("Signal strength: not measured"));
    update();
}

QString StrengthMeter::text() const {
    if (percent_ < 0)
        return {};
    return QStringLiteral("%1 %, %2")
        .arg(percent_)
        .arg(QLatin1String(percent_ == 0 ? "no signal"
                           : isGood_     ? "good"
                                         : "weak"));
}

int StrengthMeter::textWidth() const {
    return fontMetrics().horizontalAdvance(QStringLiteral("100 %, no signal"));
}

QSize StrengthMeter::sizeHint() const {
    return {barWidth + gap + textWidth(), qMax(28, fontMetrics().height() + 8)};
}

void StrengthMeter::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF bar(0.5, 0.5, width() - gap - textWidth() - 1, height() - 1);
    painter.setPen(tokens().edge);
    painter.setBrush(tokens().surface);
    painter.drawRoundedRect(bar, radius, radius);
    if (percent_ > 0) {
        QRectF filled = bar.adjusted(1, 1, -1, -1);
        filled.setWidth(filled.width() * percent_ / 100);
        painter.setPen(Qt::NoPen);
        painter.setBrush(colour_);
        painter.drawRoundedRect(filled, radius - 1, radius - 1);
    }
    painter.setPen(tokens().text);
    painter.drawText(QRectF(bar.right() + gap, 0, textWidth(), height()), Qt::AlignVCenter | Qt::AlignLeft,
                     text());
}

} // namespace tolvex
