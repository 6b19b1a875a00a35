// A keypad for a cart number, which shows the number in large digits and the cart that has it. The answer
// goes to the slot JumpToCart of whoever opened it; Cancel and closing send nothing. Only one is open at a
// time.
#pragma once

#include "audio/CartPicking.h"
#include "audio/forms/CartDrag.h"

#include <QDialog>

#include <memory>

namespace Ui {
class frmJumpToCart;
}

class QMenu;

namespace tolvex {

struct CartStore;

class frmJumpToCart : public QDialog {
    Q_OBJECT

public:
    // Both outlive the keypad.
    frmJumpToCart(CartStore& carts, CartPicking& picking, QWidget* parent = nullptr);
    ~frmJumpToCart() override;

    // Set both before the keypad is shown.
    void setCaller(QObject* caller) { caller_.set(caller); }
    QString Tag; // the number to start with, if above 0

    void done(int result) override;

protected:
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void addMenu();
    qint32 number() const;
    void setText(const QString& text);
    void type(int digit);
    void removeDigit();
    void display();
    bool handleKey(int key, Qt::KeyboardModifiers modifiers);
    bool handleMouse(QEvent* event);
    bool cartReacts() const;
    void send(PlayerAction action);
    void jump();
    void focusOk();
    void leave();

    CartStore& carts_;
    CartPicking& picking_;
    CartCaller caller_;
    std::unique_ptr<Ui::frmJumpToCart> ui_;
    QMenu* menu_ = nullptr; // mnuCart
    CartDrag drag_;
    bool shown_ = false;
};

} // namespace tolvex
