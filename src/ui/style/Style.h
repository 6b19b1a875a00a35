// The look of the program in one place: Fusion as base, one palette for light and one for dark desktops, a
// small style sheet, and line icons coloured from the palette.
#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

class QApplication;

namespace tolvex {

// The colours that forms may name. Text colours have a contrast of at least 4.5 to 1 with background and
// surface, `edge` at least 3 to 1.
struct Tokens {
    QColor background;
    QColor surface;
    QColor line;
    QColor edge; // of check boxes and of disabled fields
    QColor text;
    QColor quiet; // secondary text
    QColor accent;
    QColor accentSoft; // behind icons
    QColor good;
    QColor warning;     // marks
    QColor warningText; // text about what needs attention
    QColor warningSoft; // behind them
    QColor error;
};

enum class Scheme { Light, Dark };
const Tokens& TokensOf(Scheme scheme);
// The current tokens.
const Tokens& tokens();

// The desktop's scheme, read from the palette that the program got before a style was applied.
Scheme DesktopScheme(const QApplication& application);

// Sets style, palette, font size and style sheet for the whole program, and guards the mouse wheel.
void ApplyStyle(QApplication& application, Scheme scheme);

// The line icon of a job by its name ("folder", "speaker", ...): drawn from an SVG in one colour of the
// current tokens (the accent by default), at any size and scale.
QIcon LineIcon(const QString& name, QColor Tokens::*colour = &Tokens::accent);

} // namespace tolvex
