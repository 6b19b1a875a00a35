#include "ui/binding/FormChanges.h"

#include "platform/Prompts.h"

#include <algorithm>

namespace tolvex {

FormChanges::FormChanges(QWidget* form, const QString& leftOut)
    : QObject(form) {
    const QList<QWidget*> out = ControlsNamed(form, leftOut);
    for (QWidget* control : InputsOf(form))
        if (!out.contains(control))
            inputs_.append({control, ValueOf(control)});
}

void FormChanges::markStored() {
    for (Input& input : inputs_)
        input.stored = ValueOf(input.control);
}

bool FormChanges::differs(const Input& input) const {
    return input.control->isEnabled() && ValueOf(input.control) != input.stored;
}

bool FormChanges::any() const {
    return std::any_of(inputs_.begin(), inputs_.end(), [this](const Input& input) { return differs(input); });
}

QStringList FormChanges::names() const {
    QStringList names;
    for (const Input& input : inputs_)
        if (differs(input))
            names += NameOf(input.control);
    return names;
}

bool AskToLoseChanges(const QString& what) {
    const platform::Message question{what + QStringLiteral("\n\nClose without them?"),
                                     platform::Icon::Question, platform::Buttons::YesNo,
                                     platform::Answer::No};
    return platform::prompts().ask(question) == platform::Answer::Yes;
}

} // namespace tolvex
