// The grid of jump buttons: one row for each, with the number of its cart and its description. One entry box
// moves over the cells: clicking a cell or typing on the grid opens it, Return and Tab store and move on,
// Escape leaves the cell as it was.
#pragma once

#include "core/settings/Settings.h"

#include <QTableWidget>

class QLineEdit;

namespace tolvex {

class JumpGrid : public QTableWidget {
    Q_OBJECT

public:
    explicit JumpGrid(QWidget* parent = nullptr);

    // A cart of 0 or less is shown as a blank row.
    void setJumps(const QList<JumpCartButton>& jumps);
    QList<JumpCartButton> jumps();
    // New rows are blank.
    void setJumpCount(int count);
    // Stores the text of the entry box, if it is open.
    void finishEntry();
    // Lets cart numbers be picked: in their cells there are two buttons, for the keypad (F4) and for the
    // search (Ctrl+F).
    void offerPickers();

    // The answer of a picker: the number for the row that asked for it; 0 leaves it as it is.
    Q_INVOKABLE void JumpToCart(double cart);

signals:
    void edited();
    // `cart`: the number that the row has now, or 0.
    void keypadWanted(qint32 cart);
    void searchWanted(qint32 cart);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void openEntry(int row, int column);
    void closeEntry(bool store);
    void moveOn(int step);
    void placeEntry();
    void pick(void (JumpGrid::*wanted)(qint32 cart));

    QLineEdit* entry_;
    QList<QAction*> pickers_; // shown in cells of cart numbers
    int pickedRow_ = -1;
};

} // namespace tolvex
