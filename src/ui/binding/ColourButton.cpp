#include "ui/binding/ColourButton.h"

#include "platform/Prompts.h"
#include "ui/style/Colours.h"
#include "ui/style/Style.h"

#include <QEvent>
#include <QPainter>

namespace tolvex {

namespace {

constexpr QSize SampleSize(24, 16);
constexpr int Gap = 8; // between sample and text
constexpr double ReadableContrast = 4.5;

QString colourName(qint32 colour, const QPalette& palette) {
    const QString name = ToColor(colour, palette).name().toUpper();
    return IsSystemColour(colour) ? QStringLiteral("Colour of the system, now ") + name
                                  : QStringLiteral("Colour ") + name;
}

} // namespace

ColourButton::ColourButton(QWidget* parent)
    : QPushButton(parent) {
    setIconSize(SampleSize + QSize(Gap, 0));
    connect(this, &QPushButton::clicked, this, &ColourButton::choose);
    showColour();
}

void ColourButton::setColour(qint32 colour) {
    if (colour == colour_)
        return;
    colour_ = colour;
    showColour();
    emit colourChanged(colour);
}

void ColourButton::choose() {
    if (const std::optional<qint32> chosen = platform::prompts().pickColour(colour_))
        setColour(*chosen);
}

void ColourButton::showColour() {
    QPixmap sample(iconSize() * devicePixelRatioF());
    sample.setDevicePixelRatio(devicePixelRatioF());
    sample.fill(Qt::transparent);
    QPainter painter(&sample);
    painter.fillRect(QRect(QPoint(), SampleSize), tokens().edge);
    painter.fillRect(QRect(QPoint(), SampleSize).adjusted(1, 1, -1, -1), ToColor(colour_, palette()));
    painter.end();
    setIcon(sample);
    setAccessibleDescription(colourName(colour_, palette()));
}

// The style's own hint leaves no room between icon and text.
QSize ColourButton::sizeHint() const {
    return QPushButton::sizeHint() + QSize(2 * Gap, 0);
}

void ColourButton::changeEvent(QEvent* event) {
    QPushButton::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        showColour(); // the system colours may have changed
}

void ShowColoursOn(QWidget* panel, ColourButton* ground, ColourButton* text) {
    const auto show = [panel, ground, text] {
        const QPalette& palette = (ground ? ground : text)->palette();
        QString rules;
        if (ground)
            rules += QStringLiteral("background-color: %1;").arg(ToColor(ground->colour(), palette).name());
        if (text)
            rules += QStringLiteral("color: %1;").arg(ToColor(text->colour(), palette).name());
        panel->setStyleSheet(rules);
        if (!ground || !text)
            return;
        const double contrast =
            Contrast(ToColor(ground->colour(), palette), ToColor(text->colour(), palette));
        panel->setToolTip(QStringLiteral("Contrast %1 to 1").arg(contrast, 0, 'f', 1) +
                          (contrast < ReadableContrast ? QStringLiteral(": hard to read") : QString()));
    };
    for (ColourButton* button : {ground, text})
        if (button)
            QObject::connect(button, &ColourButton::colourChanged, panel, show);
    show();
}

} // namespace tolvex
