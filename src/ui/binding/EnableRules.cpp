#include "ui/binding/EnableRules.h"

#include <QLineEdit>

#include <algorithm>

namespace tolvex {

std::function<bool(const FormView&)> IsOn(const char* box) {
    return [box](const FormView& form) { return form.on(box); };
}

EnableRules::EnableRules(QWidget* form, std::vector<EnableRule> rules)
    : QObject(form)
    , form_(form)
    , rules_(std::move(rules)) {
    for (std::size_t rule = 0; rule < rules_.size(); ++rule)
        for (QWidget* control : ControlsNamed(form, rules_[rule].controls)) {
            auto known = std::find_if(controlled_.begin(), controlled_.end(),
                                      [control](const Controlled& c) { return c.control == control; });
            if (known == controlled_.end())
                known = controlled_.insert(known, Controlled{control, {}, true, {}, {}});
            known->rules.push_back(rule);
        }
    for (QWidget* input : InputsOf(form))
        WhenChanged(input, this, [this] { apply(); });
    apply();
}

void EnableRules::apply() {
    for (Controlled& controlled : controlled_)
        apply(controlled);
}

void EnableRules::apply(Controlled& controlled) {
    QWidget* control = controlled.control;
    const EnableRule* broken = nullptr;
    bool disabled = false;
    bool locked = false;
    for (const std::size_t index : controlled.rules) {
        const EnableRule& rule = rules_[index];
        if (rule.when(FormView(form_)))
            continue;
        broken = broken ? broken : &rule;
        (rule.effect == EnableRule::Effect::Locks ? locked : disabled) = true;
    }
    if (broken && controlled.usable) {
        controlled.toolTip = control->toolTip();
        controlled.description = control->accessibleDescription();
    }
    if (broken || !controlled.usable) {
        control->setToolTip(broken ? broken->reason : controlled.toolTip);
        control->setAccessibleDescription(broken ? broken->reason : controlled.description);
    }
    controlled.usable = !broken;
    control->setEnabled(!disabled);
    if (auto* box = qobject_cast<QLineEdit*>(control))
        box->setReadOnly(locked);
}

} // namespace tolvex
