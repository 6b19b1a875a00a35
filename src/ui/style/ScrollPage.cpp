#include "ui/style/ScrollPage.h"

#include <QApplication>

namespace tolvex {

ScrollPage::ScrollPage(QWidget* parent)
    : QScrollArea(parent) {
    setFocusPolicy(Qt::NoFocus);
    setFrameShape(NoFrame);
    setStyleSheet(QStringLiteral("tolvex--ScrollPage { background: transparent; border: none; }"));
    viewport()->setAutoFillBackground(false);
    // The field reached by the Tab key is scrolled into view.
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) { follow(now); });
}

// The focus moves on while the content is destroyed, when this is only a QWidget any more.
ScrollPage::~ScrollPage() {
    disconnect(qApp, nullptr, this, nullptr);
}

void ScrollPage::follow(QWidget* focus) {
    if (focus && widget() && widget()->isAncestorOf(focus) && isVisible())
        ensureWidgetVisible(focus, 0, 8);
}

// The tab's own background shows through.
void ScrollPage::showEvent(QShowEvent* event) {
    QScrollArea::showEvent(event);
    if (widget())
        widget()->setAutoFillBackground(false);
}

void ScrollPage::followContent() {
    QSizePolicy policy = sizePolicy();
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

int ScrollPage::heightForWidth(int width) const {
    const int frame = 2 * frameWidth();
    if (!widget())
        return -1;
    // Without texts that wrap the content is as high at any width.
    const int height = widget()->hasHeightForWidth() ? widget()->heightForWidth(width - frame)
                                                     : widget()->sizeHint().height();
    return height + frame;
}

bool ScrollPage::eventFilter(QObject* watched, QEvent* event) {
    if (watched == widget() && event->type() == QEvent::LayoutRequest && sizePolicy().hasHeightForWidth())
        updateGeometry();
    return QScrollArea::eventFilter(watched, event);
}

QSize ScrollPage::sizeHint() const {
    const QWidget* content = widget();
    if (!content)
        return QScrollArea::sizeHint();
    QSize size = content->sizeHint();
    if (content->hasHeightForWidth())
        size.setHeight(qMax(size.height(), content->heightForWidth(size.width())));
    return size + QSize(2 * frameWidth(), 2 * frameWidth());
}

} // namespace tolvex
