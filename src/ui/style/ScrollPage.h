// A page of a tabbed form: it asks for the room that its content needs, and scrolls on a screen that is too
// small to give it.
#pragma once

#include <QScrollArea>

namespace tolvex {

class ScrollPage : public QScrollArea {
    Q_OBJECT

public:
    explicit ScrollPage(QWidget* parent = nullptr);
    QSize sizeHint() const override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    void follow(QWidget* focus);
};

} // namespace tolvex
