// The table of hardware cards: up to three in a workstation, each with up to 100 numbered lines, which are
// inputs or outputs and each perform one action of the playout system. HardwareStore.h reads and writes it,
// LineActions.h declares the action codes.
#pragma once

#include "core/settings/Settings.h"
#include "core/time/DayTime.h"

#include <array>
#include <span>

namespace tolvex {

inline constexpr int HardwareCardCount = 3;
inline constexpr int LinesPerCard = 100;
inline constexpr int LongestDescription = 254; // characters

struct HardwareLine {
    qint32 LineType = 0;    // 0 input, any other value output
    qint16 OutputState = 0; // of an output: 0 off, -1 on; never stored
    qint16 ActiveLow = 0;   // -1: reads or drives inverted
    qint16 Flashing = 0;    // -1 while the output flashes; never stored
    DayTime PulseEnd;       // when a pulsed output falls; never stored
    QString Description;
    qint32 Color = 0; // kept as stored; nothing here edits it
    qint32 Action = 0;
    std::array<qint32, 4> ActionData{}; // parameters 1 to 4

    bool isOutput() const { return LineType != 0; }
    // Trimmed, for display.
    QString description() const { return Description.trimmed(); }
    // A line that is stored in the file.
    bool inUse() const { return Action != 0 || !description().isEmpty(); }
    // Whether both would be stored alike.
    bool isStoredAs(const HardwareLine& other) const;
};

struct HardwareCard {
    qint32 CardType = 0;    // a row of CardTypes()
    qint16 BaseAddress = 0; // device number of an Advantech card, port number of an RS232 based controller
    qint16 ComPort = 0;     // a copy of BaseAddress for the controller, 0 for an Advantech card
    NumberedTable<HardwareLine, LinesPerCard> Lines;
    qint16 NumberLines = 0;
    qint16 NumberInputs = 0;
    qint16 NumberOutputs = 0;
    bool Answered = true; // false: its driver failed, and the counts may be defaults
};

// Empty until ReadHardwareSettings fills it.
using HardwareCardTable = NumberedTable<HardwareCard, HardwareCardCount>;

// A text in a pair of quotes, which is lost when it is read from an ini file.
bool IsQuoted(const QString& text);

enum HardwareCardType : qint32 {
    CardDisabled = 0,
    CardPorts24 = 1,
    CardPorts48 = 2,
    CardRS232 = 3,
    CardAdvantech = 4,
    CardJoystick = 5,
};

// What is known about each type of card. The counts of an Advantech card are defaults for when its driver
// fails.
struct CardTypeRow {
    qint32 type;
    const char* name; // in the dialog; null: it is not offered
    qint16 lines;
    qint16 inputs;
    qint16 outputs;
    const char* addressCaption; // null: the caption stays as it was
    bool usesAddress;
    bool usesPort;
    bool fixedLines; // the card determines the line types, which cannot be changed
    bool byEights;   // line types change in groups of eight
};
std::span<const CardTypeRow> CardTypes();
// Null for an unknown type: the section of such a card is left as it is.
const CardTypeRow* FindCardType(qint32 type);

} // namespace tolvex
