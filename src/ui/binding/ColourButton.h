// A button that holds a colour and shows it as a sample beside its text; a click, Space or Enter opens the
// chooser of colours. Colours are the suite's (ui/style/Colours.h): a system colour stays one until another
// is chosen.
#pragma once

#include <QPushButton>

namespace tolvex {

class ColourButton : public QPushButton {
    Q_OBJECT

public:
    explicit ColourButton(QWidget* parent = nullptr);

    qint32 colour() const { return colour_; }
    void setColour(qint32 colour);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

signals:
    void colourChanged(qint32 colour);

protected:
    void changeEvent(QEvent* event) override;

private:
    void choose();
    void showColour();

    qint32 colour_ = 0;
};

// A sample panel that always shows the colours of two buttons, background and text; either may be null and
// leaves the panel's own. Its tool tip rates the contrast: below 4.5 to 1 text is hard to read.
void ShowColoursOn(QWidget* panel, ColourButton* ground, ColourButton* text);

} // namespace tolvex
