// Shows a level as a bar: the highest peak of the last moments is held, with its decibels and a word beside
// it.
#pragma once

#include "audio/devices/LevelReader.h"

#include <QElapsedTimer>
#include <QWidget>

namespace tolvex {

class LevelMeter : public QWidget {
    Q_OBJECT

public:
    explicit LevelMeter(QWidget* parent = nullptr);

    void setLevel(const SoundLevel& level);
    // Empties the bar while nothing is measured.
    void clear();
    // "-6.0 dBFS, good"; empty while nothing is measured.
    QString text() const;

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    double shown_ = 0; // part of full scale
    double held_ = 0;
    bool measuring_ = false;
    QElapsedTimer since_; // the held peak
};

} // namespace tolvex
