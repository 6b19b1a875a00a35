#include "dialogs/FitForm.h"

#include <QLayout>
#include <QScreen>
#include <QWidget>

namespace tolvex {

void FitForm(QWidget* form) {
    form->ensurePolished();
    QSize size = form->size();
    if (!form->testAttribute(Qt::WA_Resized))
        size = form->minimumSize();
    size = size.expandedTo(form->sizeHint()).expandedTo(form->minimumSizeHint());
    if (const QLayout* layout = form->layout(); layout && layout->hasHeightForWidth())
        size.setHeight(qMax(size.height(), layout->totalHeightForWidth(size.width())));
    form->resize(size.boundedTo(form->screen()->availableSize()));
}

} // namespace tolvex
