// The box of a long job: what, how far, time left, Stop. It appears only if the job takes longer than a
// moment; until then no key and no click reaches the form that is busy with it.
#pragma once

#include "platform/Prompts.h"

#include <QElapsedTimer>
#include <QProgressDialog>

namespace tolvex {

class ProgressBox : public QObject, public platform::Progress {
public:
    ProgressBox(const QString& title, bool canStop, QWidget* parent);
    bool step(qint64 done, qint64 total, const QString& what) override;

private:
    bool eventFilter(QObject* receiver, QEvent* event) override;
    QString remaining(qint64 done, qint64 total) const;

    QProgressDialog box_;
    QElapsedTimer clock_;
    qint64 lastShown_ = -1;
};

} // namespace tolvex
