// Automatic configuration: sets up a workstation on a machine that has nothing, or completes a partial one.
// It needs a data location and the locations of the carts, from a search of the drives, the fixed network
// drives or a local folder; it builds everything else, keeping whatever exists. Started again after any
// interruption, it completes what is missing.
//
// All questions, messages and progress go through the prompts. LoadLocalSettings has been called.
#pragma once

namespace tolvex {

struct Workstation;

// The jobs of the console. Each returns true if the user asked to exit from the program afterwards; the
// caller ends it and updates its buttons.
bool LookForSetup(Workstation& station); // mnuLookForSetup, and Yes to the first-run question
bool NetworkSetup(Workstation& station); // cmdNetworkSetup, mnuNetworkConfig
void LocalSetup(Workstation& station); // cmdAutoConfig, mnuLocalConfig: DefaultLocalInstall after a question

// How a configuration attempt ended. Declined: by the user, or because a search found nothing.
enum class InstallOutcome { Declined, Stopped, Failed, Configured };

// Searches the drives with progress that can be stopped, asks whether to use what was found, and configures
// from it. A stopped search asks nothing and ends the job.
InstallOutcome ConfigureFromSearch(Workstation& station, bool networkOnly);
// Data in M:, carts in U:, after a question.
InstallOutcome ConfigureForNetwork(Workstation& station);
// Everything in one local folder: [Tolvex] InstallPath of Win.ini, else C:\TOLVEX\. Asks as above.
InstallOutcome ConfigureLocally(Workstation& station);

// The last two; true if configuration ran and succeeded.
bool DefaultNetworkInstall(Workstation& station);
bool DefaultLocalInstall(Workstation& station);

// Builds everything that is missing in the locations of the settings, saves the local ini file, and reports
// it. False if the folder of the first cart part cannot be made: then nothing was saved. Later failures are
// reported and do not stop the rest; a box before the closing message names what is missing
// (console/Installation.h).
bool AutoInstall(Workstation& station);

} // namespace tolvex
