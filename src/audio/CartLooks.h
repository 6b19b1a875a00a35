// How carts look on the audiowall, as one record, which CartView paints from. Colours are the suite's
// (ui/style/ Colours.h), system colours included.
#pragma once

#include <QString>

namespace tolvex {

struct CartLooks {
    qint32 selectedBack = 0xC00000;
    qint32 selectedText = 0xFFFFFF;
    bool selectedPushedIn = false; // instead of the two colours
    qint32 playedRecently = 0xFF;
    bool timesBarInColour = true;
    qint32 timesBar = 0xC00000;
    qint32 timesBarText = 0xFFFFFF;
    qint32 number = 0xFF;
    qint32 emptyNumber = 0x9A9A9A;
    qint32 emptyBack = 0;
    qint32 emptyFore = 0;
    bool audioAsSquare = false; // the mark of a cart that has audio; else a circle
    bool showCompressed = false;
    bool timeInHours = false;
    QString fontName;
    qint32 fontSize = 8; // points
    bool fontBold = false;
    int bevel = 3; // pixels
};

} // namespace tolvex
