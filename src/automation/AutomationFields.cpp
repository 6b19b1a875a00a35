#include "automation/AutomationFields.h"

namespace tolvex {

namespace {

using Kind = AutomationField::Kind;

constexpr const char* sweeperStyles[] = {"Timed to Intro End", "Start at Intro Start", "Dry"};
constexpr const char* fadeRules[] = {
    "Only fade out songs that have 'Fade' endings and need to be trimmed to run to time.",
    "When in 'A-Fade' mode, fade out all songs with 'Fade' endings when the next item starts.",
    "When in 'A-Fade' mode, fade ALL songs once the next item starts.",
    "Always fade songs with 'Fade' endings once the next item starts, in any playout mode.",
    "Always fade ALL songs once the next item starts, in any playout mode."};
constexpr const char* stationControl[] = {"There is no computer to connect to.",
                                          "The computer is running Norvane ZCP.",
                                          "The computer is running Tolvex ZQS."};
constexpr const char* players[] = {"Cart Player 1", "Cart Player 2", "Cart Player 3",
                                   "Cart Player 4", "Cart Player 5", "the last Cart Player"};
constexpr const char* filenameFormats[] = {"yymmdd", "yyddmm", "ddmmyy", "mmddyy"};

constexpr AutomationField fields[] = {
    {"KOVA.SweeperMode", "listSweeperStyle", Kind::List, sweeperStyles},
    {"KOVA.AutoRestartDelay", "txtRestartSeconds", Kind::AutoRestart},
    {"KOVA.PreCueTime", "txtPrecueTime", Kind::Digits},
    {"KOVA.KAE_Calculation_Time", "txtKAECalcRemainTime", Kind::Digits},
    {"KOVA.MaxFadeTime", "txtMaxFadeTime", Kind::FadeTime},
    {"KOVA.EachFadeTime", "txtFadeEachTime", Kind::FadeTime},
    {"KOVA.Cart_Normal_Fade", "txtCartFadeTime", Kind::Digits},
    {"KOVA.Go_Fade_Length", "txtGoFadeTime", Kind::Digits},
    {"KOVA.Override_fades", "chkOverrideFadeRestrictions", Kind::Flag},
    {"KOVA.Force_FadeLast", "chkAllowLastItemFade", Kind::Flag},
    {"KOVA.AllowInsertCart", "chkAllowInsertCart", Kind::Flag},
    {"KOVA.AllowInsertTrack", "chkAllowInsertTrack", Kind::Flag},
    {"KOVA.AllowInsertJingle", "chkAllowInsertJingle", Kind::Flag},
    {"KOVA.NewEntriesStopAtEnd", "chkNewEntriesStopAtEnd", Kind::Flag},
    {"KOVA.PlayAdvertsLoud", "chkPlayAdvertsLoud", Kind::Flag},
    {"KOVA.JumpHomeBeforeActivate", "chkJumpHomeWhenActivate", Kind::Flag},
    {"KOVA.FadeCartsAfterNextStart", "chkFadeCartsAfterNext", Kind::Flag},
    {"KOVA.FadeSongRules", "comboFadeRules", Kind::List, fadeRules},
    {"KOVA.LogBackColor", "cmdLogBack", Kind::Colour},
    {"KOVA.LogForeColor", "cmdLogFore", Kind::Colour},
    {"KOVA.LogInfoBackColor", "cmdLogInfoBack", Kind::Colour},
    {"KOVA.LogInfoForeColor", "cmdLogInfoFore", Kind::Colour},
    {"KOVA.LogHighlightBackColor", "cmdLogHighlightBack", Kind::Colour},
    {"KOVA.LogHighlightForeColor", "cmdLogHighlightFore", Kind::Colour},
    {"KOVA.SelButtonBackColor", "cmdSelButtonBack", Kind::Colour},
    {"KOVA.SelButtonForeColor", "cmdSelButtonFore", Kind::Colour},
    {"KOVA.NonSelButtonBackColor", "cmdNonSelButtonBack", Kind::Colour},
    {"KOVA.NonSelButtonForeColor", "cmdNonSelButtonFore", Kind::Colour},
    {"KOVA.Mode.AutoBackcolor", "cmdAutomationBack", Kind::Colour},
    {"KOVA.Mode.LiveAsstBackcolor", "cmdLiveAssistBack", Kind::Colour},
    {"KOVA.Mode.StandbyBackcolor", "cmdStandbyBack", Kind::Colour},
    {"KOVA.LogFont.FontBold", "cmdSelectLogFont", Kind::Font},
    {"KOVA.LogFont.FontItalic", "cmdSelectLogFont", Kind::Font},
    {"KOVA.LogFont.FontStrikeThru", "cmdSelectLogFont", Kind::Font},
    {"KOVA.LogFont.FontUnderLine", "cmdSelectLogFont", Kind::Font},
    {"KOVA.LogFont.FontSize", "cmdSelectLogFont", Kind::Font},
    {"KOVA.LogFont.FontName", "cmdSelectLogFont", Kind::Font},
    {"KOVA.UseFadeInfoFromLog", "chkUseFadeInfoFromLog", Kind::Flag},
    {"KOVA.LogDisplayPanelMode", "chkLogDisplayPanelMode", Kind::Flag},
    {"KOVA.LogDisplayLogTimes", "chkDisplayLogTimes", Kind::Flag},
    {"KOVA.UseColoursFromCarts", "chkUseColoursFromCarts", Kind::Flag},
    {"KOVA.SCComputerAddress", "txtStationControlComputer", Kind::StationControl},
    {"KOVA.SCComputerPort", "comboStationControlPort", Kind::StationControl},
    {"KOVA.SCWarnNearEndAds", "chkSCNearEndAdverts", Kind::Flag},
    {"KOVA.SCWarnNearEndJingles", "chkSCNearEndJingles", Kind::Flag},
    {"KOVA.SCWarnNearEndSongs", "chkSCNearEndSongs", Kind::Flag},
    {"KOVA.AllowManualZCP", "chkAllowManualZCP", Kind::Flag},
    {"KOVA.WaitSplitReturn", "chkWaitSplitReturn", Kind::Flag},
    {"KOVA.ShowJinglesNow", "chkShowJinglesNow", Kind::Flag},
    {"KOVA.ShowAdvertsNow", "chkShowAdvertsNow", Kind::Flag},
    {"KOVA.ShowSongsNow", "chkShowSongsNow", Kind::Flag},
    {"KOVA.ShowCartsNow", "chkShowCartsNow", Kind::Flag},
    {"KOVA.ShowSTNow", "chkShowSTNow", Kind::Flag},
    {"KOVA.ShowNextItemsCount", "txtShowNextItemsCount", Kind::Digits},
    {"KOVA.ShowJinglesNext", "chkShowJinglesNext", Kind::Flag},
    {"KOVA.ShowAdvertsNext", "chkShowAdvertsNext", Kind::Flag},
    {"KOVA.ShowSongsNext", "chkShowSongsNext", Kind::Flag},
    {"KOVA.ShowCartsNext", "chkShowCartsNext", Kind::Flag},
    {"KOVA.ShowSTNext", "chkShowSTNext", Kind::Flag},
    {"SEGUE.PreviewLength", "txtSegPreviewLength", Kind::Digits},
    {"SEGUE.VoiceStartCart", "txtVoiceLinkStartCart", Kind::Digits},
    {"SEGUE.VoiceEndCart", "txtVoiceLinkEndcart", Kind::Digits},
    {"SEGUE.UpdateDuringRecord", "chkSegueUpdateOnRecord", Kind::Flag},
    {"SEGUE.VoiceLinkFormat", "cmdSelectAudioFormat", Kind::AudioFormat},
    {"SEGUE.VoiceLinkChannels", "cmdSelectAudioFormat", Kind::AudioFormat},
    {"SEGUE.VoiceLinkKhz", "cmdSelectAudioFormat", Kind::AudioFormat},
    {"SEGUE.VoiceLinkLevelTrigger", "txtSTTriggerLevel", Kind::LevelTrigger},
    {"SEGUE.EditsFirstPlayer", "listSegEditsFirstPlayerOrder", Kind::Player, players},
    {"SEGUE.EditsLastPlayer", "listSegEditsLastPlayerOrder", Kind::Player, players},
    {"LINKS.FirstPlayer", "listLinksFirstPlayerOrder", Kind::Player, players},
    {"LINKS.LastPlayer", "listLinksLastPlayerOrder", Kind::Player, players},
    {"LINKS.Colour", "cmdLinksColour", Kind::Colour},
    {"ADVERTS.CartOffset", "txtAdvertCartOffset", Kind::Number},
    {"ADVERTS.ClientDatabase", "txtAdvertClientDatabase", Kind::ClientDatabase},
    {"ADVERTS.FilenameFormat", "comboAdvertFilenameFormat", Kind::Text},
    {"ADVERTS.FilenamePrefix", "txtAdvertFilenamePrefix", Kind::Text},
    {"ADVERTS.LogPath", "txtAdvertLogsPath", Kind::Text},
    {"ADVERTS.TXChainCode", "txtAdvertFileTXChain", Kind::Text},
    {"ADVERTS.FirstPlayer", "listAdvertsFirstPlayerOrder", Kind::Player, players},
    {"ADVERTS.LastPlayer", "listAdvertsLastPlayerOrder", Kind::Player, players},
    {"ADVERTS.Colour", "cmdAdvertsColour", Kind::Colour},
    {"CARTS.FirstPlayer", "listCartsFirstPlayerOrder", Kind::Player, players},
    {"CARTS.LastPlayer", "listCartsLastPlayerOrder", Kind::Player, players},
    {"CARTS.Colour", "cmdCartsColour", Kind::Colour},
    {"SONGS.FirstPlayer", "listSongsFirstPlayerOrder", Kind::Player, players},
    {"SONGS.LastPlayer", "listSongsLastPlayerOrder", Kind::Player, players},
    {"SONGS.Colour", "cmdSongsColour", Kind::Colour},
    {"MUSIC.UseCartRanges", "chkUseCartRanges", Kind::Flag},
    {"MUSIC.CartOffset", "txtMusicCartOffset", Kind::Number},
    {"MUSIC.FilenameFormat", "comboMusicFilenameFormat", Kind::Text},
    {"MUSIC.FilenamePrefix", "txtMusicFilenamePrefix", Kind::Text},
    {"MUSIC.LogPath", "txtMusicLogPath", Kind::Text},
    {"CMDS.Colour", "cmdCommandsColour", Kind::Colour},
    {"HOURS.Colour", "cmdHourStartsColour", Kind::Colour},
};

constexpr AutomationPanel panels[] = {
    {"pnlCarts", "cmdCartsColour", nullptr},
    {"pnlSongs", "cmdSongsColour", nullptr},
    {"pnlLinks", "cmdLinksColour", nullptr},
    {"pnlAdverts", "cmdAdvertsColour", nullptr},
    {"pnlHourStarts", "cmdHourStartsColour", nullptr},
    {"pnlCommands", "cmdCommandsColour", nullptr},
    {"pnlLog", "cmdLogBack", "cmdLogFore"},
    {"pnlLogPreview", "cmdLogBack", "cmdLogFore"},
    {"pnlLogInfo", "cmdLogInfoBack", "cmdLogInfoFore"},
    {"pnlLogHighlight", "cmdLogHighlightBack", "cmdLogHighlightFore"},
    {"pnlSelectedButton", "cmdSelButtonBack", "cmdSelButtonFore"},
    {"pnlNonSelectedButton", "cmdNonSelButtonBack", "cmdNonSelButtonFore"},
    {"pnlAutomationMode", "cmdAutomationBack", "cmdAutomationFore"},
    {"pnlLiveAssist", "cmdLiveAssistBack", "cmdLiveAssistFore"},
    {"pnlStandby", "cmdStandbyBack", "cmdStandbyFore"},
    {"pnlStatus", "cmdStatusback", "cmdStatusFore"},
};

} // namespace

std::span<const AutomationField> AutomationFields() {
    return fields;
}

const AutomationField* FindAutomationField(const QString& item) {
    for (const AutomationField& field : fields)
        if (item.compare(QLatin1String(field.item), Qt::CaseInsensitive) == 0)
            return &field;
    return nullptr;
}

std::span<const char* const> PlayerWords() {
    return players;
}

std::span<const char* const> StationControlWords() {
    return stationControl;
}

std::span<const char* const> FilenameFormats() {
    return filenameFormats;
}

std::span<const AutomationPanel> AutomationPanels() {
    return panels;
}

const AutomationItem* FindAutomationItem(const QString& name) {
    for (const AutomationItem& item : AutomationItems())
        if (name.compare(QLatin1String(item.name), Qt::CaseInsensitive) == 0)
            return &item;
    return nullptr;
}

} // namespace tolvex
