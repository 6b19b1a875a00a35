// The list that drops open in a cell. It is visible only while open; InCellEditor opens and closes it.
#pragma once

#include "core/text/Choices.h"

#include <QComboBox>
#include <QTimer>

namespace tolvex {

class OptionList : public QComboBox {
    Q_OBJECT

public:
    explicit OptionList(QWidget* parent);

    // Fills itself and drops open in place. `selected` is an entry, -1 for none.
    void open(const Choices& choices, int selected);
    // Closes without a signal.
    void close();
    // A key pressed while it is open, including the key that opened it.
    void press(const QKeyEvent& key);

signals:
    // By the mouse, which ends the choice, or by a key, after which the list stays open.
    void chosen(qint32 value);
    // Enter, Tab, a click on an entry or outside the list.
    void committed();
    void dropped(); // Escape

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool handleKey(QObject* watched, QKeyEvent* key);
    void chooseReached();

    QTimer hidden_; // expires after the list of entries was hidden, which ends the choice
    bool passing_ = false;
};

} // namespace tolvex
