#include "hardware/HardwareCards.h"

namespace tolvex {

namespace {

constexpr char baseAddress[] = "Base Address (Hex)";
constexpr char notUsed[] = "Not Used";

// clang-format off
constexpr CardTypeRow types[] = {
    // type           name                              lines inputs outputs caption          address port   fixed  eights
    {CardDisabled,  "Disabled",                           0,   0,   0, nullptr,              false, false, false, false},
    {CardPorts24,   nullptr,                             24,  24,  24, baseAddress,          true,  false, false, true},
    {CardPorts48,   nullptr,                             48,  48,  48, baseAddress,          true,  false, false, true},
    {CardRS232,     "RS232 based controller",             8,   8,   8, notUsed,              false, true,  false, false},
    {CardAdvantech, "Advantech Card (i.e. PCI 1750)",    32,  16,  16, "Device Number(Hex)", true,  false, true,  false},
    {CardJoystick,  "Joystick Port",                      4,   4,   0, notUsed,              false, false, true,  false},
};
// clang-format on

} // namespace

bool HardwareLine::isStoredAs(const HardwareLine& other) const {
    return LineType == other.LineType && ActiveLow == other.ActiveLow && Description == other.Description &&
           Color == other.Color && Action == other.Action && ActionData == other.ActionData;
}

bool IsQuoted(const QString& text) {
    return text.size() > 1 && (text.front() == u'"' || text.front() == u'\'') && text.front() == text.back();
}

std::span<const CardTypeRow> CardTypes() {
    return types;
}

const CardTypeRow* FindCardType(qint32 type) {
    for (const CardTypeRow& row : types)
        if (row.type == type)
            return &row;
    return nullptr;
}

} // namespace tolvex
