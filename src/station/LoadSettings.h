// Filling the settings from the files of this workstation and of the station. A missing file or key is
// not reported: its default stands.
#pragma once

#include <QString>

namespace tolvex {

struct Settings;
struct Workstation;

// The local ini file, with what belongs to the audiowall (LoadAudioSettings). False when the user cancelled
// the choice of the file.
bool LoadLocalSettings(Workstation& station);
// The same without what the load keeps up to date in passing (ReadAudioSettings).
bool ReadLocalSettings(Workstation& station);
// Only what the cart lists need (ReadAudiowallSettings).
bool ReadAudiowall(Workstation& station);

// Section AudioWall.
void LoadAudioWallDisplaySettings(Settings& values, const QString& iniFile);

// How control is passed between studios: section KOVA.
void LoadAutomationControlSettings(Settings& values, const QString& iniFile);

// The system ini file, in the data location unless another one was named. Without its folder LastOneWas
// becomes -1. Always true.
bool LoadSystemSettings(Workstation& station);

// Everything: local settings, missing folders of the data location, system settings, update notice, Terminal
// list, hotlist. Stops early where the user cancels and without a data location; the wait pointer then stays.
void LoadAllSettings(Workstation& station);

} // namespace tolvex
