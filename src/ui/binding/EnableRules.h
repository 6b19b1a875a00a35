// Which controls of a form can be used when, as a table. A control that cannot be used says why, in its tool
// tip and to who has it read aloud.
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
    QString controls; // names with a blank between
    QString reason;   // a sentence: why they cannot be used
    std::function<bool(const FormView& form)> when;
    Effect effect = Effect::Disables;
};

// A box that is ticked, or a radio button that is chosen.
std::function<bool(const FormView&)> IsOn(const char* box);

// A control that several rules name can be used when all of them hold; the first that does not gives the
// reason.
class EnableRules : public QObject {
    Q_OBJECT

public:
    // Applies the rules now and after each change of an input. Belongs to the form.
    EnableRules(QWidget* form, std::vector<EnableRule> rules);

    // For what no input tells, such as a change of the form's record.
    void apply();

private:
    struct Controlled {
        QWidget* control = nullptr;
        std::vector<std::size_t> rules;
        bool usable = true;
        QString toolTip; // its own, while the reason stands in their place
        QString description;
    };
    void apply(Controlled& controlled);

    QWidget* form_;
    std::vector<EnableRule> rules_;
    std::vector<Controlled> controlled_;
};

} // namespace tolvex
