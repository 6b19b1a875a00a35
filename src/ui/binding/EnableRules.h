// When each control of a form is enabled, as a table. A disabled control gives the reason in its tool tip and
// to screen readers.
//
//     EnableRules rules(this, {
//         {"txtFade lblFade", "Tick \"Fade\" to set how long it takes.", IsOn("chkFade")},
//         {"cmdTest", "There is no sound card.", [this](const FormView&) { return !cards_.isEmpty(); }},
//     });
#pragma once

#include "ui/binding/Controls.h"

#include <vector>

namespace tolvex {

struct EnableRule {
    enum class Effect {
        Disables,
        Locks // text boxes: their text can be read and copied, not changed
    };
    QString controls; // names separated by blanks
    QString reason;   // a sentence: why they are disabled
    std::function<bool(const FormView& form)> when;
    Effect effect = Effect::Disables;
};

// A ticked box, or a chosen radio button.
std::function<bool(const FormView&)> IsOn(const char* box);

// A control with several rules is enabled if all of them
// hold; the first that does not gives the reason.
class EnableRules : public QObject {
    Q_OBJECT

public:
    // Applies the rules now and after each change of an input. Belongs to the form.
    EnableRules(QWidget* form, std::vector<EnableRule> rules);

    // Call after changes that no input signals, such as of the form's record.
    void apply();

private:
    struct Controlled {
        QWidget* control = nullptr;
        std::vector<std::size_t> rules;
        bool usable = true;
        QString toolTip; // its own, while the reason replaces it
        QString description;
    };
    void apply(Controlled& controlled);

    QWidget* form_;
    std::vector<EnableRule> rules_;
    std::vector<Controlled> controlled_;
};

} // namespace tolvex
