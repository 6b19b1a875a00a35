// The strength of a radio clock's reception: a bar in the colour of its level, with the percentage and a word
// beside it.
#pragma once

#include <QWidget>

namespace tolvex {

class StrengthPanel;

class StrengthMeter : public QWidget {
    Q_OBJECT

public:
    explicit StrengthMeter(QWidget* parent = nullptr);

    void show(const StrengthPanel& strength);
    // Empty, without a percentage.
    void clear();

    int percent() const { return percent_; } // -1: cleared
    QColor colour() const { return colour_; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString text() const;
    int textWidth() const;

    int percent_ = -1;
    bool isGood_ = false;
    QColor colour_;
};

} // namespace tolvex
