// A button of the console: icon, caption and one quiet line with its present state, drawn as a card. For
// keyboards and screen readers it is an ordinary push button.
#pragma once

#include <QPushButton>

namespace tolvex {

class JobTile : public QPushButton {
    Q_OBJECT

public:
    explicit JobTile(QWidget* parent = nullptr);

    // The quiet line.
    void setAbout(const QString& about);
    // Whether the job needs attention: the card is highlighted, and its line says what is missing.
    void setAttention(bool attention);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QFont captionFont() const;

    QString about_;
    bool attention_ = false;
};

} // namespace tolvex
