// What the controls of a form hold, whatever their class. Bindings, change tracking, "enabled when" rules and
// marks of errors all read controls here.
#pragma once

#include <QList>
#include <QString>

#include <functional>
#include <variant>

class QObject;
class QWidget;

namespace tolvex {

// A number: 0 or 1 of a box to tick or a radio button, the entry of a list or, where it has one, the value
// that the entry carries (its user data), the value of a slider, a number box or a colour button. A text: of
// a text box, a list that can be typed into, a label. Nothing: no entry of a list is chosen.
using ControlValue = std::variant<std::monostate, qint32, QString>;

ControlValue ValueOf(const QWidget* control);
// A list that has no such entry ends with none chosen. Sends the control's signals, as setting it always
// does.
void SetValueOf(QWidget* control, const ControlValue& value);

// The control of that name. A form without it is a fault of the program: stops it with a message.
QWidget* ControlNamed(const QWidget* form, const QString& name);
// The controls of several names with a blank between.
QList<QWidget*> ControlsNamed(const QWidget* form, const QString& names);

// All controls of a form in which a value can be typed or chosen; the editors of a grid's cells belong to the
// grid.
QList<QWidget*> InputsOf(const QWidget* form);
// Calls `then` whenever the value of the control changes, by the user or not, as long as `receiver` lives.
void WhenChanged(QWidget* control, QObject* receiver, const std::function<void()>& then);

// The words by which a user knows a control: its accessible name, the label beside it, or its own text.
QString NameOf(const QWidget* control);

// The values of a form by the names of its controls.
class FormView {
public:
    explicit FormView(const QWidget* form)
        : form_(form) {}

    bool on(const char* box) const { return number(box) != 0; }
    // Of a text box the number in front (0 for none); of a list without a choice -1.
    qint32 number(const char* control) const;
    QString text(const char* control) const;

private:
    const QWidget* form_;
};

} // namespace tolvex
