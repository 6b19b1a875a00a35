// Automatic configuration: makes a workstation out of a machine that has nothing, or of one that has some of
// it. It needs a data location and the locations of the carts, from a search of the drives, the fixed network
// drives or a local folder; everything else it builds, keeping whatever is there already. Started again after
// any interruption, it completes what is missing.
//
// What it asks, tells and shows goes through the prompts. LoadLocalSettings has been done.
#pragma once

namespace tolvex {

struct Workstation;

// The jobs of the console. Each gives true when the user asked to exit from the program afterwards; the
// caller ends it. The caller updates its buttons.
bool LookForSetup(Workstation& station); // mnuLookForSetup, and Yes to the first-run question
bool NetworkSetup(Workstation& station); // cmdNetworkSetup, mnuNetworkConfig
void LocalSetup(Workstation& station); // cmdAutoConfig, mnuLocalConfig: DefaultLocalInstall after a question

// How a way to a configured workstation ended. Declined: by the user, or because a search found nothing.
enum class InstallOutcome { Declined, Stopped, Failed, Configured };

// Searches the drives, showing progress that can be stopped, asks whether to use what was found, and
// configures from it. A search that was stopped asks nothing and ends the job.
InstallOutcome ConfigureFromSearch(Workstation& station, bool networkOnly);
// Data in M:, carts in U:, after a question.
InstallOutcome ConfigureForNetwork(Workstation& station);
// Everything below one local folder: [Tolvex] InstallPath of Win.ini, else C:\TOLVEX\. As above.
InstallOutcome ConfigureLocally(Workstation& station);

// The last two; true when configuration ran and succeeded.
bool DefaultNetworkInstall(Workstation& station);
bool DefaultLocalInstall(Workstation& station);

// Builds everything that is missing in the locations that the settings hold, saves the local ini file, and
// says so. False when the folder of the first cart part cannot be made: then nothing was saved. Whatever
// fails later is reported and does not stop the rest; a box before the closing message names what is missing
// (console/Installation.h).
bool AutoInstall(Workstation& station);

} // namespace tolvex
