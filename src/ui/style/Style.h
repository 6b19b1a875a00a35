// The look of the program in one place: Fusion as base, one palette for light and one for dark desktops, a
// small style sheet, and line icons that take their colour from the palette.
#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

class QApplication;

namespace tolvex {

// The colours that forms may name. Text colours stand at 4.5 to 1 or better against background and surface,
// `edge` at 3 to 1.
struct Tokens {
    QColor background;
    QColor surface;
    QColor line;
    QColor edge; // of boxes to tick and of disabled fields
    QColor text;
    QColor quiet; // secondary text
    QColor accent;
    QColor accentSoft; // behind icons
    QColor good;
    QColor warning;     // marks
    QColor warningText; // words about what needs attention
    QColor warningSoft; // behind them
    QColor error;
};

enum class Scheme { Light, Dark };
const Tokens& TokensOf(Scheme scheme);
// The tokens in force.
const Tokens& tokens();

// The desktop's scheme, read from the palette it gave the program before a style was applied.
Scheme DesktopScheme(const QApplication& application);

// Sets style, palette, font size and style sheet for the whole program, and guards the mouse wheel.
void ApplyStyle(QApplication& application, Scheme scheme);

// The line icon of a job by its name ("folder", "speaker", ...): drawn from an SVG in one colour of the
// tokens in force at the time of painting (the accent where none is named), at any size and scale.
QIcon LineIcon(const QString& name, QColor Tokens::*colour = &Tokens::accent);

} // namespace tolvex
