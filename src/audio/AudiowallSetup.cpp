#include "audio/AudiowallSetup.h"

#include "audio/AudiowallKeys.h"
#include "audio/LoadAudioSettings.h"
#include "core/report/ProblemReport.h"
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

// The part of the screen that no cart can use, in twips.
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

// Where no cart is faded the box of the seconds cannot be used: ticking the first field of the fades is the
// way to it.
SetupOutcome checkFade(const AudiowallSetup& setup) {
    if (setup.fadeSeconds == 0)
        return {QStringLiteral("You must specify a number of seconds to use when fading"),
                setup.keyboardFade || setup.mouseFade ? QStringLiteral("txtFadeSeconds")
                                                      : QStringLiteral("chkMouseFade")};
    return {};
}

// Takes the highlighting. A refused time still leaves it switched on.
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

// Refuses what the files cannot hold; the suite has no messages for these.
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

void takeJumps(const QList<JumpCartButton>& jumps, qint32 cartsInForce, Settings& settings) {
    settings.NumberCartJumpButtons = qint16(jumps.size());
    settings.JumpCartButtons.clear();
    for (const JumpCartButton& jump : jumps) {
        const bool beyond = jump.Cart > cartsInForce;
        settings.JumpCartButtons +=
            beyond ? JumpCartButton{}
                   : JumpCartButton{jump.Cart, jump.Description.trimmed().left(LongestJumpDescription)};
    }
}

// The entry of PictureTypes; nothing for an extension that the window cannot show.
std::optional<int> pictureTypeOf(const QString& extension) {
    for (std::size_t type = 0; type < std::size(PictureTypes); ++type)
        if (extension.compare(QLatin1String(PictureTypes[type].extension), Qt::CaseInsensitive) == 0)
            return int(type);
    return std::nullopt;
}

AudiowallKeys keysOf(const AudiowallSetup& setup, const Settings& settings) {
    AudiowallKeys keys(settings, setup.wallFileExisted);
    keys.set(RowOf<&Settings::NoCarts>(), QString::number(std::clamp(setup.numberCarts, 1, MostCarts)),
             setup.numberCarts != setup.loadedNumberCarts, [](const QString& stored) {
                 const qint32 carts = platform::LeadingInteger(stored);
                 return carts >= 1 && carts <= MostCarts;
             });
    keys.set(RowOf<&Settings::PictureFileExtension>(),
             QLatin1String(PictureTypes[setup.pictureType].extension),
             setup.pictureType != setup.loadedPictureType,
             [](const QString& stored) { return pictureTypeOf(stored).has_value(); });
    return keys;
}

// The files, once their settings are taken: both are asked before the first one is written.
SetupOutcome writeFiles(const AudiowallSetup& setup, Settings& next) {
    const QString local = platform::ProfilePath(next.LocalIniFile);
    if (const int error = CheckLocalFile(next))
        return NothingStored(error, local);
    int wallError = platform::ProfileOk;
    std::optional<AudiowallKeys> keys;
    if (hasLocation(next)) {
        keys = keysOf(setup, next);
        wallError = keys->write(next);
        if (wallError && keys->changed())
            return {keys->errorText(wallError) + QStringLiteral("; nothing was stored."), {}, wallError};
    }
    if (const int error = SaveLocalFile(next)) {
        if (!keys || wallError || keys->putBack() == platform::ProfileOk)
            return NothingStored(error, local);
        return {QStringLiteral("%1; the number of carts and the type of pictures were stored in %2.")
                    .arg(ProfileErrorText(error, local), keys->file()),
                {},
                error};
    }
    if (wallError)
        keys->sayNotWritten(wallError);
    return {{}, {}, wallError};
}

// What lies in the local ini file.
AudiowallSetup fill(const Settings& settings) {
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
    return setup;
}

// Jump buttons one by one: those that the user left as they were follow, also in their number.
void followJumps(QList<JumpCartButton>& held, const QList<JumpCartButton>& loaded,
                 const QList<JumpCartButton>& newer) {
    const bool sameNumber = held.size() == loaded.size();
    const auto same = [](const JumpCartButton& a, const JumpCartButton& b) {
        return a.Cart == b.Cart && a.Description == b.Description;
    };
    for (qsizetype i = 0; i < std::min(held.size(), loaded.size()); ++i)
        if (same(held[i], loaded[i]))
            held[i] = i < newer.size() ? newer[i] : JumpCartButton{};
    if (sameNumber && newer.size() > held.size())
        held += newer.mid(held.size());
    while (sameNumber && held.size() > newer.size() && same(held.last(), {}))
        held.removeLast();
}

// The record with the newer values of the settings, where the user left it as it was loaded.
AudiowallSetup withNewer(const AudiowallSetup& setup, const Settings& settings) {
    using A = AudiowallSetup;
    using L = CartLooks;
    const A& loaded = *setup.loaded;
    const A newer = fill(settings);
    A held = setup;
    const auto follow = [&](auto... members) { Follow(held, loaded, newer, members...); };
    const auto followLook = [&](auto... members) {
        Follow(held.looks, loaded.looks, newer.looks, members...);
    };
    for (const FlagRow& row : flags)
        follow(row.held);
    follow(&A::showInstantCarts, &A::instantCarts);
    follow(&A::autoUpdate, &A::updateInterval);
    follow(&A::useLevelTrigger, &A::triggerLevel);
    follow(&A::highlight, &A::highlightByTimes, &A::highlightSeconds, &A::highlightTimes);
    follow(&A::fadeSeconds);
    follow(&A::cartHeight);
    follow(&A::cartWidth);
    followJumps(held.jumps, loaded.jumps, newer.jumps);
    followLook(&L::fontName, &L::fontSize, &L::fontBold);
    followLook(&L::timesBar, &L::timesBarText);
    followLook(&L::selectedPushedIn);
    followLook(&L::bevel);
    for (bool L::*look : {&L::timesBarInColour, &L::audioAsSquare, &L::showCompressed, &L::timeInHours})
        followLook(look);
    for (qint32 L::*colour : {&L::selectedBack, &L::selectedText, &L::playedRecently, &L::number,
                              &L::emptyNumber, &L::emptyBack, &L::emptyFore})
        followLook(colour);
    return held;
}

} // namespace

AudiowallSetup LoadAudiowallSetup(const Settings& settings) {
    AudiowallSetup setup = fill(settings);
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
    setup.pictureType = pictureTypeOf(extension).value_or(0);
    setup.loadedNumberCarts = setup.numberCarts;
    setup.loadedPictureType = setup.pictureType;
    setup.loaded = std::make_shared<const AudiowallSetup>(setup);
    setup.localKeys = LocalKeys(settings);
    setup.wallFileExisted = AudiowallFileExists(settings);
    return setup;
}

SetupOutcome StoreAudiowallSetup(const AudiowallSetup& shown, Settings& settings) {
    if (SetupOutcome refused = checkFade(shown); !refused.stored())
        return refused;
    Settings next = settings;
    if (SetupOutcome refused = takeHighlight(shown, next); !refused.stored()) {
        settings.HighlightPlayedCarts = next.HighlightPlayedCarts;
        return refused;
    }
    if (SetupOutcome refused = checkStorable(shown); !refused.stored())
        return refused;
    AudiowallSetup setup = shown;
    Settings newer = settings;
    if (shown.localKeys.takeNewer(newer) > 0) {
        setup = withNewer(shown, newer);
        next = newer;
        takeHighlight(setup, next); // what another program has stored is not refused
    }

    const platform::PointerKeeper pointer(platform::Pointer::Wait);
    next.LevelTrigger = qint16(valueWhen(setup.useLevelTrigger, setup.triggerLevel));
    takeJumps(setup.jumps, CartsInForce(settings), next);
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
    }
    const SetupOutcome outcome = writeFiles(setup, next);
    if (outcome.stored())
        settings = next;
    return outcome;
}

qint32 CartsInForce(const Settings& settings) {
    const std::optional<QString> stored =
        hasLocation(settings) ? StoredTextOf(RowOf<&Settings::NoCarts>(), 0, AudiowallIniFile(settings))
                              : std::nullopt;
    return stored ? platform::LeadingInteger(*stored) : settings.NoCarts;
}

QString ClearedJumpsText(const QList<JumpCartButton>& jumps, qint32 cartsInForce) {
    QStringList beyond;
    for (qsizetype i = 0; i < jumps.size(); ++i)
        if (jumps[i].Cart > 0 && jumps[i].Cart > cartsInForce)
            beyond += QString::number(i + 1);
    if (beyond.isEmpty())
        return {};
    const QString last = beyond.takeLast();
    return QStringLiteral("OK clears jump button%1: the audiowall has %2 carts.")
        .arg(beyond.isEmpty() ? u' ' + last
                              : QStringLiteral("s %1 and %2").arg(beyond.join(QStringLiteral(", ")), last))
        .arg(cartsInForce);
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
