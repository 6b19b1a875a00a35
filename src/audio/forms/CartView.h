// One cart as the audiowall shows it, painted from two records: the cart's own and the looks of all carts.
#pragma once

#include "audio/CartLooks.h"

#include <QWidget>

namespace tolvex {

struct CartFace {
    enum class State { Normal, Selected, Empty };
    State state = State::Normal;
    int number = 0;
    QString description;
    int seconds = 0; // length, in the times bar
    bool hasAudio = false;
    bool compressed = false;
    qint32 back = 0; // of a cart that holds something; carts have colours of their own
    qint32 fore = 0;

    friend bool operator==(const CartFace&, const CartFace&) = default;
};

class CartView : public QWidget {
    Q_OBJECT

public:
    explicit CartView(QWidget* parent = nullptr);

    void setFace(const CartFace& face);
    void setLooks(const CartLooks& looks);
    // Whether the times bar has the mark of the extro display at its left end.
    void setExtro(bool shown);
    bool extro() const { return extro_; }
    const CartFace& face() const { return face_; }

    // The ground and the text of the cart as they are painted.
    QColor ground() const;
    QColor text() const;
    // Where the times bar lies.
    QRect timesBar() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool shownByColour() const;
    int bevel() const; // as wide as it is painted
    QFont describedFont(int room) const;
    QString timeText() const;

    CartFace face_;
    CartLooks looks_;
    bool extro_ = false;
};

} // namespace tolvex
