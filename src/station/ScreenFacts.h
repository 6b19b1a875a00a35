// What start-up needs to know about the screens. The window program fills it before InitialiseProgram; the
// defaults describe an ordinary screen.
#pragma once

#include <QList>

namespace tolvex {

struct ScreenFacts {
    // In pixels, except the first two.
    double TwipsPerPixelX = 15; // 1440 twips an inch, 96 pixels an inch
    double TwipsPerPixelY = 15;
    int PrimaryWidth = 1024;
    int PrimaryHeight = 768;
    int WorkAreaBottom = 768; // lower edge of the primary screen's work area, without the task bar
    int DesktopWidth = 1024;  // all screens together
    QList<int> MonitorWidths = {1024};
};

} // namespace tolvex
