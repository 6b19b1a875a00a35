// The rows of the local and system ini files that are not about audio.
#include "core/settings/SettingRowBuilders.h"
#include "core/text/PathNames.h"

namespace tolvex {

namespace {

int jumpButtons(const Settings& values) {
    return static_cast<int>(values.JumpCartButtons.size());
}

template<auto field>
SettingRef jumpButton(Settings& values, int index) {
    return &(values.JumpCartButtons[index - 1].*field);
}

QString dataFolder(const Settings& values, const char* name) {
    return TidyLocation(values.DataLocation) + QLatin1String(name);
}

std::optional<QString> schedules(const Settings& values, int) {
    return dataFolder(values, "\\SCHEDULE");
}
std::optional<QString> logs(const Settings& values, int) {
    return dataFolder(values, "\\LOGS");
}
std::optional<QString> sampleBits(const Settings&, int) {
    return QStringLiteral("16");
}

constexpr SettingRow configName[] = {
    Text<&Settings::ConfigName>("General", "ConfigName", "", "Name of this configuration set."),
};

constexpr SettingRow workstation[] = {
    TextRow(SettingKind::Path, Member<&Settings::DataLocation>, "FileLocations", "Data", "",
            "The data location: the folder of the station's databases, logs and commands.")
        .setIn(FileLocations, "txtDataLocation")
        .saved(101),
    Number<&Settings::LinkMeshId>("LinkMesh", "LinkMeshId", 0,
                                  "Number of this workstation; 0 if none is chosen.")
        .range(0, INT16_MAX)
        .setIn(WorkstationSetup, "grdTerminals")
        .saved(601),
    Word<&Settings::RadioClockComPort>("DateTimeSettings", "RadioClockComPort", 0,
                                       "Serial port of the radio clock; 0 if none is fitted.")
        .range(0, 4)
        .older("LinkMesh", "UseRadioClock")
        .on(DateTimeSetup, "comboRadioClock")
        .saved(301),
};

constexpr SettingRow writtenOnly[] = {
    TextRow(SettingKind::Path, nullptr, "FileLocations", "Schedules", "",
            "Folder of the schedules, below the data location; written for other programs.")
        .saves(schedules)
        .setIn(FileLocations, "txtDataLocation")
        .saved(102),
    TextRow(SettingKind::Path, nullptr, "FileLocations", "Logs", "",
            "Folder of the logs, below the data location; written for other programs.")
        .saves(logs)
        .setIn(FileLocations, "txtDataLocation")
        .saved(103),
    NumberRow(SettingKind::Number, nullptr, "Audio", "Bits", 16,
              "Bits of a sample of the recording format; always 16.")
        .saves(sampleBits)
        .setIn(AudioSetup, "lblAudioFormat")
        .saved(206),
};

constexpr SettingRow audioWallSize[] = {
    Number<&Settings::CartMinimumHeight>("AudioWall", "CartMinimumHeight", 935,
                                         "Smallest height of a cart on the audiowall, in twips.")
        .range(1, INT32_MAX)
        .setIn(AudiowallSetup, "sldCartHeight")
        .saved(404),
    Number<&Settings::CartMinimumWidth>("AudioWall", "CartMinimumWidth", 2500,
                                        "Smallest width of a cart on the audiowall, in twips.")
        .range(1, INT32_MAX)
        .setIn(AudiowallSetup, "sldCartWidth")
        .saved(405),
    Word<&Settings::NumberCartJumpButtons>("AudioWall", "NumberCartJumpButtons", 3,
                                           "How many jump buttons the audiowall has.")
        .range(1, 10)
        .setIn(AudiowallSetup, "txtNumberCartGroups")
        .saved(401),
};

constexpr SettingRow jumpButtonRows[] = {
    NumberRow(SettingKind::Number, jumpButton<&JumpCartButton::Cart>, "AudioWall", "JumpCartNumber", 0,
              "Cart of the jump button; 0 if it is blank.")
        .range(0, INT32_MAX)
        .older("Carts", "ShortCut_No")
        .each(jumpButtons, INT16_MAX)
        .setIn(AudiowallSetup, "grdJumps")
        .saved(402),
    TextRow(SettingKind::Text, jumpButton<&JumpCartButton::Description>, "AudioWall", "JumpDescription", "",
            "Text on the jump button.")
        .atMost(25)
        .older("Carts", "ShortCut_Desc")
        .each(jumpButtons, INT16_MAX)
        .setIn(AudiowallSetup, "grdJumps")
        .saved(403),
};

constexpr SettingRow audioWall[] = {
    Word<&Settings::ShowICAtLogin>("AudioWall", "ShowICAtLogin", 1,
                                   "Instant carts after a login: 0 none, 1 the user's, 2 the global ones.")
        .range(0, 2)
        .withoutSign()
        .setIn(AudiowallSetup, "listInstantCarts")
        .saved(406),
    Flag<&Settings::ShowPadAtLogin>("AudioWall", "ShowPadAtLogin", 0, "Show the pad after a login.")
        .setIn(AudiowallSetup, "chkDisplayPadAtLogon")
        .saved(407),
    Flag<&Settings::DisplayICText>("AudioWall", "DisplayICText", 0,
                                   "Display the text of instant carts when they are triggered.")
        .setIn(AudiowallSetup, "chkDisplayICCartText")
        .saved(408),
    Number<&Settings::AutoUpdateInterval>("AudioWall", "AutoUpdateInterval", 10,
                                          "Seconds between updates of the audiowall; 0 for none.")
        .range(0, INT32_MAX)
        .setIn(AudiowallSetup, "txtAudiowallUpdateInterval")
        .saved(409),
    Flag<&Settings::SearchCartNotes>("AudioWall", "SearchCartNotes", 0, "A search includes the notes.")
        .setIn(AudiowallSetup, "chkSearchCartNotes")
        .saved(410),
    Flag<&Settings::SearchCartsFromStart>("AudioWall", "SearchCartsFromStart", 1,
                                          "A search begins at the first cart.")
        .setIn(AudiowallSetup, "chkSearchFromBeginning")
        .saved(411),
    Flag<&Settings::DisplayExtros>("AudioWall", "DisplayExtros", 1,
                                   "Display the extro times of carts, not their lengths.")
        .setIn(AudiowallSetup, "chkDisplayExtros")
        .saved(412),
    Flag<&Settings::UsersCanSetFirst5IC>("AudioWall", "UsersCanSetFirst5IC", 1,
                                         "Users may set the first five instant carts.")
        .setIn(AudiowallSetup)
        .saved(413),
    Word<&Settings::CartBevelWidth>("AudioWall", "CartBevelWidth", 3, "Width of the bevel around a cart.")
        .range(0, INT16_MAX)
        .setIn(AudiowallSetup, "comboBevelWidth")
        .saved(414),
    Word<&Settings::LevelTrigger>("AudioWall", "LevelTrigger", 0,
                                  "Level above which a recording starts; 0 for no trigger.")
        .range(0, INT16_MAX)
        .setIn(AudiowallSetup, "txtRecordTriggerLevel")
        .saved(416),
    Flag<&Settings::AlwaysUseLevelTrigger>("AudioWall", "AlwaysUseLevelTrigger", 0,
                                           "The level trigger is always in use.")
        .setIn(AudiowallSetup, "chkAlwaysUseLevelTrigger")
        .saved(417),
    Flag<&Settings::DragDropMoveCarts>("AudioWall", "DragDropMoveCarts", 0,
                                       "Users may move carts by dragging them.")
        .setIn(AudiowallSetup, "chkDragDropMoveCarts")
        .saved(415),
};

constexpr SettingRow display[] = {
    NumberRow(SettingKind::NumberText, Member<&Settings::SingleClickPlayCarts>, "Display",
              "SingleClickPlayCarts", 0, "A single click plays a cart (for touch screens).")
        .on(DisplayOptions, "chkUseSingleClick")
        .saved(901),
    Colour<&Settings::FormBackcolor>("Display", "FormBackcolor", SystemButtonFace,
                                     "Background of the windows.")
        .on(DisplayOptions, "cmdChangeBackgroundColor")
        .saved(902),
    Colour<&Settings::FormForeColor>("Display", "FormForeColor", SystemButtonText, "Text of the windows.")
        .on(DisplayOptions, "cmdChangeForegroundColor")
        .saved(903),
    Flag<&Settings::AdjustTheSystemColors>("Display", "AdjustTheSystemColors", 0,
                                           "Change the colours of the whole system.")
        .on(DisplayOptions, "chkAdjustSystemColors")
        .saved(904),
    Word<&Settings::UseInformationWindow>(
        "Display", "UseInformationWindow", 1,
        "Information window: 0 only in the automation player, 1 at the top, 2 at the bottom.")
        .range(0, 2)
        .on(DisplayOptions, "optNoDisplayInfoWindow optInfoWindowAtTop optInfoWindowAtBottom")
        .saved(905),
    Flag<&Settings::ShowClock>("Display", "ShowClock", 1, "Show the clock in the information window.")
        .on(DisplayOptions, "chkInfoWindowDisplayClock")
        .saved(906),
};

constexpr SettingRow automation[] = {
    Text<&Settings::DefaultDatabase>("KOVA", "DefaultDatabase", "",
                                     "The automation database; empty for the one in the data location.")
        .setIn(AutomationSetup, "lblKOVADatabaseFName"),
    Flag<&Settings::GenerateAdvertRecFiles>("KOVA", "GenerateAdvertRecFiles", 0,
                                            "Write reconciliation files of the adverts that were played.")
        .heldTo(0, 1)
        .setIn(AutomationSetup, "chkGenerateAdvertRecFiles"),
    Flag<&Settings::LogWhenStationController>("KOVA", "LogWhenStationController", 1,
                                              "Log what is played while this is the station controller.")
        .heldTo(0, 1)
        .setIn(AutomationSetup, "chkLogWhenStationController"),
};

constexpr SettingRow automationControl[] = {
    Flag<&Settings::AllowControl>("KOVA", "AllowControl", 0, "Allow control to be passed between studios.")
        .older("KOVA", "ZQSAllowControl")
        .setIn(AutomationSetup, "chkAllowControl"),
    Number<&Settings::ReleaseMode>("KOVA", "ReleaseMode", 0, "How control is released.")
        .older("KOVA", "ZQSReleaseMode")
        .setIn(AutomationSetup, "comboReleaseControl"),
    Word<&Settings::ReleaseTime>("KOVA", "ReleaseTime", 10, "Seconds after which control is released.")
        .older("KOVA", "ZQSReleaseTime")
        .setIn(AutomationSetup, "txtReleaseTime"),
    Number<&Settings::RequestMode>("KOVA", "RequestMode", 0, "How control is requested.")
        .older("KOVA", "ZQSRequestMode")
        .setIn(AutomationSetup, "comboRequestMode"),
    Flag<&Settings::GetControlKLogStart>("KOVA", "GetControlKLogStart", 0,
                                         "Take control when the log starts.")
        .older("KOVA", "ZQSGetControlKLogStart")
        .setIn(AutomationSetup, "chkGetControlKLogStart"),
    Word<&Settings::DisplayInstantCarts>(
        "KOVA", "DisplayInstantCarts", 1,
        "When instant carts are displayed: 0 never, 1 only in the automation player, 2 in live mode too.")
        .range(0, 2)
        .setIn(AutomationSetup, "comboKOVAICMode"),
};

constexpr SettingRow transfer[] = {
    Text<&Settings::OPALDirectory>("OPALTransfers", "Directory", "",
                                   "Folder of the transport lists; empty if transfers are off.")
        .readInto(1024)
        .setIn(TransferSetup, "lblDirectory"),
    Text<&Settings::OPALDefault>("OPALTransfers", "Default", "",
                                 "Name of the default transport list, without folder and extension.")
        .readInto(1024)
        .setIn(TransferSetup, "listFiles"),
    Flag<&Settings::PromptDeleteAfterSend>("OPALTransfers", "PromptDeleteAfterSend", 0,
                                           "Ask whether a cart should be deleted after it was sent.")
        .withoutSign()
        .setIn(TransferSetup, "chkDeleteAfterSend"),
    Flag<&Settings::PromptForDestinationCart>("OPALTransfers", "PromptForDestinationCart", 0,
                                              "Ask for the number of the destination cart.")
        .withoutSign()
        .setIn(TransferSetup, "chkPromptForDestinationCart"),
};

constexpr SettingRow updateNotice[] = {
    TextRow(SettingKind::Date, Member<&Settings::LastOneWas>, "UpdateNotice", "LastOneWas", "2",
            "Date of the update notice that was shown last.")
        .readInto(1024),
};

constexpr SettingRow network[] = {
    Word<&Settings::NumberTerminals>("LinkMesh", "NumberTerminals", 32,
                                     "How many workstations the station has.")
        .range(1, INT16_MAX)
        .setIn(WorkstationSetup, "grdTerminals"),
};

} // namespace

const SettingRows ConfigNameRows = configName;
const SettingRows WorkstationRows = workstation;
const SettingRows WrittenOnlyRows = writtenOnly;
const SettingRow& SchedulesRow = writtenOnly[0];
const SettingRow& LogsRow = writtenOnly[1];
const SettingRows AudioWallSizeRows = audioWallSize;
const SettingRows JumpButtonRows = jumpButtonRows;
const SettingRows AudioWallRows = audioWall;
const SettingRows DisplayRows = display;
const SettingRows AutomationRows = automation;
const SettingRows AutomationControlRows = automationControl;
const SettingRows TransferRows = transfer;
const SettingRows UpdateNoticeRows = updateNotice;
const SettingRows NetworkRows = network;

} // namespace tolvex
