#include "app/window/ProgressBox.h"

#include <QCoreApplication>
#include <QProgressBar>

namespace tolvex {

namespace {

constexpr int Steps = 1000;
constexpr qint64 ShowEvery = 50;       // milliseconds; a job may report a thousand times more often
constexpr qint64 EnoughToJudge = 2000; // before this the time left is a guess

bool isInput(QEvent::Type type) {
    switch (type) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::ShortcutOverride:
    case QEvent::Close:
        return true;
    default:
        return false;
    }
}

} // namespace

ProgressBox::ProgressBox(const QString& title, bool canStop, QWidget* parent)
    : box_(parent) {
    box_.setWindowTitle(title);
    box_.setLabelText(title);
    box_.setRange(0, 0);
    box_.setMinimumDuration(400);
    box_.setMinimumWidth(420);
    box_.setAutoReset(false);
    box_.setAutoClose(false);
    box_.setWindowModality(Qt::ApplicationModal);
    if (canStop)
        box_.setCancelButtonText(QStringLiteral("&Stop"));
    else
        box_.setCancelButton(nullptr);
    // The bar shows the progress; a number on it would be hard to read on either colour.
    box_.findChild<QProgressBar*>()->setTextVisible(false);
    clock_.start();
    QCoreApplication::instance()->installEventFilter(this);
}

bool ProgressBox::eventFilter(QObject*, QEvent* event) {
    if (box_.isVisible() || !event->spontaneous() || !isInput(event->type()))
        return false;
    event->ignore();
    return true;
}

QString ProgressBox::remaining(qint64 done, qint64 total) const {
    if (done <= 0 || clock_.elapsed() < EnoughToJudge)
        return {};
    const qint64 seconds = clock_.elapsed() * (total - done) / done / 1000 + 1;
    return seconds < 60 ? QStringLiteral("About %1 seconds left").arg(seconds)
                        : QStringLiteral("About %1 minutes left").arg(seconds / 60 + 1);
}

bool ProgressBox::step(qint64 done, qint64 total, const QString& what) {
    const qint64 now = clock_.elapsed();
    if (lastShown_ >= 0 && now - lastShown_ < ShowEvery && done < total)
        return !box_.wasCanceled();
    lastShown_ = now;
    QString text = what.isEmpty() ? box_.windowTitle() : what;
    if (total > 0) {
        box_.setRange(0, Steps);
        box_.setValue(static_cast<int>(done * Steps / total));
        const QString left = remaining(done, total);
        if (!left.isEmpty())
            text += u'\n' + left;
    }
    box_.setLabelText(text);
    QCoreApplication::processEvents();
    return !box_.wasCanceled();
}

} // namespace tolvex
