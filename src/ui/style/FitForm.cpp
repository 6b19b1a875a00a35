#include "ui/style/FitForm.h"

#include "ui/style/ScrollPage.h"
#include "ui/style/Style.h"

#include <QApplication>
#include <QEvent>
#include <QLayout>
#include <QScreen>
#include <QTabBar>
#include <QTabWidget>
#include <QWidget>
#include <QWindow>

namespace tolvex {

namespace {

// What the screen has for a form inside the frame that the desktop draws. The frame of a form that is not
// shown yet is as high as that of the windows that are.
QSize roomFor(const QWidget* form) {
    int frame = 0;
    for (const QWidget* window : QApplication::topLevelWidgets())
        if (const QWindow* handle = window->windowHandle(); handle && window->isVisible())
            frame = qMax(frame, handle->frameMargins().top() + handle->frameMargins().bottom());
    return form->screen()->availableSize() - QSize(0, frame);
}

// The width of a tab strip while the mark of an error stands in one of its tabs.
int markedWidth(QTabBar* bar) {
    constexpr int edgeOfFocus = 2; // a tab with the focus is so much wider
    const QIcon before = bar->tabIcon(0);
    bar->setTabIcon(0, LineIcon(QStringLiteral("exclamation"), &Tokens::error));
    const int width = bar->sizeHint().width();
    bar->setTabIcon(0, before);
    return width + edgeOfFocus;
}

class Grower : public QObject {
public:
    explicit Grower(QWidget* form)
        : QObject(form)
        , form_(form) {
        form->installEventFilter(this);
        for (ScrollPage* page : form->findChildren<ScrollPage*>())
            page->followContent();
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::LayoutRequest || event->type() == QEvent::Show)
            QMetaObject::invokeMethod(this, &Grower::grow, Qt::QueuedConnection);
        return QObject::eventFilter(watched, event);
    }

private:
    // Only for texts that grew: a form that its user made smaller stays so.
    void grow() {
        if (!form_->isVisible() || form_->isMinimized() || form_->isMaximized())
            return;
        const int needed = form_->layout()->totalMinimumHeightForWidth(form_->width());
        const bool hasGrown = needed > std::exchange(needed_, needed);
        const QSize room = roomFor(form_);
        if (!hasGrown || needed <= form_->height() || form_->height() >= room.height())
            return;
        form_->resize(form_->width(), qMin(needed, room.height()));
        const QRect screen = form_->screen()->availableGeometry();
        if (const int below = form_->frameGeometry().bottom() - screen.bottom(); below > 0)
            form_->move(form_->x(), qMax(screen.top(), form_->y() - below));
    }

    QWidget* form_;
    int needed_ = 0; // height at the last look
};

} // namespace

void KeepFitted(QWidget* form) {
    new Grower(form);
}

void FitForm(QWidget* form) {
    form->ensurePolished();
    // Tabs that were not shown yet: until the style knows a control it asks for too little room.
    for (const QWidget* part : form->findChildren<QWidget*>())
        part->ensurePolished();
    for (QLayout* layout : form->findChildren<QLayout*>())
        layout->invalidate();
    QSize size = form->size();
    if (!form->testAttribute(Qt::WA_Resized))
        size = form->minimumSize();
    const QSize screen = roomFor(form);
    size = size.expandedTo(form->sizeHint()).expandedTo(form->minimumSizeHint());
    for (const QTabWidget* tabs : form->findChildren<QTabWidget*>()) {
        const QMargins margins = form->layout() ? form->layout()->contentsMargins() : QMargins();
        const int bar = markedWidth(tabs->tabBar());
        size.setWidth(qMax(size.width(), bar + margins.left() + margins.right()));
    }
    size.setWidth(qMin(size.width(), screen.width()));
    if (const QLayout* layout = form->layout(); layout && layout->hasHeightForWidth())
        size.setHeight(qMax(size.height(), layout->totalHeightForWidth(size.width())));
    form->resize(size.boundedTo(screen));
}

} // namespace tolvex
