// Loads the settings from the files of this workstation and of the station. A missing file or key is not
// reported: its default stays.
#pragma once

#include <QString>

namespace tolvex {

struct Settings;
struct Workstation;

// The local ini file, with the audiowall's settings (LoadAudioSettings). False if the user cancelled the
// choice of the file.
bool LoadLocalSettings(Workstation& station);
// The same, but without updating anything in passing (ReadAudioSettings).
bool ReadLocalSettings(Workstation& station);
// Only the settings that the cart lists need (ReadAudiowallSettings).
bool ReadAudiowall(Workstation& station);

// Section AudioWall.
void LoadAudioWallDisplaySettings(Settings& values, const QString& iniFile);

// Station control: section KOVA.
void LoadAutomationControlSettings(Settings& values, const QString& iniFile);

// The system ini file, in the data location unless another one was named. If its folder is missing,
// LastOneWas becomes -1. Always true.
bool LoadSystemSettings(Workstation& station);

// Everything: local settings, missing folders of the data location, system settings, update notice, Terminal
// list, hotlist. Stops early if the user cancels or there is no data location; the wait pointer then stays.
void LoadAllSettings(Workstation& station);

} // namespace tolvex
