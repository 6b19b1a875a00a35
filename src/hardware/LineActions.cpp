#include "hardware/LineActions.h"

namespace tolvex {

namespace {

using Kind = Parameter::Kind;
using Fill = DefaultRule::Fill;

constexpr ParameterValue playerCommands[] = {
    {0, "Play"},
    {1, "Pause"},
    {2, "Cue"},
    {3, "Eject"},
    {5, "Rewind"},
    {4, "Forward"},
    {240, "Inhibit Logging"},
};
constexpr ParameterValue playerConditions[] = {
    {0, "Playing"},       {5, "Playing/Extro flashing"},
    {1, "Is Cued Ready"}, {4, "Cued/Extro flashing"},
    {2, "During Intro"},  {3, "After Extro"},
};
constexpr ParameterValue automationJobs[] = {
    {1, "K-OVA Go", "K-OVA - Go"},
    {2, "K-OVA SegEdit", "K-OVA - SegEdit"},
};
constexpr ParameterValue setTimeEdges[] = {{0, "Set on Activate"}, {1, "Set on Clear"}};
constexpr ParameterValue cartCommands[] = {{0, "Play Cart"}, {2, "Cue Cart"}};
constexpr ParameterValue control[] = {{1, "Has Control"}};
constexpr ParameterValue automationModes[] = {
    {1, "Standby"},
    {255, "Use Log Mode", nullptr, OnInputs},
    {255, "Running", nullptr, OnOutputs},
    {2, "Live Assist"},
    {3, "Auto-Mation"},
    {4, "Auto-Fade"},
};
constexpr ParameterValue inputFunctions[] = {
    {1, "Exit Looping Carts"},
    {2, "Generate Rec Logs"},
    {3, nullptr, "ZQS - Ignore RS232 Cmds"},
};
constexpr ParameterValue outputFunctions[] = {
    {1, "Heartbeat pulse", "Heartbeat Pulse"},
    {2, "Audio Run Ended"},
};

constexpr Parameter none{};
constexpr Parameter instantCart{Kind::Numbered, "Instant Cart ", 10, {}, ""};
constexpr Parameter cartPlayer{Kind::Numbered, "Cart Player ", 6, {}, ""};
constexpr Parameter group{Kind::Numbered, "Group : ", 100, {}, ""};
constexpr Parameter offset{Kind::Typed, "offset: ", 0, {}, ""};
constexpr Parameter cart{Kind::Typed, "Cart: ", 0, {}, ""};
constexpr Parameter named(std::span<const ParameterValue> values, const char* otherwise = "") {
    return {Kind::Named, "", 0, values, otherwise};
}

constexpr DefaultRule clearAll{true, 0, 1, Fill::Nothing, 0};
constexpr DefaultRule one{false, 0, 1, Fill::One, 0};
constexpr DefaultRule countTo(int last) {
    return {false, last, 1, Fill::Counter, 0};
}

// clang-format off
constexpr ActionRow actions[] = {
    // code  name               on outputs           in the list     parameter 1               parameter 2
    //   description                rule
    {0,   "Not in use",         nullptr,             nullptr,        none,                     none,
          "",                       clearAll},
    {1,   "IC Trigger",         nullptr,             nullptr,        instantCart,              none,
          "IC Trigger %1",          countTo(10)},
    {2,   "IC Display",         nullptr,             nullptr,        instantCart,              none,
          "IC Display %1",          countTo(10)},
    {3,   "Player Control",     nullptr,             nullptr,        cartPlayer,               named(playerCommands),
          "%6 Player %1",           countTo(6)},
    {4,   "Player Display",     nullptr,             "Cart Display", cartPlayer,               named(playerConditions),
          "Player %1 %6",           countTo(6)},
    {5,   "K-OVA - Other",      nullptr,             nullptr,        named(automationJobs),    none,
          "%5",                     {false, 1, 1, Fill::Counter, 1}},
    {6,   "Set Time",           nullptr,             nullptr,        offset,                   named(setTimeEdges, "Set on Clear"),
          "%4",                     clearAll},
    {64,  "Cart Control",       nullptr,             nullptr,        named(cartCommands),      cart,
          "%5 %2",                  {false, 2, 0, Fill::Counter, 0}},
    {80,  "Station Control",    nullptr,             nullptr,        named(control),           none,
          "%5",                     one},
    {96,  "K-OVA - Set Mode",   "Disp K-OVA Mode",   nullptr,        named(automationModes),   none,
          "K-OVA - %5",             countTo(4)},
    {144, "Miscellaneous",      nullptr,             nullptr,        named(inputFunctions),    none,
          "%5",                     {false, 3, 1, Fill::One, 0}},
    {151, "Miscellaneous",      nullptr,             nullptr,        named(outputFunctions),   none,
          "%5",                     one},
    {257, "ZQS - Play Group",   nullptr,             nullptr,        group,                    none,
          "ZQS - Play Group %1",    countTo(100)},
    {258, "ZQS - Group Active", nullptr,             nullptr,        group,                    none,
          "ZQS - Group %1 Active",  countTo(100)},
};
// clang-format on

constexpr qint32 inputActions[] = {0, 1, 64, 3, 96, 5, 6, 144};
constexpr qint32 outputActions[] = {0, 2, 4, 96, 80, 151};

} // namespace

const Parameter& ActionRow::parameter(int number) const {
    return number == 1 ? first : number == 2 ? second : none;
}

std::span<const ActionRow> LineActions() {
    return actions;
}

const ActionRow* FindLineAction(qint32 code) {
    for (const ActionRow& row : actions)
        if (row.code == code)
            return &row;
    return nullptr;
}

std::span<const qint32> OfferedActions(LineKinds kind) {
    return kind == OnOutputs ? std::span<const qint32>(outputActions) : std::span<const qint32>(inputActions);
}

Choices ActionChoices(LineKinds kind) {
    Choices choices;
    for (const qint32 code : OfferedActions(kind))
        choices.append({QString::fromLatin1(FindLineAction(code)->listNameOn(kind)), code});
    return choices;
}

Choices ParameterChoices(const Parameter& parameter, LineKinds kind) {
    Choices choices;
    for (qint32 number = 1; number <= parameter.last; ++number)
        choices.append({QLatin1String(parameter.prefix) + QString::number(number), number});
    for (const ParameterValue& value : parameter.values)
        if (value.listed && (value.on & kind))
            choices.append({QString::fromLatin1(value.listed), value.value});
    return choices;
}

QString ParameterText(const Parameter& parameter, qint32 value, LineKinds kind) {
    switch (parameter.kind) {
    case Kind::Numbered:
    case Kind::Typed:
        return QLatin1String(parameter.prefix) + QString::number(value);
    case Kind::Named:
        for (const ParameterValue& candidate : parameter.values)
            if (candidate.value == value && (candidate.on & kind))
                return QString::fromLatin1(candidate.inGrid());
        return QString::fromLatin1(parameter.otherwise);
    case Kind::None:
        break;
    }
    return {};
}

} // namespace tolvex
