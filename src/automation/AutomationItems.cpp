#include "automation/AutomationItems.h"

#include "core/settings/Settings.h"
#include "core/settings/SystemColours.h"
#include "core/text/Numbers.h"
#include "core/time/Dates.h"

#include <limits>
#include <type_traits>

namespace tolvex {

namespace {

using Item = AutomationItem;
using Record = KOVADatabaseSettings;

constexpr Item items[] = {
    {"KOVA.SweeperMode", &Record::KOVA_SweeperMode, 0, "0"},
    {"KOVA.AutoRestartDelay", &Record::KOVA_AutoRestartDelay, 10, "10"},
    {"KOVA.PreCueTime", &Record::KOVA_PreCueTime, 20, "20"},
    {"KOVA.KAE_Calculation_Time", &Record::KOVA_KAE_Calculation_Time, 15, "15"},
    {"KOVA.MaxFadeTime", &Record::KOVA_MaxFadeTime, 0, "0"},
    {"KOVA.EachFadeTime", &Record::KOVA_EachFadeTime, 10, "10"},
    {"KOVA.Cart_Normal_Fade", &Record::KOVA_Cart_Normal_Fade, 4, "4"},
    {"KOVA.Go_Fade_Length", &Record::KOVA_Go_Fade_Length, 4, "4"},
    {"KOVA.Override_fades", &Record::KOVA_Override_fades, 0, "0"},
    {"KOVA.Force_FadeLast", &Record::KOVA_Force_FadeLast, 1, "1"},
    {"KOVA.AllowInsertCart", &Record::KOVA_AllowInsertCart, 1, "1"},
    {"KOVA.AllowInsertTrack", &Record::KOVA_AllowInsertTrack, 1, "1"},
    {"KOVA.AllowInsertJingle", &Record::KOVA_AllowInsertJingle, 1, "1"},
    {"KOVA.NewEntriesStopAtEnd", &Record::KOVA_NewEntriesStopAtEnd, 0, "0"},
    {"KOVA.PlayAdvertsLoud", &Record::KOVA_PlayAdvertsLoud, 0, "0"},
    {"KOVA.JumpHomeBeforeActivate", &Record::KOVA_JumpHomeBeforeActivate, 0, "0"},
    {"KOVA.FadeCartsAfterNextStart", &Record::KOVA_FadeCartsAfterNextStart, 1, "1"},
    {"KOVA.FadeSongRules", &Record::KOVA_FadeSongRules, 1, 1},
    {"KOVA.LogBackColor", &Record::KOVA_LogBackColor, SystemButtonFace, SpecialDefault::AlwaysStored},
    {"KOVA.LogForeColor", &Record::KOVA_LogForeColor, SystemButtonText, SpecialDefault::AlwaysStored},
    {"KOVA.LogInfoBackColor", &Record::KOVA_LogInfoBackColor, SystemButtonFace, SpecialDefault::AlwaysStored},
    {"KOVA.LogInfoForeColor", &Record::KOVA_LogInfoForeColor, SystemButtonText, SpecialDefault::AlwaysStored},
    {"KOVA.LogHighlightBackColor", &Record::KOVA_LogHighlightBackColor, SystemHighlight,
     SpecialDefault::AlwaysStored},
    {"KOVA.LogHighlightForeColor", &Record::KOVA_LogHighlightForeColor, SystemHighlightText,
     SpecialDefault::AlwaysStored},
    {"KOVA.SelButtonBackColor", &Record::KOVA_SelButtonBackColor, SystemHighlight,
     SpecialDefault::AlwaysStored},
    {"KOVA.SelButtonForeColor", &Record::KOVA_SelButtonForeColor, SystemHighlightText,
     SpecialDefault::AlwaysStored},
    {"KOVA.NonSelButtonBackColor", &Record::KOVA_NonSelButtonBackColor, SystemButtonFace,
     SpecialDefault::AlwaysStored},
    {"KOVA.NonSelButtonForeColor", &Record::KOVA_NonSelButtonForeColor, SystemButtonText,
     SpecialDefault::AlwaysStored},
    {"KOVA.Mode.AutoBackcolor", &Record::KOVA_Mode_AutoBackcolor, 65280, "65280"},
    {"KOVA.Mode.LiveAsstBackcolor", &Record::KOVA_Mode_LiveAsstBackcolor, 65280, "65280"},
    {"KOVA.Mode.StandbyBackcolor", &Record::KOVA_Mode_StandbyBackcolor, SystemButtonFace,
     SpecialDefault::AlwaysStored},
    {"KOVA.LogFont.FontBold", &Record::KOVA_LogFont_FontBold, 1, 1},
    Item{"KOVA.LogFont.FontItalic", &Record::KOVA_LogFont_FontItalic, 0, false}.readAs(
        "KOVA.LogFont.FontItalic "),
    {"KOVA.LogFont.FontStrikeThru", &Record::KOVA_LogFont_FontStrikeThru, 0, false},
    {"KOVA.LogFont.FontUnderLine", &Record::KOVA_LogFont_FontUnderLine, 0, false},
    Item{"KOVA.LogFont.FontSize", &Record::KOVA_LogFont_FontSize, 12, 12}.readAs("KOVA.LogFont.FontSize "),
    {"KOVA.LogFont.FontName", &Record::KOVA_LogFont_FontName, "Arial", "Arial"},
    {"KOVA.UseFadeInfoFromLog", &Record::KOVA_UseFadeInfoFromLog, "0", "0"},
    {"KOVA.LogDisplayPanelMode", &Record::KOVA_LogDisplayPanelMode, "1", "1"},
    {"KOVA.LogDisplayLogTimes", &Record::KOVA_LogDisplayLogTimes, "0", "0"},
    {"KOVA.UseColoursFromCarts", &Record::KOVA_UseColoursFromCarts, "0", 13631439},
    {"KOVA.ZQSServerAddress", &Record::KOVA_ZQSServerAddress, "", ""},
    {"KOVA.SCComputerAddress", &Record::KOVA_SCComputerAddress, "", ""},
    {"KOVA.SCComputerPort", &Record::KOVA_SCComputerPort, "0", "0"},
    {"KOVA.SCWarnNearEndAds", &Record::KOVA_SCWarnNearEndAds, 0, 0},
    {"KOVA.SCWarnNearEndJingles", &Record::KOVA_SCWarnNearEndJingles, 0, 0},
    {"KOVA.SCWarnNearEndSongs", &Record::KOVA_SCWarnNearEndSongs, 0, 0},
    {"KOVA.AllowManualZCP", &Record::KOVA_AllowManualZCP, "0", 0},
    {"KOVA.WaitSplitReturn", &Record::KOVA_WaitSplitReturn, "1", 1},
    {"KOVA.ShowJinglesNow", &Record::KOVA_ShowJinglesNow, "0", "0"},
    {"KOVA.ShowAdvertsNow", &Record::KOVA_ShowAdvertsNow, "1", "1"},
    {"KOVA.ShowSongsNow", &Record::KOVA_ShowSongsNow, "1", "1"},
    {"KOVA.ShowCartsNow", &Record::KOVA_ShowCartsNow, "1", "1"},
    {"KOVA.ShowSTNow", &Record::KOVA_ShowSTNow, "0", "0"},
    {"KOVA.ShowNextItemsCount", &Record::KOVA_ShowNextItemsCount, "1", "1"},
    {"KOVA.ShowJinglesNext", &Record::KOVA_ShowJinglesNext, "0", "0"},
    {"KOVA.ShowAdvertsNext", &Record::KOVA_ShowAdvertsNext, "0", "0"},
    {"KOVA.ShowSongsNext", &Record::KOVA_ShowSongsNext, "1", "1"},
    {"KOVA.ShowCartsNext", &Record::KOVA_ShowCartsNext, "0", "0"},
    {"KOVA.ShowSTNext", &Record::KOVA_ShowSTNext, "0", "0"},
    {"SEGUE.PreviewLength", &Record::SEGUE_PreviewLength, "0", "0"},
    {"SEGUE.VoiceStartCart", &Record::SEGUE_VoiceStartCart, "0", "0"},
    {"SEGUE.VoiceEndCart", &Record::SEGUE_VoiceEndCart, "0", "0"},
    {"SEGUE.UpdateDuringRecord", &Record::SEGUE_UpdateDuringRecord, "1", "1"},
    {"SEGUE.VoiceLinkFormat", &Record::SEGUE_VoiceLinkFormat, "1", "1"},
    {"SEGUE.VoiceLinkChannels", &Record::SEGUE_VoiceLinkChannels, "2", "2"},
    {"SEGUE.VoiceLinkKhz", &Record::SEGUE_VoiceLinkKhz, "44100", "44100"},
    {"SEGUE.VoiceLinkLevelTrigger", &Record::SEGUE_VoiceLinkLevelTrigger, "25", "5"},
    {"SEGUE.EditsFirstPlayer", &Record::SEGUE_EditsFirstPlayer, "255", "255"},
    {"SEGUE.EditsLastPlayer", &Record::SEGUE_EditsLastPlayer, "1", "1"},
    {"LINKS.FirstPlayer", &Record::LINKS_FirstPlayer, "1", "1"},
    {"LINKS.LastPlayer", &Record::LINKS_LastPlayer, "255", "255"},
    {"LINKS.Colour", &Record::LINKS_Colour, "16777215", "16777215"},
    {"ADVERTS.CartOffset", &Record::ADVERTS_CartOffset, 0, 0},
    Item{"ADVERTS.ClientDatabase", &Record::ADVERTS_ClientDatabase, "", ""}.trimmed(),
    Item{"ADVERTS.FilenameFormat", &Record::ADVERTS_FilenameFormat, "yymmdd", "yymmdd"}.trimmed(),
    Item{"ADVERTS.FilenamePrefix", &Record::ADVERTS_FilenamePrefix, "", ""}.trimmed(),
    Item{"ADVERTS.LogPath", &Record::ADVERTS_LogPath, SpecialDefault::LogsFolder, SpecialDefault::LogsFolder}
        .trimmed(),
    Item{"ADVERTS.TXChainCode", &Record::ADVERTS_TXChainCode, "", ""}.trimmed(),
    {"ADVERTS.LastSent", &Record::ADVERTS_LastSent, "", SpecialDefault::NotWritten},
    {"ADVERTS.SentBy", &Record::ADVERTS_SentBy, "", SpecialDefault::NotWritten},
    {"ADVERTS.FirstPlayer", &Record::ADVERTS_FirstPlayer, "1", "1"},
    {"ADVERTS.LastPlayer", &Record::ADVERTS_LastPlayer, "255", "255"},
    {"ADVERTS.Colour", &Record::ADVERTS_Colour, "12648447", "12648447"},
    {"CARTS.FirstPlayer", &Record::CARTS_FirstPlayer, "1", "1"},
    {"CARTS.LastPlayer", &Record::CARTS_LastPlayer, "255", "255"},
    {"CARTS.Colour", &Record::CARTS_Colour, "13631439", "13631439"},
    {"SONGS.FirstPlayer", &Record::SONGS_FirstPlayer, "1", "1"},
    {"SONGS.LastPlayer", &Record::SONGS_LastPlayer, "255", "255"},
    {"SONGS.Colour", &Record::SONGS_Colour, "11842810", "11842810"},
    {"MUSIC.UseCartRanges", &Record::MUSIC_UseCartRanges, 0, 0},
    {"MUSIC.CartOffset", &Record::MUSIC_CartOffset, 0, 0},
    Item{"MUSIC.FilenameFormat", &Record::MUSIC_FilenameFormat, "yymmdd", "yymmdd"}.trimmed(),
    Item{"MUSIC.FilenamePrefix", &Record::MUSIC_FilenamePrefix, "TL", "TL"}.trimmed(),
    Item{"MUSIC.LogPath", &Record::MUSIC_LogPath, SpecialDefault::LogsFolder, SpecialDefault::LogsFolder}
        .trimmed(),
    {"MUSIC.JinglesStart", &Record::MUSIC_JinglesStart, SpecialDefault::InMemory, 0},
    {"MUSIC.JinglesEnd", &Record::MUSIC_JinglesEnd, SpecialDefault::InMemory, 0},
    {"MUSIC.SweepersStart", &Record::MUSIC_SweepersStart, SpecialDefault::InMemory, 0},
    {"MUSIC.SweepersEnd", &Record::MUSIC_SweepersEnd, SpecialDefault::InMemory, 0},
    {"MUSIC.AdvertsStart", &Record::MUSIC_AdvertsStart, SpecialDefault::InMemory, 0},
    {"MUSIC.AdvertsEnd", &Record::MUSIC_AdvertsEnd, SpecialDefault::InMemory, 0},
    {"MUSIC.SongsStart", &Record::MUSIC_SongsStart, SpecialDefault::InMemory, 0},
    {"MUSIC.SongsEnd", &Record::MUSIC_SongsEnd, SpecialDefault::InMemory, 0},
    {"MUSIC.CartGroupsStart", &Record::MUSIC_CartGroupsStart, SpecialDefault::InMemory, 0},
    {"MUSIC.CartGroupsEnd", &Record::MUSIC_CartGroupsEnd, SpecialDefault::InMemory, 0},
    {"MUSIC.LastSent", &Record::MUSIC_LastSent, "", SpecialDefault::NotWritten},
    {"MUSIC.SentBy", &Record::MUSIC_SentBy, "", SpecialDefault::NotWritten},
    {"RotaweaveLiteMode", &Record::RotaweaveLiteMode, 0, SpecialDefault::NotWritten},
    // The write default is a text, so even this colour is stored when somebody chooses it.
    {"CMDS.Colour", &Record::CMDS_Colour, "15449533", "16304375"},
    {"HOURS.Colour", &Record::HOURS_Colour, "15449533", "15449533"},
};

constexpr const char* writeOrder[] = {"KOVA.",  "SONGS.",   "MUSIC.",       "CARTS.",     "SEGUE.",
                                      "LINKS.", "ADVERTS.", "HOURS.Colour", "CMDS.Colour"};

template<typename Number>
bool takeNumber(double number, Number& member) {
    if constexpr (std::is_integral_v<Number>) {
        if (number < std::numeric_limits<Number>::min() || number > std::numeric_limits<Number>::max())
            return false;
        member = static_cast<Number>(ToLong(number));
    } else {
        member = static_cast<Number>(number);
    }
    return true;
}

} // namespace

std::span<const AutomationItem> AutomationItems() {
    return items;
}

std::span<const char* const> AutomationWriteOrder() {
    return writeOrder;
}

QVariant MemberValue(const AutomationItem& item, const KOVADatabaseSettings& record) {
    return std::visit(
        [&](auto member) -> QVariant {
            using Held = std::decay_t<decltype(record.*member)>;
            if constexpr (std::is_same_v<Held, qint16>)
                return qint32{record.*member};
            else if constexpr (std::is_same_v<Held, double>)
                return record.*member == 0 ? QString() : DateText(FromSerialDate(record.*member));
            else
                return record.*member;
        },
        item.member);
}

QVariant DefaultValue(const AutomationItem& item, const ItemDefault& fallback,
                      const KOVADatabaseSettings& record, const QString& dataLocation) {
    if (const auto* text = std::get_if<const char*>(&fallback))
        return QString(QLatin1String(*text));
    if (const auto* number = std::get_if<qint32>(&fallback))
        return *number;
    if (const auto* flag = std::get_if<bool>(&fallback))
        return *flag;
    switch (std::get<SpecialDefault>(fallback)) {
    case SpecialDefault::LogsFolder:
        return dataLocation + QStringLiteral("\\LOGS");
    case SpecialDefault::InMemory:
        return MemberValue(item, record);
    case SpecialDefault::AlwaysStored:
    case SpecialDefault::NotWritten:
        break;
    }
    return {};
}

bool TakeMember(const AutomationItem& item, const QVariant& value, KOVADatabaseSettings& record) {
    const QString text = value.toString();
    return std::visit(
        [&](auto member) {
            auto& held = record.*member;
            using Held = std::decay_t<decltype(held)>;
            if constexpr (std::is_same_v<Held, QString>)
                held = item.isTrimmed ? text.trimmed() : text;
            else if constexpr (std::is_same_v<Held, bool>)
                held = LeadingNumber(text) != 0;
            else if constexpr (std::is_same_v<Held, double>)
                held = ParseDate(text).value_or(0);
            else
                return takeNumber(LeadingNumber(text), held);
            return true;
        },
        item.member);
}

} // namespace tolvex
