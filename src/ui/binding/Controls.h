// The values of a form's controls, whatever their class. Bindings, change tracking, "enabled when" rules and
// error marks all use this.
#pragma once

#include <QList>
#include <QString>

#include <functional>
#include <variant>

class QObject;
class QWidget;

namespace tolvex {

// A number: 0 or 1 for a check box or a radio button, for a list the entry or its attached value (user data),
// the value of a slider, a number box or a colour button. A text: for a text box, an editable list, a label.
// Nothing: no entry of a list is chosen.
using ControlValue = std::variant<std::monostate, qint32, QString>;

ControlValue ValueOf(const QWidget* control);
// If a list lacks the entry, nothing is chosen in it. Sends
// the control's signals, as any change does.
void SetValueOf(QWidget* control, const ControlValue& value);

// The control of that name. If the form lacks it the program is faulty and stops with a message.
QWidget* ControlNamed(const QWidget* form, const QString& name);
// The controls of several names separated by blanks.
QList<QWidget*> ControlsNamed(const QWidget* form, const QString& names);

// All controls of a form in which a value can be typed or chosen; the editors of a grid's cells belong to the
// grid.
QList<QWidget*> InputsOf(const QWidget* form);
// Calls `then` for each change of the control's value, by the user or not, while `receiver` lives.
void WhenChanged(QWidget* control, QObject* receiver, const std::function<void()>& then);

// The control's name for users: its accessible name, the label beside it, or its own text.
QString NameOf(const QWidget* control);

// The values of a form by the names of its controls.
class FormView {
public:
    explicit FormView(const QWidget* form)
        : form_(form) {}

    bool on(const char* box) const { return number(box) != 0; }
    // For a text box its leading number (0 for none); for a list without a choice -1.
    qint32 number(const char* control) const;
    QString text(const char* control) const;

private:
    const QWidget* form_;
};

} // namespace tolvex
