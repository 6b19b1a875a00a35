// Comparing names. Placed apart because every layer asks for it.
#include "jet/TableDefinition.h"

namespace jet {

namespace {

// Lower case of the alphabets that names are written in; other characters stay.
char16_t fold(char16_t unit) {
    if (unit < 0x80)
        return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 0x20) : unit;
    if ((unit >= 0xC0 && unit <= 0xDE && unit != 0xD7) || (unit >= 0x391 && unit <= 0x3A9) ||
        (unit >= 0x410 && unit <= 0x42F))
        return static_cast<char16_t>(unit + 0x20);
    if (unit >= 0x400 && unit <= 0x40F)
        return static_cast<char16_t>(unit + 0x50);
    if ((unit >= 0x100 && unit <= 0x137) || (unit >= 0x14A && unit <= 0x177))
        return static_cast<char16_t>(unit | 1);
    return unit;
}

std::u16string_view withoutTrailingBlanks(std::u16string_view text) {
    while (!text.empty() && text.back() == u' ')
        text.remove_suffix(1);
    return text;
}

} // namespace

bool SameName(std::u16string_view a, std::u16string_view b) {
    a = withoutTrailingBlanks(a);
    b = withoutTrailingBlanks(b);
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (a[i] != b[i] && fold(a[i]) != fold(b[i]))
            return false;
    return true;
}

} // namespace jet
