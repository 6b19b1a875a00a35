// What the control network takes from the rest of a workstation.
#pragma once

#include "network/commands/CommandUses.h"
#include "network/server/LinkMeshServer.h"

namespace tolvex {

struct Workstation;

// The setup of the workstation's LinkMesh server. Reads the card table, whose outputs follow control. The
// workstation outlives the server.
LinkMeshServerSetup ServerSetupOf(Workstation& station);

// What names a command of the station: lines of the hardware cards, as the local ini file has them, and
// entries of the automation log. *why says, as a sentence, what could not be looked through.
QList<CommandUse> UsesOfCommand(Workstation& station, const QString& name, QString* why = nullptr);

} // namespace tolvex
