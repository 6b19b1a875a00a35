#include "audio/forms/CartContrast.h"

#include "ui/style/Colours.h"

#include <cmath>

namespace tolvex {

namespace {

using Colour = qint32 CartLooks::*;

// When a pair is seen.
enum class Seen { Always, SelectedByColour, BarInColour, PlayedIsShown };

struct ColourPair {
    Colour text;
    Colour ground; // null: the face of a button
    Seen seen;
    const char* name;
};
constexpr ColourPair pairs[] = {
    {&CartLooks::selectedText, &CartLooks::selectedBack, Seen::SelectedByColour, "the highlighted text"},
    {&CartLooks::number, &CartLooks::selectedBack, Seen::SelectedByColour,
     "the number of the highlighted cart"},
    {&CartLooks::number, nullptr, Seen::Always, "the number of a usual cart"},
    {&CartLooks::emptyFore, &CartLooks::emptyBack, Seen::Always, "the text of an empty cart"},
    {&CartLooks::emptyNumber, &CartLooks::emptyBack, Seen::Always, "the number of an empty cart"},
    {&CartLooks::timesBarText, &CartLooks::timesBar, Seen::BarInColour, "the times bar"},
    {&CartLooks::playedRecently, nullptr, Seen::PlayedIsShown, "the highlight of played carts"},
};

} // namespace

QString ContrastText(double contrast) {
    return QStringLiteral("%1 to 1").arg(std::floor(contrast * 10) / 10, 0, 'f', 1);
}

QStringList ColoursHardToRead(const CartLooks& looks, bool highlightsPlayed, const QPalette& palette) {
    const auto isSeen = [&](Seen seen) {
        switch (seen) {
        case Seen::SelectedByColour:
            return !looks.selectedPushedIn;
        case Seen::BarInColour:
            return looks.timesBarInColour;
        case Seen::PlayedIsShown:
            return highlightsPlayed;
        case Seen::Always:
            break;
        }
        return true;
    };
    QStringList hard;
    for (const ColourPair& pair : pairs) {
        const qint32 ground = pair.ground ? looks.*pair.ground : SystemButtonFace;
        const double contrast = Contrast(ToColor(looks.*pair.text, palette), ToColor(ground, palette));
        if (isSeen(pair.seen) && contrast < ReadableContrast)
            hard += QStringLiteral("%1 (%2)").arg(QLatin1String(pair.name), ContrastText(contrast));
    }
    return hard;
}

} // namespace tolvex
