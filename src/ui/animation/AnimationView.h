// A small animation that says that something goes on. Without a file for it, a quiet sign of the program's
// own: a magnifying glass that goes round.
#pragma once

#include "ui/animation/AviFile.h"

#include <QBasicTimer>
#include <QWidget>

namespace tolvex {

class AnimationView : public QWidget {
    Q_OBJECT

public:
    explicit AnimationView(QWidget* parent = nullptr);

    // Takes the frames of an AVI by its Windows path. False when it has none that can be shown: the sign
    // stands in.
    bool open(const QString& path);
    // Stopped, it shows the first frame, and no sign.
    void start();
    void stop();
    bool isPlaying() const { return timer_.isActive(); }
    const Animation& animation() const { return animation_; }

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    Animation animation_;
    QBasicTimer timer_;
    int frame_ = 0;
};

} // namespace tolvex
