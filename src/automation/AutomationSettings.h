// The settings of the automation player, which lie in the Settings table of its database.
#pragma once

#include <QString>

namespace tolvex {

// One member for each item, by its name with "_" in place of the point. Flags are 0 or not 0, colours
// blue-green-red integers or system colours, dates serial dates.
struct KOVADatabaseSettings {
    QString FileName; // of the database, in full

    qint32 KOVA_SweeperMode = 0;
    qint16 KOVA_AutoRestartDelay = 0;
    qint16 KOVA_PreCueTime = 0;
    qint16 KOVA_KAE_Calculation_Time = 0;
    qint16 KOVA_MaxFadeTime = 0;
    qint16 KOVA_EachFadeTime = 0;
    float KOVA_Cart_Normal_Fade = 0;
    float KOVA_Go_Fade_Length = 0;
    qint16 KOVA_Override_fades = 0;
    qint16 KOVA_Force_FadeLast = 0;
    qint16 KOVA_AllowInsertCart = 0;
    qint16 KOVA_AllowInsertTrack = 0;
    qint16 KOVA_AllowInsertJingle = 0;
    qint16 KOVA_NewEntriesStopAtEnd = 0;
    qint16 KOVA_PlayAdvertsLoud = 0;
    qint16 KOVA_JumpHomeBeforeActivate = 0;
    qint16 KOVA_FadeCartsAfterNextStart = 0;
    qint32 KOVA_FadeSongRules = 0;
    qint32 KOVA_LogBackColor = 0;
    qint32 KOVA_LogForeColor = 0;
    qint32 KOVA_LogInfoBackColor = 0;
    qint32 KOVA_LogInfoForeColor = 0;
    qint32 KOVA_LogHighlightBackColor = 0;
    qint32 KOVA_LogHighlightForeColor = 0;
    qint32 KOVA_SelButtonBackColor = 0;
    qint32 KOVA_SelButtonForeColor = 0;
    qint32 KOVA_NonSelButtonBackColor = 0;
    qint32 KOVA_NonSelButtonForeColor = 0;
    qint32 KOVA_Mode_AutoBackcolor = 0;
    qint32 KOVA_Mode_LiveAsstBackcolor = 0;
    qint32 KOVA_Mode_StandbyBackcolor = 0;
    bool KOVA_LogFont_FontBold = false;
    bool KOVA_LogFont_FontItalic = false;
    bool KOVA_LogFont_FontStrikeThru = false;
    bool KOVA_LogFont_FontUnderLine = false;
    qint16 KOVA_LogFont_FontSize = 0;
    QString KOVA_LogFont_FontName;
    qint16 KOVA_UseFadeInfoFromLog = 0;
    qint16 KOVA_LogDisplayPanelMode = 0;
    qint16 KOVA_LogDisplayLogTimes = 0;
    qint16 KOVA_UseColoursFromCarts = 0;
    QString KOVA_ZQSServerAddress;
    QString KOVA_SCComputerAddress;
    qint32 KOVA_SCComputerPort = 0;
    qint16 KOVA_SCWarnNearEndAds = 0;
    qint16 KOVA_SCWarnNearEndJingles = 0;
    qint16 KOVA_SCWarnNearEndSongs = 0;
    qint16 KOVA_AllowManualZCP = 0;
    qint16 KOVA_WaitSplitReturn = 0;
    qint16 KOVA_ShowJinglesNow = 0;
    qint16 KOVA_ShowAdvertsNow = 0;
    qint16 KOVA_ShowSongsNow = 0;
    qint16 KOVA_ShowCartsNow = 0;
    qint16 KOVA_ShowSTNow = 0;
    qint16 KOVA_ShowNextItemsCount = 0;
    qint16 KOVA_ShowJinglesNext = 0;
    qint16 KOVA_ShowAdvertsNext = 0;
    qint16 KOVA_ShowSongsNext = 0;
    qint16 KOVA_ShowCartsNext = 0;
    qint16 KOVA_ShowSTNext = 0;

    qint16 SEGUE_PreviewLength = 0;
    qint32 SEGUE_VoiceStartCart = 0;
    qint32 SEGUE_VoiceEndCart = 0;
    qint16 SEGUE_UpdateDuringRecord = 0;
    qint16 SEGUE_VoiceLinkFormat = 0;
    qint16 SEGUE_VoiceLinkChannels = 0;
    qint32 SEGUE_VoiceLinkKhz = 0;
    qint16 SEGUE_VoiceLinkLevelTrigger = 0;
    qint16 SEGUE_EditsFirstPlayer = 0;
    qint16 SEGUE_EditsLastPlayer = 0;

    qint16 LINKS_FirstPlayer = 0;
    qint16 LINKS_LastPlayer = 0;
    qint32 LINKS_Colour = 0;

    qint32 ADVERTS_CartOffset = 0;
    QString ADVERTS_ClientDatabase;
    QString ADVERTS_FilenameFormat;
    QString ADVERTS_FilenamePrefix;
    QString ADVERTS_LogPath;
    QString ADVERTS_TXChainCode;
    double ADVERTS_LastSent = 0;
    QString ADVERTS_SentBy;
    qint16 ADVERTS_FirstPlayer = 0;
    qint16 ADVERTS_LastPlayer = 0;
    qint32 ADVERTS_Colour = 0;

    qint16 CARTS_FirstPlayer = 0;
    qint16 CARTS_LastPlayer = 0;
    qint32 CARTS_Colour = 0;

    qint16 SONGS_FirstPlayer = 0;
    qint16 SONGS_LastPlayer = 0;
    qint32 SONGS_Colour = 0;

    qint16 MUSIC_UseCartRanges = 0;
    qint32 MUSIC_CartOffset = 0;
    QString MUSIC_FilenameFormat;
    QString MUSIC_FilenamePrefix;
    QString MUSIC_LogPath;
    qint32 MUSIC_JinglesStart = 0;
    qint32 MUSIC_JinglesEnd = 0;
    qint32 MUSIC_SweepersStart = 0;
    qint32 MUSIC_SweepersEnd = 0;
    qint32 MUSIC_AdvertsStart = 0;
    qint32 MUSIC_AdvertsEnd = 0;
    qint32 MUSIC_SongsStart = 0;
    qint32 MUSIC_SongsEnd = 0;
    qint32 MUSIC_CartGroupsStart = 0;
    qint32 MUSIC_CartGroupsEnd = 0;
    double MUSIC_LastSent = 0;
    QString MUSIC_SentBy;

    bool RotaweaveLiteMode = false;

    qint32 CMDS_Colour = 0;

    qint32 HOURS_Colour = 0;
};

} // namespace tolvex
