#include "ui/style/FitForm.h"

#include <QLayout>
#include <QScreen>
#include <QWidget>

namespace tolvex {

void FitForm(QWidget* form) {
    form->ensurePolished();
    QSize size = form->size();
    if (!form->testAttribute(Qt::WA_Resized))
        size = form->minimumSize();
    const QSize screen = form->screen()->availableSize();
    size = size.expandedTo(form->sizeHint()).expandedTo(form->minimumSizeHint());
    size.setWidth(qMin(size.width(), screen.width()));
    if (const QLayout* layout = form->layout(); layout && layout->hasHeightForWidth())
        size.setHeight(qMax(size.height(), layout->totalHeightForWidth(size.width())));
    form->resize(size.boundedTo(screen));
}

} // namespace tolvex
