// Who would miss a command: what names it, looked for before it is deleted. A hardware line has no field for
// a command, and an automation log names it in texts of its own, so a use is a place whose text is or holds
// the command's name.
#pragma once

#include "hardware/HardwareCards.h"

#include <QList>
#include <QString>

#include <functional>
#include <vector>

namespace tolvex {

struct CommandUse {
    QString where; // "Hardware card 2, line 7"
    QString text;  // what stands there
};

// Searches something that this folder does not know, such as an automation log, with NamesCommand.
using CommandUseSource = std::function<QList<CommandUse>(const QString& name)>;

// Whether a text is a command's name or holds it as words of its own, without regard to case.
bool NamesCommand(const QString& text, const QString& name);

// The lines of the cards whose descriptions name the command.
QList<CommandUse> CommandUsesInHardware(const HardwareCardTable& cards, const QString& name);
// The same, and what every source finds.
QList<CommandUse> CommandUses(const QString& name, const HardwareCardTable& cards,
                              const std::vector<CommandUseSource>& sources);

} // namespace tolvex
