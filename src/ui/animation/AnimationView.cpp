#include "ui/animation/AnimationView.h"

#include "platform/files/Files.h"
#include "ui/style/Style.h"

#include <QPainter>
#include <QTimerEvent>

#include <cmath>

namespace tolvex {

namespace {

// The sign: dots of its picture, of the way round, and how long each of its steps stands.
constexpr int glassSize = 32;
constexpr int circle = 8;
constexpr int steps = 24;
constexpr int stepMilliseconds = 80;
constexpr double wholeTurn = 6.283185307179586;

} // namespace

AnimationView::AnimationView(QWidget* parent)
    : QWidget(parent) {
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

bool AnimationView::open(const QString& path) {
    animation_ = ReadAvi(platform::ReadWholeFile(path, LongestAvi).value_or(QByteArray()));
    frame_ = 0;
    updateGeometry();
    update();
    return !animation_.frames.isEmpty();
}

void AnimationView::start() {
    timer_.start(animation_.frames.isEmpty() ? stepMilliseconds : animation_.milliseconds, this);
    update();
}

void AnimationView::stop() {
    timer_.stop();
    frame_ = 0;
    update();
}

QSize AnimationView::sizeHint() const {
    constexpr int side = glassSize + 2 * circle;
    return animation_.frames.isEmpty() ? QSize(side, side) : animation_.frames.first().size();
}

void AnimationView::timerEvent(QTimerEvent* event) {
    if (event->timerId() != timer_.timerId())
        return QWidget::timerEvent(event);
    frame_ = (frame_ + 1) % (animation_.frames.isEmpty() ? steps : int(animation_.frames.size()));
    update();
}

void AnimationView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    if (!animation_.frames.isEmpty()) {
        const QImage& image = animation_.frames[frame_];
        painter.drawImage((width() - image.width()) / 2, (height() - image.height()) / 2, image);
    } else if (isPlaying()) {
        const double angle = wholeTurn * frame_ / steps;
        const QPoint middle(width() / 2 + int(std::lround(circle * std::sin(angle))),
                            height() / 2 - int(std::lround(circle * std::cos(angle))));
        LineIcon(QStringLiteral("find"))
            .paint(&painter, QRect(middle - QPoint(glassSize, glassSize) / 2, QSize(glassSize, glassSize)));
    }
}

} // namespace tolvex
