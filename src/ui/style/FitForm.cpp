#include "ui/style/FitForm.h"

#include <QLayout>
#include <QScreen>
#include <QTabBar>
#include <QTabWidget>
#include <QWidget>

namespace tolvex {

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
    const QSize screen = form->screen()->availableSize();
    size = size.expandedTo(form->sizeHint()).expandedTo(form->minimumSizeHint());
    for (const QTabWidget* tabs : form->findChildren<QTabWidget*>()) {
        const QMargins margins = form->layout() ? form->layout()->contentsMargins() : QMargins();
        const int bar = tabs->tabBar()->sizeHint().width();
        size.setWidth(qMax(size.width(), bar + margins.left() + margins.right()));
    }
    size.setWidth(qMin(size.width(), screen.width()));
    if (const QLayout* layout = form->layout(); layout && layout->hasHeightForWidth())
        size.setHeight(qMax(size.height(), layout->totalHeightForWidth(size.width())));
    form->resize(size.boundedTo(screen));
}

} // namespace tolvex
