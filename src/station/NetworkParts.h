// What the control network needs from the rest of a workstation.
#pragma once

#include "network/commands/CommandUses.h"
#include "network/server/LinkMeshServer.h"

namespace tolvex {

struct Workstation;

// The setup of the workstation's LinkMesh server. Reads the card table, whose outputs follow station control.
// The workstation outlives the server.
LinkMeshServerSetup ServerSetupOf(Workstation& station);

// The uses of a station command: lines of the hardware cards in the local ini file, and entries of the
// automation log. *why says, as a sentence, what could not be searched.
QList<CommandUse> UsesOfCommand(Workstation& station, const QString& name, QString* why = nullptr);

} // namespace tolvex
