// A button that holds a colour and shows it as a sample beside its text; a click, Space or Enter opens the
// chooser of colours. Colours are the suite's (ui/style/Colours.h): a colour of the system stays one until
// another is chosen.
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

// A sample panel that always shows the colours of two buttons, its ground and its text; either may be null
// and leaves the panel's own. Its tool tip says how well the text can be read: below 4.5 to 1 it is hard to.
void ShowColoursOn(QWidget* panel, ColourButton* ground, ColourButton* text);

} // namespace tolvex
