#include "dialogs/TextBoxes.h"

#include <QEvent>
#include <QLineEdit>
#include <QTimer>

namespace tolvex {

namespace {

class SelectOnFocus : public QObject {
public:
    explicit SelectOnFocus(QLineEdit* box)
        : QObject(box) {
        box->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        // After the click that gave the focus has placed its cursor.
        if (event->type() == QEvent::FocusIn)
            QTimer::singleShot(0, watched, [box = static_cast<QLineEdit*>(watched)] { SelectAll(box); });
        return QObject::eventFilter(watched, event);
    }
};

} // namespace

void SelectAll(QLineEdit* box) {
    box->setSelection(0, static_cast<int>(box->text().size()));
}

void SelectAllOnFocus(QLineEdit* box) {
    new SelectOnFocus(box);
}

void TypeInUpperCase(QLineEdit* box) {
    SelectAllOnFocus(box);
    QObject::connect(box, &QLineEdit::textEdited, box, [box](const QString& text) {
        const int cursor = box->cursorPosition();
        box->setText(text.toUpper());
        box->setCursorPosition(cursor);
    });
}

} // namespace tolvex
