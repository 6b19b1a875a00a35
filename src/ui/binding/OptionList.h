// The list that drops open in a cell. It is there only while it is open; InCellEditor opens and closes it.
#pragma once

#include "core/text/Choices.h"

#include <QComboBox>
#include <QTimer>

namespace tolvex {

class OptionList : public QComboBox {
    Q_OBJECT

public:
    explicit OptionList(QWidget* parent);

    // Fills itself and drops open where it lies. `selected` is an entry, -1 for none.
    void open(const Choices& choices, int selected);
    // Takes itself away without a signal.
    void close();
    // A key pressed while it is open, also by whoever opened it.
    void press(const QKeyEvent& key);

signals:
    // By the mouse, which ends the choice then, or by a key, after which the list stays open.
    void chosen(qint32 value);
    // Enter, Tab, a click on an entry or outside the list.
    void committed();
    void dropped(); // Escape

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool handleKey(QObject* watched, QKeyEvent* key);
    void chooseReached();

    QTimer hidden_; // runs out after the list of entries was hidden, which ends the choice
    bool passing_ = false;
};

} // namespace tolvex
