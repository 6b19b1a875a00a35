// Decoder of the radio time receiver's answers: bytes in, lines out, no port. The receiver answers requests
// of one letter with lines that end in a carriage return. The length of a line alone says what it is:
//
//     15 characters  HHMMSS?DDMMYYab  the time; a is not used, b holds bit 1 "valid" and bit 8 "battery low"
//      2 characters  ?n               the strength of reception, n from 0 to 5
//
// Any other line is dropped.
#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>

#include <optional>

namespace tolvex {

struct ClockLine {
    enum class Kind { Time, Strength, Other };
    Kind kind = Kind::Other;
    QByteArray raw; // without the carriage return; a long one is cut

    // Of a time line.
    bool valid = false;
    bool lowBattery = false;
    std::optional<QDate> date; // empty if the digits are not a date
    int seconds = -1;          // of the day; -1 if the digits are not a time of day

    // Of a strength line; -1 if there is no digit from 0 to 5.
    int level = -1;

    // True for a time line that the clock is set by: valid, after 1 January 2002, not exactly at midnight.
    bool setsClock() const;
    // Why a time line does not set the clock, a phrase; otherwise empty.
    QString whyNot() const;
    // The line in words: "5 March 2024 22:10:30, valid", "5 March 2024 00:00:00, not used: it is exactly
    // midnight", "strength 3".
    QString text() const;
};

// Joins bytes to lines, in whatever pieces they arrive.
class ClockLineReader {
public:
    // The lines that these bytes complete.
    QList<ClockLine> take(const QByteArray& bytes);
    void clear();

private:
    QByteArray begun_;     // the line so far, as much of it as matters
    qsizetype length_ = 0; // of the line so far
};

// The moment of a local date and time of day. In the hour that the clock goes through twice, the one nearer
// to `now`.
QDateTime LocalMoment(const QDate& date, int seconds, const QDateTime& now);

// Strength in percent. The server shows (level + 1) / 6, cut to a whole number (level 3 is 66); the test of a
// receiver that is not in use yet shows level / 5 (level 3 is 60).
int ServerStrength(int level);
int TestStrength(int level);

} // namespace tolvex
