// The console's buttons as one table: each row has the caption, what is checked first, which form it opens
// and how. The form's layout, its enabling rules, menus and search all use these rows.
#pragma once

#include <QSet>
#include <QString>

#include <span>

namespace tolvex {

struct Settings;

enum class ConsoleTab { LocalSettings, GlobalSettings, DatabaseUtilities, AutoConfig };

struct ConsoleTabRow {
    ConsoleTab tab;
    const char* caption;
    int helpContext;
};
std::span<const ConsoleTabRow> ConsoleTabs();

// What must hold before a job's form opens.
enum class JobCheck { None, DataLocationSet, FirstCartLocationSet };

// When a job's button is enabled.
enum class JobEnabling { Always, DataLocationExists, FirstCartLocationExists };

// How the form is opened. Waited: not modal, with the console disabled until the form is closed. Routine: no
// form.
enum class JobOpening { Modal, Waited, Routine };

struct ConsoleJob {
    const char* control;
    const char* caption;
    ConsoleTab tab;
    const char* icon;
    const char* about; // one quiet line
    JobEnabling enabling;
    JobCheck check;
    const char* message; // shown if the check fails
    bool informs;        // its box is an information box, not an exclamation box
    const char* form;    // or the routine's name
    JobOpening opening;
    bool hourglass;
    int helpContext;
};
std::span<const ConsoleJob> ConsoleJobs();
// The row of a control; null if it has none.
const ConsoleJob* FindConsoleJob(const QString& control);
// The job that opens a form; null if none does.
const ConsoleJob* FindJobOfForm(const QString& form);

// The help page of a form by its name: that of the job that opens it, else its own; 0 (the first page) for
// others.
int HelpContextOfForm(const QString& form);

// Whether a check holds for the current settings.
bool CheckHolds(JobCheck check, const Settings& settings);

// Whether each kind of button is enabled: asks the file system for the two folders once.
struct ConsoleState {
    bool dataLocationExists = false;
    bool firstCartLocationExists = false;
};
ConsoleState LookAtConsoleState(const Settings& settings);
bool IsEnabled(JobEnabling enabling, const ConsoleState& state);

} // namespace tolvex
