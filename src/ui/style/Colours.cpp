#include "ui/style/Colours.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace tolvex {

namespace {

// System colours by number, mapped to the closest roles of the palette.
constexpr QPalette::ColorRole systemColours[] = {
    QPalette::Mid,             // 0 scroll bar
    QPalette::Dark,            // 1 desktop
    QPalette::Highlight,       // 2 active caption
    QPalette::Mid,             // 3 inactive caption
    QPalette::Window,          // 4 menu
    QPalette::Base,            // 5 window
    QPalette::WindowText,      // 6 window frame
    QPalette::WindowText,      // 7 menu text
    QPalette::Text,            // 8 window text
    QPalette::HighlightedText, // 9 caption text
    QPalette::Mid,             // 10 active border
    QPalette::Mid,             // 11 inactive border
    QPalette::Dark,            // 12 application workspace
    QPalette::Highlight,       // 13 highlight
    QPalette::HighlightedText, // 14 highlighted text
    QPalette::Window,          // 15 button face: the background of every form
    QPalette::Dark,            // 16 button shadow
    QPalette::PlaceholderText, // 17 grey text
    QPalette::ButtonText,      // 18 button text
    QPalette::WindowText,      // 19 inactive caption text
    QPalette::Light,           // 20 button highlight
    QPalette::Shadow,          // 21 dark shadow
    QPalette::Midlight,        // 22 light
    QPalette::ToolTipText,     // 23 tool tip text
    QPalette::ToolTipBase,     // 24 tool tip
};

double luminance(const QColor& colour) {
    const auto part = [](double c) { return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4); };
    return 0.2126 * part(colour.redF()) + 0.7152 * part(colour.greenF()) + 0.0722 * part(colour.blueF());
}

} // namespace

QColor ToColor(qint32 colour, const QPalette& palette) {
    const auto bits = static_cast<quint32>(colour);
    if (IsSystemColour(colour)) {
        const quint32 number = bits & 0xFFu;
        return palette.color(number < std::size(systemColours) ? systemColours[number] : QPalette::Button);
    }
    return QColor(int(bits & 0xFF), int(bits >> 8 & 0xFF), int(bits >> 16 & 0xFF));
}

qint32 FromColor(const QColor& colour) {
    return colour.red() | colour.green() << 8 | colour.blue() << 16;
}

double Contrast(const QColor& a, const QColor& b) {
    const double first = luminance(a) + 0.05;
    const double second = luminance(b) + 0.05;
    return std::max(first, second) / std::min(first, second);
}

} // namespace tolvex
