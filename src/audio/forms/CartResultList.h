// The list of carts that a search found. A click on a heading sorts it, one more the other way round; Return
// or a double click chooses a cart; a cart can be dragged.
#pragma once

#include "audio/forms/CartDrag.h"
#include "audio/forms/FoundCarts.h"

#include <QTableView>

namespace tolvex {

class CartResultList : public QTableView {
    Q_OBJECT

public:
    explicit CartResultList(QWidget* parent = nullptr);

    FoundCarts& carts() { return carts_; }
    void clear();
    // The row of a search that found nothing.
    void showNone();
    // Selects the first row unless one is selected.
    void selectAny();

signals:
    // 0: the row that says that there are none.
    void chosen(qint32 cart);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void sortBy(int section);
    void fitColumns();

    FoundCarts carts_;
    CartDrag drag_;
    int sortedBy_ = -1;
    Qt::SortOrder order_ = Qt::AscendingOrder;
};

} // namespace tolvex
