// The settings of the window for CD ripping as one record: what is done to ripped audio, and where CD titles
// are looked up. They belong to the audiowall as a whole and lie beside its audio. The window shows the
// record, the shell changes it, and StoreRippingSetup is the one way back.
#pragma once

#include "audio/SetupOutcome.h"
#include "core/settings/SettingsTable.h"

namespace tolvex {

inline constexpr qint32 UsualNormaliseLevel = 63; // percent
inline constexpr qint32 UsualCddbPort = 8880;

// What the list of servers offers: two public ones of the free service, and the form that the name of a
// server of the commercial service has, which gives each customer one of its own.
inline constexpr const char* CddbServers[] = {"gnudb.gnudb.org", "freedb.dbpoweramp.com", "cddb.example.com"};

// What the window holds.
struct RippingSetup {
    bool askFirst = false;
    bool autoTop = false;
    bool normalise = false;
    qint32 level = UsualNormaliseLevel; // percent of full scale
    bool allowCddb = false;
    QString server;
    qint32 port = UsualCddbPort; // never stored: each opening begins with the usual one
    QString email;
    bool allowSubmissions = false;
};

// The seven rows, in the order in which they are written.
std::span<const SettingRow* const> RippingRows();

// The record as Audwall.ini has it now; the first part of the audiowall has a location.
RippingSetup LoadRippingSetup(const Settings& settings);

// The OK: checks the record, writes all seven keys to Audwall.ini as one replacement, and takes them into the
// settings. A record that is refused and a file that cannot be written change nothing. `shown` is the record
// as it was loaded: where another workstation stored something since, nothing is written, both records are
// brought up to date, and the message says so; the next call stores.
SetupOutcome StoreRippingSetup(RippingSetup& setup, RippingSetup& shown, Settings& settings);

// What the seven rows hold for a record, the rest being empty.
Settings RippingSettingsOf(const RippingSetup& setup);

// Sets what one of the rows stands for, as the shell gives it. False, with the end of a sentence in *why,
// when the value has not the form that the row asks for; its range is checked when the record is stored.
bool SetRippingValue(RippingSetup& setup, const SettingRow& row, const QString& value, QString* why);

// Why a server and a port cannot be asked for CD titles; stored() when they can.
SetupOutcome CheckCddbServer(const QString& server);
SetupOutcome CheckCddbPort(qint32 port);

// What a level of so many percent is in decibels below full scale: "-4.0 dB"; empty for 0.
QString LevelInDecibels(qint32 percent);

// What is good to know about a server, a sentence; mostly empty.
QString CddbServerHint(const QString& server);

} // namespace tolvex
