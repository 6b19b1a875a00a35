// The daily debug file: "c:\Debugfiles\<program>.<yyyymmdd>.log". Every line is opened for, written and
// closed at once, so that the log survives a crash; nothing about it ever stops the program. Off unless
// /DEBUG was given (DebugLevel, Settings.h).
#pragma once

#include <QString>

namespace tolvex {

enum class DebugIndent {
    Keep = 0,
    Deeper = 1,    // this line as it is, those after it one step in
    Shallower = 2, // this line and those after it one step out
    Reset = 3      // back to the left edge
};

// Writes "hh:nn:ss extra text", the text indented by four blanks a step. With a positive DebugLevel a line
// above that level is left out; level -1 counts as 5. Cost when off: one comparison.
void DebugLog(const QString& text, qint32 level = -1, DebugIndent indent = DebugIndent::Keep,
              const QString& extra = {});

// Name of this program's file without folder and extension.
QString ProgramName();

} // namespace tolvex
