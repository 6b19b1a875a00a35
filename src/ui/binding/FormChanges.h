// Whether a form holds changes that were not stored, and the one question that is asked before they are lost.
#pragma once

#include "ui/binding/Controls.h"

#include <QStringList>

namespace tolvex {

// A control that is disabled counts for nothing: what disabled it counts.
class FormChanges : public QObject {
    Q_OBJECT

public:
    // Compares the inputs of the form, but for those named, with what they hold now. Belongs to the form.
    explicit FormChanges(QWidget* form, const QString& leftOut = {});

    // What stands in the form is stored: changes count from here.
    void markStored();

    bool any() const;
    // The names of the controls that were changed (NameOf), for a list of what OK will store.
    QStringList names() const;

private:
    struct Input {
        QWidget* control;
        ControlValue stored;
    };
    bool differs(const Input& input) const;

    QList<Input> inputs_;
};

// Asks "<what>\n\nClose without them?", with No as default. True when the user wants to lose the changes.
// `what` is a sentence: "The changes to the hardware lines have not been applied."
bool AskToLoseChanges(const QString& what);

} // namespace tolvex
