// A page of a form: it requests the space that its content needs, and scrolls on a screen that is too
// small.
#pragma once

#include <QScrollArea>

namespace tolvex {

class ScrollPage : public QScrollArea {
    Q_OBJECT

public:
    explicit ScrollPage(QWidget* parent = nullptr);
    ~ScrollPage() override;
    QSize sizeHint() const override;
    // What the content needs at a width; used after followContent was called.
    int heightForWidth(int width) const override;
    // From now on the page's height follows its content, whose texts may wrap or change.
    void followContent();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void follow(QWidget* focus);
};

} // namespace tolvex
