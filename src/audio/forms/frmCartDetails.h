// One cart to look at: the cart as the audiowall shows it and its details, which can be copied. Nothing can
// be changed here.
#pragma once

#include <QDialog>

#include <memory>

namespace Ui {
class frmCartDetails;
}

namespace tolvex {

struct CartStore;

class frmCartDetails : public QDialog {
    Q_OBJECT

public:
    // What exec gives: the user asks for the next match of the search that found the cart.
    static constexpr int FindNext = 2;

    // The carts outlive the window.
    explicit frmCartDetails(CartStore& carts, QWidget* parent = nullptr);
    ~frmCartDetails() override;

    void setCart(qint32 cart);

private:
    void copy();

    CartStore& carts_;
    std::unique_ptr<Ui::frmCartDetails> ui_;
};

} // namespace tolvex
