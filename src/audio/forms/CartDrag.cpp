#include "audio/forms/CartDrag.h"

#include "ui/style/Style.h"

#include <QDrag>
#include <QMimeData>
#include <QMouseEvent>

namespace tolvex {

namespace {

constexpr double threshold = 30.0 / 15; // pixels
constexpr int pictureSize = 32;

} // namespace

void CartDrag::press(const QMouseEvent& event, int cart) {
    release();
    if (event.button() != Qt::LeftButton || cart <= 0)
        return;
    down_ = event.position();
    cart_ = cart;
}

void CartDrag::move(const QMouseEvent& event, QWidget* source) {
    if (!isDown() || !event.buttons().testFlag(Qt::LeftButton))
        return;
    const QPointF way = event.position() - down_;
    if (qAbs(way.x()) <= threshold && qAbs(way.y()) <= threshold)
        return;
    release();
    auto* data = new QMimeData;
    data->setText(QString::number(cart_));
    auto* drag = new QDrag(source);
    drag->setMimeData(data);
    drag->setPixmap(LineIcon(QStringLiteral("cart")).pixmap(pictureSize, pictureSize));
    drag->exec(Qt::CopyAction);
}

} // namespace tolvex
