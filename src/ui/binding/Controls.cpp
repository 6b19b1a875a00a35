#include "ui/binding/Controls.h"

#include "core/text/Numbers.h"
#include "ui/binding/ColourButton.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QSpinBox>

namespace tolvex {

namespace {

// The entry with this value, else the one at that position.
int entryOf(const QComboBox& list, qint32 value) {
    for (int entry = 0; entry < list.count(); ++entry)
        if (list.itemData(entry).isValid())
            return list.findData(value);
    return value >= 0 && value < list.count() ? value : -1;
}

QString textOf(const ControlValue& value) {
    if (const auto* number = std::get_if<qint32>(&value))
        return QString::number(*number);
    const auto* text = std::get_if<QString>(&value);
    return text ? *text : QString();
}

qint32 numberOf(const ControlValue& value, qint32 none) {
    if (const auto* number = std::get_if<qint32>(&value))
        return *number;
    const auto* text = std::get_if<QString>(&value);
    return text ? ToLong(LeadingNumber(*text)) : none;
}

// The editor of a cell belongs to its grid.
bool isInGrid(const QWidget* widget) {
    for (; widget && !widget->isWindow(); widget = widget->parentWidget())
        if (qobject_cast<const QAbstractItemView*>(widget))
            return true;
    return false;
}

bool isInput(const QWidget* widget) {
    if (const auto* button = qobject_cast<const QAbstractButton*>(widget))
        return button->isCheckable() || qobject_cast<const ColourButton*>(widget);
    if (const auto* box = qobject_cast<const QLineEdit*>(widget)) // not one inside another control
        return !qobject_cast<const QComboBox*>(box->parentWidget()) &&
               !qobject_cast<const QAbstractSpinBox*>(box->parentWidget());
    return qobject_cast<const QComboBox*>(widget) || qobject_cast<const QSpinBox*>(widget) ||
           qobject_cast<const QPlainTextEdit*>(widget) ||
           (qobject_cast<const QAbstractSlider*>(widget) && !qobject_cast<const QScrollBar*>(widget));
}

} // namespace

ControlValue ValueOf(const QWidget* control) {
    if (const auto* colour = qobject_cast<const ColourButton*>(control))
        return colour->colour();
    if (const auto* button = qobject_cast<const QAbstractButton*>(control))
        return qint32{button->isChecked()};
    if (const auto* list = qobject_cast<const QComboBox*>(control)) {
        if (list->isEditable())
            return list->currentText();
        if (list->currentIndex() < 0)
            return {};
        const QVariant value = list->currentData();
        return value.isValid() ? value.toInt() : qint32{list->currentIndex()};
    }
    if (const auto* slider = qobject_cast<const QAbstractSlider*>(control))
        return qint32{slider->value()};
    if (const auto* number = qobject_cast<const QSpinBox*>(control))
        return qint32{number->value()};
    if (const auto* box = qobject_cast<const QLineEdit*>(control))
        return box->text();
    if (const auto* text = qobject_cast<const QPlainTextEdit*>(control))
        return text->toPlainText();
    if (const auto* label = qobject_cast<const QLabel*>(control))
        return label->text();
    return {};
}

void SetValueOf(QWidget* control, const ControlValue& value) {
    if (auto* colour = qobject_cast<ColourButton*>(control))
        colour->setColour(numberOf(value, 0));
    else if (auto* button = qobject_cast<QAbstractButton*>(control))
        button->setChecked(numberOf(value, 0) != 0);
    else if (auto* list = qobject_cast<QComboBox*>(control); list && list->isEditable())
        list->setEditText(textOf(value));
    else if (list)
        list->setCurrentIndex(entryOf(*list, numberOf(value, -1)));
    else if (auto* slider = qobject_cast<QAbstractSlider*>(control))
        slider->setValue(numberOf(value, 0));
    else if (auto* number = qobject_cast<QSpinBox*>(control))
        number->setValue(numberOf(value, 0));
    else if (auto* box = qobject_cast<QLineEdit*>(control))
        box->setText(textOf(value));
    else if (auto* text = qobject_cast<QPlainTextEdit*>(control))
        text->setPlainText(textOf(value));
    else if (auto* label = qobject_cast<QLabel*>(control))
        label->setText(textOf(value));
}

QWidget* ControlNamed(const QWidget* form, const QString& name) {
    auto* control = form->findChild<QWidget*>(name);
    if (!control)
        qFatal("%s has no control %s", qPrintable(form->objectName()), qPrintable(name));
    return control;
}

QList<QWidget*> ControlsNamed(const QWidget* form, const QString& names) {
    QList<QWidget*> controls;
    for (const QString& name : names.split(u' ', Qt::SkipEmptyParts))
        controls += ControlNamed(form, name);
    return controls;
}

QList<QWidget*> InputsOf(const QWidget* form) {
    QList<QWidget*> inputs;
    for (QWidget* widget = form->nextInFocusChain(); widget != form; widget = widget->nextInFocusChain())
        if (form->isAncestorOf(widget) && isInput(widget) && !isInGrid(widget))
            inputs += widget;
    return inputs;
}

void WhenChanged(QWidget* control, QObject* receiver, const std::function<void()>& then) {
    const auto on = [&](auto* sender, auto signal) {
        QObject::connect(sender, signal, receiver, [then] { then(); });
    };
    if (auto* colour = qobject_cast<ColourButton*>(control))
        on(colour, &ColourButton::colourChanged);
    else if (auto* button = qobject_cast<QAbstractButton*>(control))
        on(button, &QAbstractButton::toggled);
    else if (auto* list = qobject_cast<QComboBox*>(control); list && list->isEditable())
        on(list, &QComboBox::editTextChanged);
    else if (list)
        on(list, &QComboBox::currentIndexChanged);
    else if (auto* slider = qobject_cast<QAbstractSlider*>(control))
        on(slider, &QAbstractSlider::valueChanged);
    else if (auto* number = qobject_cast<QSpinBox*>(control))
        on(number, &QSpinBox::valueChanged);
    else if (auto* box = qobject_cast<QLineEdit*>(control))
        on(box, &QLineEdit::textChanged);
    else if (auto* text = qobject_cast<QPlainTextEdit*>(control))
        on(text, &QPlainTextEdit::textChanged);
}

QString NameOf(const QWidget* control) {
    QString name = control->accessibleName();
    if (name.isEmpty())
        for (const QLabel* label : control->window()->findChildren<QLabel*>())
            if (label->buddy() == control)
                name = label->text();
    if (name.isEmpty())
        if (const auto* button = qobject_cast<const QAbstractButton*>(control))
            name = button->text();
    name.remove(u'&');
    if (name.endsWith(u':'))
        name.chop(1);
    return name;
}

qint32 FormView::number(const char* control) const {
    return numberOf(ValueOf(ControlNamed(form_, QLatin1String(control))), -1);
}

QString FormView::text(const char* control) const {
    return textOf(ValueOf(ControlNamed(form_, QLatin1String(control))));
}

} // namespace tolvex
