// The list that drops open in a cell. It is there only while it is open.
#pragma once

#include "hardware/LineActions.h"

#include <QComboBox>

namespace tolvex {

class OptionList : public QComboBox {
    Q_OBJECT

public:
    explicit OptionList(QWidget* parent);

    // Places itself over a cell and drops open.
    void open(const Choices& choices, int selected, const QRect& cell);
    // A key that was pressed while it is open, also by who opened it.
    void press(QKeyEvent* key);

    void hidePopup() override;

signals:
    // By the mouse: the list is closed.
    void clicked(qint32 value);
    // By a key: the list stays open.
    void reached(qint32 value);
    void cancelled(); // Escape
    void closed();    // in any way

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void reach();
};

} // namespace tolvex
