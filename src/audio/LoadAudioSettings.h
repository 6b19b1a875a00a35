// Loads everything about audio and the audiowall: the player table, the audio and display settings, the cart
// locations and the settings that lie in Audwall.ini beside the audio.
#pragma once

#include <QString>

namespace tolvex {

struct CartStore;
struct Settings;

// Below the local machine hive.
inline constexpr char AudioRegistryRoot[] = "Software\\Norvane\\Tolvex v2";

// Fills the settings of the audiowall from an ini file, or, when `iniPath` is empty, from the registry below
// `registryRoot`.
void ReadAudioSettings(CartStore& carts, const QString& iniPath, const QString& registryRoot);

// Fills only what the cart lists need: locations, numbers of carts, how lists are kept, colours. No device is
// asked for, which is most of the time that ReadAudioSettings takes.
void ReadAudiowallSettings(CartStore& carts, const QString& iniPath, const QString& registryRoot);

// As ReadAudioSettings, as the window loads: checks the system's file cache first, and where the first part
// of the audiowall has an Audwall.ini of a version below 2.6, backs up the cart lists and writes the new
// version.
void LoadAudioSettings(CartStore& carts, const QString& iniPath, const QString& registryRoot);

// Audwall.ini in the location of the first part; "\Audwall.ini" while that is empty.
QString AudiowallIniFile(const Settings& settings);

} // namespace tolvex
