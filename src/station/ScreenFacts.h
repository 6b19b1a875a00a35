// What start-up has to know of the screens. The window program fills it before InitialiseProgram; without a
// screen it tells one of ordinary size.
#pragma once

#include <QList>

namespace tolvex {

struct ScreenFacts {
    // Pixels, but for the first two.
    double TwipsPerPixelX = 15; // 1440 twips an inch, 96 pixels an inch
    double TwipsPerPixelY = 15;
    int PrimaryWidth = 1024;
    int PrimaryHeight = 768;
    int WorkAreaBottom = 768; // lower edge of what the task bar leaves of the primary screen
    int DesktopWidth = 1024;  // all screens together
    QList<int> MonitorWidths = {1024};
};

} // namespace tolvex
