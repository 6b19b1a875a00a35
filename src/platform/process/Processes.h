// Starting other programs.
#pragma once

#include <QString>
#include <QStringList>

namespace tolvex::platform {

enum class ProcessWait {
    None,        // return at once
    InputIdle,   // until the program waits for input; off Windows: until it has started
    End,         // until it ends, in steps with events between
    IdleThenEnd, // both
};

// Starts a program (a Windows path, or a bare name looked up on the path) with its arguments as one text, in
// a normal window, inheriting no handles. `stepMilliseconds` is the step of a wait for the end. Off Windows a
// path to a host program runs as it is; a Windows program runs through the interpreter that the system has
// registered for it, if any. False, with a reason in *why, if it could not be started.
bool StartProcess(const QString& program, const QString& arguments, ProcessWait wait, int stepMilliseconds,
                  QString* why = nullptr);

// Starts a command line, a program and its arguments as one text. A program with blanks
// in its path is in quotes, or is the shortest part of the text before a blank that names
// one. Returns once it has started. Off Windows the window manager decides the style of
// its window (the platform's number: 1 normal, 2 minimised, 3 maximised, 4 and 7 the
// first two without the focus); the program finds the number in TOLVEX_WINDOW_STYLE.
bool StartCommandLine(const QString& commandLine, int windowStyle, QString* why = nullptr);

} // namespace tolvex::platform
