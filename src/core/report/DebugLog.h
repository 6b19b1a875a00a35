// The daily debug file: "c:\Debugfiles\<program>.<yyyymmdd>.log". Each line
// opens, writes and closes the file, so that the log survives a crash; a failure
// never stops the program. Off unless /DEBUG was given (DebugLevel, Settings.h).
// Every floor writes to it, so it is global, like the prompts and the clock.
#pragma once

#include <QString>

namespace tolvex {

enum class DebugIndent {
    Keep = 0,
    Deeper = 1,    // this line as it is, later ones one step in
    Shallower = 2, // this line and later ones one step out
    Reset = 3      // back to the left edge
};

// While one of these lives, the log has its level: 0 off, -1 everything, above 0 lines up to that level. The
// newest one counts. `level` outlives it and may change.
class DebugLogging {
public:
    explicit DebugLogging(const qint32& level);
    explicit DebugLogging(qint32&& level) = delete;
    ~DebugLogging();
    DebugLogging(const DebugLogging&) = delete;
    DebugLogging& operator=(const DebugLogging&) = delete;

    // Whether a line of a level is written. -1 counts as 5.
    bool wants(qint32 level) const;

    qint16 steps = 0; // indentation of lines

private:
    const qint32& level_;
    DebugLogging* before_;
};

// Writes "hh:nn:ss extra text", the text indented by four blanks per step. Cost when off: one comparison.
void DebugLog(const QString& text, qint32 level = -1, DebugIndent indent = DebugIndent::Keep,
              const QString& extra = {});

// Name of this program's file without folder and extension.
QString ProgramName();

} // namespace tolvex
