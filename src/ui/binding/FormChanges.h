// Whether a form holds unsaved changes, and the one question before they are lost.
#pragma once

#include "ui/binding/Controls.h"

#include <QStringList>

namespace tolvex {

// A disabled control is ignored: the control that disabled it counts.
class FormChanges : public QObject {
    Q_OBJECT

public:
    // Compares the inputs of the form, except those named, with their current values. Belongs to the form.
    explicit FormChanges(QWidget* form, const QString& leftOut = {});

    // The contents of the form are stored: changes count from here.
    void markStored();

    bool any() const;
    // The names of the changed controls (NameOf), for a list of what OK will store.
    QStringList names() const;

private:
    struct Input {
        QWidget* control;
        ControlValue stored;
    };
    bool differs(const Input& input) const;

    QList<Input> inputs_;
};

// Asks "<what>\n\nClose without them?", with No as default. True if the user wants to lose the changes.
// `what` is a sentence: "The changes to the hardware lines have not been applied."
bool AskToLoseChanges(const QString& what);

} // namespace tolvex
