// Finds the form that holds a setting by the setting's words: the help lines and keys of the settings table,
// and the labels of the forms.
#pragma once

#include <QList>
#include <QString>

namespace tolvex {

struct SearchEntry {
    QString text;    // what is shown: a help line or a label
    QString words;   // what is searched: the text and the key, lower case
    QString control; // the console's control that opens the form
    // What to show there: a control of the form, or "form/control" of one that it opens; empty: the form.
    QString place = {};
    QString window = {}; // the title of that other form
};

// Entries of the settings table: those whose row names a form that a job of the console opens.
QList<SearchEntry> SettingEntries();

// Labels, captions and names of fields in a form's design (the bytes of a .ui file), for the form behind
// `control`. A label leads to its field. `inner`: the name of the form if another form opens it.
QList<SearchEntry> LabelEntries(const QByteArray& ui, const QString& control, const QString& inner = {});

// The entries that hold every word of `query`, those that begin with it first; one for each place, and at
// most `limit`. Cost: one pass over the entries.
QList<SearchEntry> FindEntries(const QList<SearchEntry>& entries, const QString& query, int limit = 12);

} // namespace tolvex
