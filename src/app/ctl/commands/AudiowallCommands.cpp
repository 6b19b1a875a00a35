// The settings of the audiowall window: its size and its jump buttons.
#include "app/ctl/Commands.h"
#include "app/ctl/SetupOutput.h"

#include "audio/AudiowallSetup.h"
#include "platform/Prompts.h"

namespace tolvex::ctl {

namespace {

int show(Call& call) {
    int status = Done;
    if (!ReadForSetup(call, &status))
        return status;
    const Settings& s = call.station.settings;
    const AudiowallSetup setup = LoadAudiowallSetup(s);
    const CartGrid grid = EstimateCartGrid(s, setup.cartWidth, setup.cartHeight);
    QJsonArray jumps;
    for (qsizetype i = 0; i < setup.jumps.size(); ++i)
        jumps += QJsonObject{{QStringLiteral("button"), i + 1},
                             {QStringLiteral("cart"), setup.jumps[i].Cart},
                             {QStringLiteral("description"), setup.jumps[i].Description}};
    QJsonObject record{{QStringLiteral("carts"), setup.numberCarts},
                       {QStringLiteral("pictures"), QLatin1String(PictureTypes[setup.pictureType].extension)},
                       {QStringLiteral("cartWidth"), setup.cartWidth},
                       {QStringLiteral("cartHeight"), setup.cartHeight},
                       {QStringLiteral("columns"), grid.columns},
                       {QStringLiteral("rows"), grid.rows},
                       {QStringLiteral("font"),
                        QStringLiteral("%1, %2").arg(setup.looks.fontName).arg(setup.looks.fontSize)},
                       {QStringLiteral("fadeSeconds"), setup.fadeSeconds},
                       {QStringLiteral("triggerLevel"), s.LevelTrigger}};
    if (call.output.json())
        record[QStringLiteral("jumps")] = jumps;
    call.output.record(record, {{"carts", "Carts"},
                                {"pictures", "Pictures"},
                                {"cartWidth", "Smallest width (twips)"},
                                {"cartHeight", "Smallest height (twips)"},
                                {"columns", "Estimated columns"},
                                {"rows", "Estimated rows"},
                                {"font", "Font"},
                                {"fadeSeconds", "Seconds of a fade"},
                                {"triggerLevel", "Level trigger (0 off)"}});
    if (!call.output.json() && !jumps.isEmpty())
        call.output.records(
            jumps, {{"button", "Button", true}, {"cart", "Cart", true}, {"description", "Description"}});
    return Done;
}

int size(Call& call) {
    const std::optional<int> carts = NumberIn(call.argument(0));
    if (!carts || *carts < 0)
        return call.wrong(QStringLiteral("A number of carts from 1 to %1 is expected, not \"%2\".")
                              .arg(MostCarts)
                              .arg(call.argument(0)));
    int status = Done;
    if (!ReadForSetup(call, &status))
        return status;
    Settings& s = call.station.settings;
    if (s.CartPartTable[1].Location.trimmed().isEmpty())
        return call.fail(
            QStringLiteral("Without a first Cart Location there is no file that holds the number "
                           "of carts."));
    AudiowallSetup setup = LoadAudiowallSetup(s);
    setup.numberCarts = *carts;
    return EndSetup(call, StoreAudiowallSetup(setup, s));
}

int jump(Call& call) {
    const std::optional<int> button = NumberIn(call.argument(0));
    const std::optional<int> cart = NumberIn(call.argument(1));
    if (!button || *button < 1)
        return call.wrong(QStringLiteral("A button from 1 to %1 is expected, not \"%2\".")
                              .arg(MostJumpButtons)
                              .arg(call.argument(0)));
    if (*button > MostJumpButtons)
        return call.wrong(QStringLiteral("You can only have up to %1 Jump Buttons").arg(MostJumpButtons));
    if (!cart || *cart < 0)
        return call.wrong(QStringLiteral("The number of a cart is expected, or 0 for none, not \"%1\".")
                              .arg(call.argument(1)));
    int status = Done;
    if (!ReadForSetup(call, &status))
        return status;
    Settings& s = call.station.settings;
    AudiowallSetup setup = LoadAudiowallSetup(s);
    if (*cart > s.NoCarts)
        call.output.note(
            QStringLiteral("The audiowall has %1 carts: the button stays empty.").arg(s.NoCarts));
    while (setup.jumps.size() < *button)
        setup.jumps += JumpCartButton{};
    setup.jumps[*button - 1] = *cart == 0 ? JumpCartButton{} : JumpCartButton{*cart, call.argument(2)};
    return EndSetup(call, StoreAudiowallSetup(setup, s));
}

} // namespace

CommandRows AudiowallCommands() {
    return {
        {"audiowall show", "", "Show the size of the audiowall, its carts and its jump buttons", show},
        Changing({"audiowall size", "N", "Set the number of carts", size}),
        Changing({"audiowall jump", "N CART [TEXT]",
                  "Set the target of a jump button, adding buttons up to it; cart 0 empties it", jump}),
    };
}

} // namespace tolvex::ctl
