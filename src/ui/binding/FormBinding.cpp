#include "ui/binding/FormBinding.h"

#include "core/text/Numbers.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>

#include <algorithm>
#include <limits>

namespace tolvex {

namespace {

template<class... Cases>
struct Overloaded : Cases... {
    using Cases::operator()...;
};
template<class... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

bool holdsText(const QWidget* control) {
    return std::holds_alternative<QString>(ValueOf(control));
}

bool isBox(const QWidget* control) {
    const auto* button = qobject_cast<const QAbstractButton*>(control);
    return button && button->isCheckable();
}

bool carriesValues(const QComboBox& list) {
    for (int entry = 0; entry < list.count(); ++entry)
        if (list.itemData(entry).isValid())
            return true;
    return false;
}

// Added to the position of an entry to get its value.
qint32 offsetOf(const FieldLook& look, const QWidget* control) {
    const auto* list = qobject_cast<const QComboBox*>(control);
    return list && !carriesValues(*list) ? look.first : 0;
}

QString textOf(const FieldRef& field) {
    return std::visit(Overloaded{[](QString* text) { return *text; },
                                 [](bool* flag) { return QString::number(*flag); },
                                 [](auto* number) { return QString::number(*number); }},
                      field);
}

qint32 numberOf(const FieldRef& field) {
    return std::visit(Overloaded{[](QString* text) { return ToLong(LeadingNumber(*text)); },
                                 [](auto* number) { return ToLong(static_cast<double>(*number)); }},
                      field);
}

template<class Whole>
Whole clamped(double value) {
    return static_cast<Whole>(std::clamp<double>(ToLong(value), std::numeric_limits<Whole>::min(),
                                                 std::numeric_limits<Whole>::max()));
}

void store(const FieldRef& field, double number) {
    std::visit(Overloaded{[number](bool* flag) { *flag = number != 0; },
                          [number](qint16* word) { *word = clamped<qint16>(number); },
                          [number](qint32* whole) { *whole = clamped<qint32>(number); },
                          [number](float* value) { *value = static_cast<float>(number); },
                          [number](double* value) { *value = number; },
                          [number](QString* text) { *text = QString::number(number); }},
               field);
}

} // namespace

void FormBinding::bind(const FieldLook& look, std::function<FieldRef()> field) {
    Tie tie{look, std::move(field), ControlsNamed(form_, look.control)};
    for (QWidget* control : std::as_const(tie.controls)) {
        if (control->toolTip().isEmpty())
            control->setToolTip(look.help);
        if (auto* box = qobject_cast<QLineEdit*>(control); box && look.longest > 0)
            box->setMaxLength(look.longest);
    }
    ties_.push_back(std::move(tie));
}

// What the one control of a field shows while the record is unchanged.
ControlValue FormBinding::shown(const Tie& tie) const {
    const FieldRef field = tie.field();
    const QWidget* control = tie.controls.front();
    if (isBox(control))
        return qint32{numberOf(field) != 0};
    if (const auto* list = qobject_cast<const QComboBox*>(control); list && !list->isEditable()) {
        const qint32 value = numberOf(field) - offsetOf(tie.look, control);
        const bool offered =
            carriesValues(*list) ? list->findData(value) >= 0 : value >= 0 && value < list->count();
        return offered ? ControlValue(value) : ControlValue();
    }
    return holdsText(control) ? ControlValue(textOf(field)) : ControlValue(numberOf(field));
}

void FormBinding::fill() {
    for (const Tie& tie : ties_) {
        if (tie.controls.size() == 1) {
            SetValueOf(tie.controls.front(), shown(tie));
            continue;
        }
        const qint32 chosen = numberOf(tie.field()) - tie.look.first;
        for (qint32 i = 0; i < tie.controls.size(); ++i)
            if (i == chosen)
                SetValueOf(tie.controls[i], 1);
    }
}

void FormBinding::take() {
    for (const Tie& tie : ties_) {
        const FieldRef field = tie.field();
        if (tie.controls.size() > 1) {
            qint32 chosen = 0;
            for (qint32 i = 0; i < tie.controls.size(); ++i)
                if (ValueOf(tie.controls[i]) == ControlValue(1))
                    chosen = i;
            store(field, chosen + tie.look.first);
            continue;
        }
        const QWidget* control = tie.controls.front();
        const ControlValue value = ValueOf(control);
        if (const auto* number = std::get_if<qint32>(&value))
            store(field,
                  isBox(control) ? (*number ? tie.look.ticked : 0) : *number + offsetOf(tie.look, control));
        else if (const auto* text = std::get_if<QString>(&value)) {
            if (auto* const* member = std::get_if<QString*>(&field))
                **member = *text;
            else
                store(field, LeadingNumber(*text));
        }
    }
}

std::optional<WrongField> FormBinding::wrong() const {
    for (const Tie& tie : ties_) {
        QWidget* control = tie.controls.front();
        const FieldRef field = tie.field();
        if (!control->isEnabled() || !holdsText(control) || std::holds_alternative<QString*>(field))
            continue;
        qint32 lowest = tie.look.lowest;
        qint32 highest = tie.look.highest;
        if (std::holds_alternative<qint16*>(field)) {
            lowest = std::max<qint32>(lowest, INT16_MIN);
            highest = std::min<qint32>(highest, INT16_MAX);
        }
        const double number = LeadingNumber(std::get<QString>(ValueOf(control)));
        if (number < lowest || number > highest)
            return WrongField{control,
                              QStringLiteral("\"%1\" must be a number from %2 to %3")
                                  .arg(NameOf(control), QString::number(lowest), QString::number(highest))};
    }
    return std::nullopt;
}

bool FormBinding::changed() const {
    for (const Tie& tie : ties_) {
        if (tie.controls.size() == 1) {
            if (ValueOf(tie.controls.front()) != shown(tie))
                return true;
            continue;
        }
        const qint32 held = numberOf(tie.field()) - tie.look.first;
        for (qint32 i = 0; i < tie.controls.size(); ++i)
            if (ValueOf(tie.controls[i]) == ControlValue(1) && i != held)
                return true;
    }
    return false;
}

} // namespace tolvex
