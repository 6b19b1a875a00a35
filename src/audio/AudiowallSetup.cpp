#include "audio/AudiowallSetup.h"

#include "audio/LoadAudioSettings.h"
#include "core/report/ProblemReport.h"
#include "core/settings/SaveLocalSettings.h"
#include "core/settings/SettingCheck.h"
#include "core/settings/SettingText.h"
#include "core/settings/SettingsLoader.h"
#include "core/settings/StoredSettings.h"
#include "core/text/Numbers.h"
#include "platform/Prompts.h"

#include <iterator>

namespace tolvex {

namespace {

// What the boxes offer while their setting is off.
constexpr qint32 offeredTriggerLevel = 10;
constexpr qint32 offeredUpdateInterval = 10;

// How HighlightPlayedCarts is stored.
enum Highlight : qint32 { HighlightOff = 0, HighlightForSeconds = 1, HighlightByTimes = 2 };
constexpr qint32 secondsOfADay = 86400;

// How SelectedCartMode is stored.
enum SelectedMode : qint32 { ByColour = 1, PushedIn = 2 };

// What of the screen no cart takes, in twips.
constexpr qint32 besideTheCarts = 90;
constexpr qint32 aboveAndBelowTheCarts = 4560;

struct FlagRow {
    bool AudiowallSetup::*held;
    qint16 Settings::*setting;
};
constexpr FlagRow flags[] = {
    {&AudiowallSetup::showPad, &Settings::ShowPadAtLogin},
    {&AudiowallSetup::displayExtros, &Settings::DisplayExtros},
    {&AudiowallSetup::dragDropMoveCarts, &Settings::DragDropMoveCarts},
    {&AudiowallSetup::displayInstantCartText, &Settings::DisplayICText},
    {&AudiowallSetup::searchCartNotes, &Settings::SearchCartNotes},
    {&AudiowallSetup::searchFromBeginning, &Settings::SearchCartsFromStart},
    {&AudiowallSetup::alwaysUseLevelTrigger, &Settings::AlwaysUseLevelTrigger},
    {&AudiowallSetup::keyboardFade, &Settings::KeyboardClose},
    {&AudiowallSetup::mouseFade, &Settings::MouseClose},
};
struct LookFlagRow {
    bool CartLooks::*held;
    qint16 Settings::*setting;
};
constexpr LookFlagRow lookFlags[] = {
    {&CartLooks::timesBarInColour, &Settings::ShowTimesBarInColor},
    {&CartLooks::audioAsSquare, &Settings::DisplayCartHasAudioAsSquare},
    {&CartLooks::showCompressed, &Settings::CartShowCompressed},
    {&CartLooks::timeInHours, &Settings::DisplayCartTimeHours},
    {&CartLooks::fontBold, &Settings::CartFontBold},
};
struct LookRow {
    qint32 CartLooks::*held;
    qint32 Settings::*setting;
};
constexpr LookRow looks[] = {
    {&CartLooks::selectedBack, &Settings::SelectedCartColor},
    {&CartLooks::selectedText, &Settings::SelectedCartColorText},
    {&CartLooks::playedRecently, &Settings::CartPlayedRecentColor},
    {&CartLooks::timesBar, &Settings::TimesBarColor},
    {&CartLooks::timesBarText, &Settings::TimesBarColorText},
    {&CartLooks::number, &Settings::CartNumberColor},
    {&CartLooks::emptyNumber, &Settings::EmptyCartNumberColor},
    {&CartLooks::emptyBack, &Settings::EmptyCartBackColor},
    {&CartLooks::emptyFore, &Settings::EmptyCartForeColor},
    {&CartLooks::fontSize, &Settings::CartFontSize},
};

// A setting that is 0 while its box is not ticked.
qint32 valueWhen(bool on, qint32 value) {
    return on ? value : 0;
}

bool hasLocation(const Settings& settings) {
    return !settings.CartPartTable[1].Location.trimmed().isEmpty();
}

SetupOutcome checkFade(const AudiowallSetup& setup) {
    if (setup.fadeSeconds == 0)
        return {QStringLiteral("You must specify a number of seconds to use when fading"),
                QStringLiteral("txtFadeSeconds")};
    return {};
}

// Takes the highlighting; of a time that is refused, that there is one.
SetupOutcome takeHighlight(const AudiowallSetup& setup, Settings& settings) {
    if (!setup.highlight) {
        settings.HighlightPlayedCarts = HighlightOff;
        return {};
    }
    settings.HighlightPlayedCarts = setup.highlightByTimes ? HighlightByTimes : HighlightForSeconds;
    if (!setup.highlightByTimes && setup.highlightSeconds >= secondsOfADay)
        return {QStringLiteral("You cannot specify a highlight time greater than 86399 (23 hours, 59 Mins, "
                               "59 secs)"),
                QStringLiteral("txtHighlightFixedTime")};
    settings.HighlightPLayedCartsInterval =
        setup.highlightByTimes ? setup.highlightTimes : setup.highlightSeconds;
    return {};
}

// What the files cannot hold; the suite has no texts of its own for these.
SetupOutcome checkStorable(const AudiowallSetup& setup) {
    if (setup.useLevelTrigger && setup.triggerLevel > INT16_MAX)
        return {QStringLiteral("The level of the Level Trigger cannot be above %1.").arg(INT16_MAX),
                QStringLiteral("txtRecordTriggerLevel")};
    for (const JumpCartButton& jump : setup.jumps)
        if (const QString fault = StoredTextFault(jump.Description.trimmed()); !fault.isEmpty())
            return {QStringLiteral("\"%1\" cannot be stored: %2.").arg(jump.Description.trimmed(), fault),
                    QStringLiteral("grdJumps")};
    if (const QString fault = StoredTextFault(setup.looks.fontName); !fault.isEmpty())
        return {QStringLiteral("The name of the font cannot be stored: %1.").arg(fault),
                QStringLiteral("cmdChangeFont")};
    return {};
}

void takeJumps(const QList<JumpCartButton>& jumps, Settings& settings) {
    settings.NumberCartJumpButtons = qint16(jumps.size());
    settings.JumpCartButtons.clear();
    for (const JumpCartButton& jump : jumps) {
        const bool beyond = jump.Cart > settings.NoCarts; // the number in force so far
        settings.JumpCartButtons +=
            beyond ? JumpCartButton{}
                   : JumpCartButton{jump.Cart, jump.Description.trimmed().left(LongestJumpDescription)};
    }
}

int writeAudiowallKeys(const Settings& settings) {
    platform::ProfileBatch batch(AudiowallIniFile(settings));
    PutSettingText(batch, RowOf<&Settings::NoCarts>(), QString::number(settings.NoCarts));
    PutSettingText(batch, RowOf<&Settings::PictureFileExtension>(), settings.PictureFileExtension);
    return batch.commit();
}

} // namespace

AudiowallSetup LoadAudiowallSetup(const Settings& settings) {
    AudiowallSetup setup;
    for (const FlagRow& row : flags)
        setup.*row.held = settings.*row.setting != 0;
    for (const LookFlagRow& row : lookFlags)
        setup.looks.*row.held = settings.*row.setting != 0;
    for (const LookRow& row : looks)
        setup.looks.*row.held = settings.*row.setting;
    setup.looks.fontName = settings.CartFontName;
    setup.looks.bevel = settings.CartBevelWidth;
    setup.looks.selectedPushedIn = settings.SelectedCartMode == PushedIn;
    setup.showInstantCarts = settings.ShowICAtLogin != 0;
    setup.instantCarts = std::clamp(settings.ShowICAtLogin - 1, 0, 1);
    setup.autoUpdate = settings.AutoUpdateInterval != 0;
    setup.updateInterval = setup.autoUpdate ? settings.AutoUpdateInterval : offeredUpdateInterval;
    setup.useLevelTrigger = settings.LevelTrigger != 0;
    setup.triggerLevel = setup.useLevelTrigger ? settings.LevelTrigger : offeredTriggerLevel;
    setup.fadeSeconds = settings.PlayerFadeSeconds;
    setup.highlight = settings.HighlightPlayedCarts != HighlightOff;
    setup.highlightByTimes = settings.HighlightPlayedCarts == HighlightByTimes;
    (setup.highlightByTimes ? setup.highlightTimes : setup.highlightSeconds) =
        settings.HighlightPLayedCartsInterval;
    setup.cartHeight = std::max(settings.CartMinimumHeight, LowestCartHeight);
    setup.cartWidth = std::max(settings.CartMinimumWidth, LowestCartWidth);
    for (const JumpCartButton& jump : settings.JumpCartButtons)
        setup.jumps += jump.Cart > 0 ? jump : JumpCartButton{};
    setup.numberCarts = settings.NoCarts;
    QString extension = settings.PictureFileExtension;
    if (hasLocation(settings)) {
        const QString file = AudiowallIniFile(settings);
        Settings stored;
        LoadRow(RowOf<&Settings::NoCarts>(), {file}, stored);
        LoadRow(RowOf<&Settings::PictureFileExtension>(), {file}, stored);
        setup.numberCarts = stored.NoCarts;
        extension = stored.PictureFileExtension;
    }
    for (std::size_t type = 0; type < std::size(PictureTypes); ++type)
        if (extension.compare(QLatin1String(PictureTypes[type].extension), Qt::CaseInsensitive) == 0)
            setup.pictureType = int(type);
    return setup;
}

SetupOutcome StoreAudiowallSetup(const AudiowallSetup& setup, Settings& settings) {
    if (SetupOutcome refused = checkFade(setup); !refused.stored())
        return refused;
    Settings next = settings;
    if (SetupOutcome refused = takeHighlight(setup, next); !refused.stored()) {
        settings.HighlightPlayedCarts = next.HighlightPlayedCarts;
        return refused;
    }
    if (SetupOutcome refused = checkStorable(setup); !refused.stored())
        return refused;

    const platform::PointerKeeper pointer(platform::Pointer::Wait);
    next.LevelTrigger = qint16(valueWhen(setup.useLevelTrigger, setup.triggerLevel));
    takeJumps(setup.jumps, next);
    next.ShowICAtLogin = qint16(valueWhen(setup.showInstantCarts, setup.instantCarts + 1));
    next.PlayerFadeSeconds = setup.fadeSeconds;
    next.AutoUpdateInterval = valueWhen(setup.autoUpdate, setup.updateInterval);
    for (const FlagRow& row : flags)
        next.*row.setting = setup.*row.held ? -1 : 0;
    for (const LookFlagRow& row : lookFlags)
        next.*row.setting = setup.looks.*row.held ? -1 : 0;
    for (const LookRow& row : looks)
        next.*row.setting = setup.looks.*row.held;
    next.SelectedCartMode = setup.looks.selectedPushedIn ? PushedIn : ByColour;
    next.CartFontName = setup.looks.fontName;
    next.CartBevelWidth = qint16(setup.looks.bevel);
    next.CartMinimumHeight = std::max(setup.cartHeight, LowestCartHeight);
    next.CartMinimumWidth = std::max(setup.cartWidth, LowestCartWidth);
    next.PictureFileExtension = QLatin1String(PictureTypes[setup.pictureType].extension);
    if (hasLocation(next)) {
        if (setup.numberCarts > MostCarts)
            ShowExclamation(QStringLiteral("You cannot have more than %1 carts on your Audiowall.\n\nIt has "
                                           "been changed to %1 for you.")
                                .arg(MostCarts));
        next.NoCarts = std::clamp(setup.numberCarts, 1, MostCarts);
        if (const int error = writeAudiowallKeys(next))
            return {ProfileErrorText(error, AudiowallIniFile(next)), {}, error};
    }
    if (const int error = SaveLocalSettings(next, next.LocalIniFile))
        return {ProfileErrorText(error, platform::ProfilePath(next.LocalIniFile)), {}, error};
    settings = next;
    return {};
}

int TakeJumpButtonCount(qint32 wanted) {
    if (wanted > MostJumpButtons)
        ShowExclamation(QStringLiteral("You can only have up to %1 Jump Buttons").arg(MostJumpButtons));
    return std::clamp(wanted, 1, MostJumpButtons);
}

CartGrid EstimateCartGrid(const Settings& settings, qint32 cartWidth, qint32 cartHeight) {
    return {ToLong(double(settings.ScreenWidthTwips - besideTheCarts) / cartWidth),
            ToLong(double(settings.ScreenHeightTwips - aboveAndBelowTheCarts) / cartHeight)};
}

} // namespace tolvex
