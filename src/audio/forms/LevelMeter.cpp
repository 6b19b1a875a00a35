#include "audio/forms/LevelMeter.h"

#include "ui/style/Style.h"

#include <QPainter>

namespace tolvex {

namespace {

constexpr int holdMilliseconds = 1500;
constexpr double lowestShown = -60;

double placeOf(double peak) {
    return qBound(0.0, 1 - DecibelsOf(peak) / lowestShown, 1.0);
}

} // namespace

LevelMeter::LevelMeter(QWidget* parent)
    : QWidget(parent) {
    setAccessibleName(QStringLiteral("Level of the recording device"));
}

void LevelMeter::setLevel(const SoundLevel& level) {
    measuring_ = true;
    shown_ = level.loudest();
    if (shown_ >= held_ || since_.hasExpired(holdMilliseconds)) {
        held_ = shown_;
        since_.start();
    }
    setAccessibleDescription(text());
    update();
}

void LevelMeter::clear() {
    measuring_ = false;
    shown_ = held_ = 0;
    update();
}

QString LevelMeter::text() const {
    if (!measuring_)
        return {};
    return QStringLiteral("%1 dBFS, %2").arg(DecibelsOf(held_), 0, 'f', 1).arg(LevelWord(held_));
}

QSize LevelMeter::sizeHint() const {
    return {240, fontMetrics().height() + 8};
}

void LevelMeter::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const Tokens& t = tokens();
    const int room = fontMetrics().horizontalAdvance(QStringLiteral("-90.0 dBFS, no signal ")) + 8;
    const QRectF bar(0, 4, qMax(40, width() - room), height() - 8);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(t.line);
    painter.setBrush(t.background);
    painter.drawRoundedRect(bar.adjusted(0.5, 0.5, -0.5, -0.5), 4, 4);
    if (!measuring_)
        return;
    const bool clips = LevelWord(held_) == QLatin1String("clipping");
    const QColor colour = clips ? t.error : t.good;
    QRectF filled = bar.adjusted(2, 2, -2, -2);
    const double full = filled.width();
    filled.setWidth(full * placeOf(shown_));
    painter.fillRect(filled, colour);
    painter.fillRect(QRectF(filled.left() + full * placeOf(held_) - 1, filled.top(), 2, filled.height()),
                     t.text);
    painter.setPen(clips ? t.error : t.text);
    painter.drawText(QRectF(bar.right() + 8, 0, room, height()), Qt::AlignLeft | Qt::AlignVCenter, text());
}

} // namespace tolvex
