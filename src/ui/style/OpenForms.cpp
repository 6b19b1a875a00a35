#include "ui/style/OpenForms.h"

#include <QPointer>
#include <QWidget>

namespace tolvex {

namespace {

QList<QPointer<QWidget>> forms;

} // namespace

void EnterForm(QWidget* form) {
    if (!forms.contains(form))
        forms.append(form);
}

QList<QWidget*> OpenForms() {
    QList<QWidget*> open;
    forms.removeAll(nullptr);
    for (const QPointer<QWidget>& form : forms)
        open.append(form);
    return open;
}

} // namespace tolvex
