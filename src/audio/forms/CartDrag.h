// Dragging a cart: its number as text, under the picture of a cart.
#pragma once

#include <QPointF>

class QMouseEvent;
class QWidget;

namespace tolvex {

// Follows the mouse from a press on a cart. It becomes a drag once the mouse moved by more than 30 twips with
// the left button down.
class CartDrag {
public:
    // `cart`: the one that was pressed on; 0 or less: none that can be dragged.
    void press(const QMouseEvent& event, int cart);
    // Starts the drag when it is time, and returns after the drop.
    void move(const QMouseEvent& event, QWidget* source);
    void release() { down_ = {-1, -1}; }
    bool isDown() const { return down_.x() >= 0; }

private:
    QPointF down_{-1, -1};
    int cart_ = 0;
};

} // namespace tolvex
