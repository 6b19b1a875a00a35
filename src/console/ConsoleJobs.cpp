#include "console/ConsoleJobs.h"

#include "core/report/Folders.h"
#include "core/settings/Settings.h"

namespace tolvex {

namespace {

using Tab = ConsoleTab;
using On = JobEnabling;
using Check = JobCheck;
using Open = JobOpening;

constexpr ConsoleTabRow tabs[] = {
    {Tab::LocalSettings, "Local Settings", 100},
    {Tab::GlobalSettings, "Global Settings", 200},
    {Tab::DatabaseUtilities, "Database Utilities", 300},
    {Tab::AutoConfig, "Auto-Config", 400},
};

constexpr char setDataFirst[] = "You must set the Data Location (in File Locations) first";
constexpr char setDataLocationFirst[] = "You must set the DataLocation first";
constexpr char setCartsFirst[] = "You must set the first Cart Location (in File Locations) first";

// clang-format off
constexpr ConsoleJob jobs[] = {
    {"cmdFileLocations", "F&ile Locations", Tab::LocalSettings, "folder", "Where data and carts live",
     On::Always, Check::None, "", false, "frmFileLocations", Open::Modal, true, 110},
    {"cmdAudioSetup", "Au&dio Setup", Tab::LocalSettings, "speaker", "Players, volumes, recording",
     On::DataLocationExists, Check::None, "", false, "frmAudioSetup", Open::Waited, true, 120},
    {"cmdAudiowallSetup", "Audio&wall Setup", Tab::LocalSettings, "wall", "Size, colours, jump buttons",
     On::FirstCartLocationExists, Check::None, "", false, "frmAudioWallSetup", Open::Waited, true, 130},
    {"cmdHardwareSetup", "&Hardware Setup", Tab::LocalSettings, "plug", "What each line of the cards does",
     On::DataLocationExists, Check::DataLocationSet, setDataFirst, false, "frmHardwareSettings", Open::Waited, true, 140},
    {"cmdLinkmeshSetup", "&LinkMesh Setup", Tab::LocalSettings, "network", "Which workstation this is",
     On::DataLocationExists, Check::DataLocationSet, setDataLocationFirst, true, "frmLinkMeshSetup", Open::Modal, true, 150},
    {"cmdKOVASetup", "&K-OVA Setup", Tab::LocalSettings, "log", "The automation player",
     On::DataLocationExists, Check::DataLocationSet, setDataLocationFirst, false, "frmKOVASetup", Open::Waited, true, 160},
    {"cmdDisplaySettings", "&Display Settings", Tab::LocalSettings, "display", "Colours, information window",
     On::DataLocationExists, Check::None, "", false, "frmDisplayOptions", Open::Modal, true, 170},
    {"cmdDateTimeSetup", "Da&te/Time Setup", Tab::LocalSettings, "clock", "The radio clock",
     On::DataLocationExists, Check::None, "", false, "frmDateTimeSetup", Open::Modal, false, 180},
    {"cmdOPAL", "&OPAL Setup", Tab::GlobalSettings, "transfer", "Transfers between stations",
     On::Always, Check::None, "", false, "frmOpalSetup", Open::Modal, false, 210},
    {"cmdCDRipping", "CD &Ripping", Tab::GlobalSettings, "disc", "Taking carts from CDs",
     On::DataLocationExists, Check::FirstCartLocationSet, setCartsFirst, false, "frmRippingSettings", Open::Modal, true, 220},
    {"cmdCommands", "&Commands", Tab::GlobalSettings, "command", "What the station can fire",
     On::DataLocationExists, Check::DataLocationSet, setDataFirst, false, "frmCommandSetup", Open::Waited, true, 230},
    {"cmdCompress", "Compress/Repair a Database", Tab::DatabaseUtilities, "database", "Smaller, faster, repaired",
     On::Always, Check::None, "", false, "CompactDatabase", Open::Routine, false, 300},
    {"cmdAutoConfig", "Local Configuration", Tab::AutoConfig, "workstation", "Everything on this computer",
     On::Always, Check::None, "", false, "LocalSetup", Open::Routine, false, 400},
    {"cmdNetworkSetup", "Network Configuration", Tab::AutoConfig, "share", "Data on M:, audio on U:",
     On::Always, Check::None, "", false, "NetworkSetup", Open::Routine, false, 400},
};
// clang-format on

// Forms that no button opens.
struct OtherForm {
    const char* form;
    int helpContext;
};
constexpr OtherForm otherForms[] = {
    {"frmRadioClockTest", 180}, {"frmCommandDetails", 230}, {"frmLinkMeshServer", 231},
    {"frmMultiConfig", 500},    {"frmPrintPreview", 510},   {"frmKOVADatabaseSettings", 520},
    {"frmChooseDatabase", 530}, {"frmFindCart", 540},       {"frmCartDetails", 540},
    {"frmJumpToCart", 541},
};

} // namespace

std::span<const ConsoleTabRow> ConsoleTabs() {
    return tabs;
}

std::span<const ConsoleJob> ConsoleJobs() {
    return jobs;
}

const ConsoleJob* FindConsoleJob(const QString& control) {
    for (const ConsoleJob& job : jobs)
        if (control == QLatin1String(job.control))
            return &job;
    return nullptr;
}

const ConsoleJob* FindJobOfForm(const QString& form) {
    for (const ConsoleJob& job : jobs)
        if (form == QLatin1String(job.form))
            return &job;
    return nullptr;
}

int HelpContextOfForm(const QString& form) {
    if (const ConsoleJob* job = FindJobOfForm(form))
        return job->helpContext;
    for (const OtherForm& other : otherForms)
        if (form == QLatin1String(other.form))
            return other.helpContext;
    return 0;
}

bool CheckHolds(JobCheck check, const Settings& settings) {
    switch (check) {
    case Check::DataLocationSet:
        return !settings.DataLocation.isEmpty();
    case Check::FirstCartLocationSet:
        return !settings.CartPartTable[1].Location.isEmpty();
    case Check::None:
        break;
    }
    return true;
}

ConsoleState LookAtConsoleState(const Settings& settings) {
    const QString carts = settings.CartPartTable[1].Location;
    const QString data = settings.DataLocation;
    return {!data.isEmpty() && DirectoryExists(data), !carts.isEmpty() && DirectoryExists(carts)};
}

bool IsEnabled(JobEnabling enabling, const ConsoleState& state) {
    switch (enabling) {
    case On::DataLocationExists:
        return state.dataLocationExists;
    case On::FirstCartLocationExists:
        return state.firstCartLocationExists;
    case On::Always:
        break;
    }
    return true;
}

} // namespace tolvex
