#include "hardware/forms/frmHardwareManager.h"

#include "ui/style/OpenForms.h"

#include <QEvent>
#include <QPointer>
#include <QTimer>

namespace tolvex {

namespace {

QPointer<QWidget> manager;

} // namespace

frmHardwareManager::frmHardwareManager()
    : QWidget(nullptr, Qt::Window) {
    setObjectName(QStringLiteral("frmHardwareManager"));
    setWindowTitle(QStringLiteral("Hardware Manager"));
    setAttribute(Qt::WA_DeleteOnClose);
    setAttribute(Qt::WA_QuitOnClose, false);
    setAttribute(Qt::WA_ShowWithoutActivating);
    EnterForm(this);
}

void frmHardwareManager::LoadManager() {
    if (!manager)
        manager = new frmHardwareManager;
    manager->showMinimized();
}

void frmHardwareManager::UnloadManager() {
    delete manager.data();
}

void frmHardwareManager::backToMinimised() {
    // After the window system has finished what it is doing.
    if (isVisible() && !isMinimized())
        QTimer::singleShot(0, this, [this] {
            if (isVisible() && !isMinimized())
                showMinimized();
        });
}

void frmHardwareManager::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange)
        backToMinimised();
}

void frmHardwareManager::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    backToMinimised();
}

} // namespace tolvex
