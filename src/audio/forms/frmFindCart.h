// Finds carts by their text, notes and length, and hands the chosen one back to whoever opened the window.
// The search runs in slices of a few milliseconds between the window's events (audio/search/CartSearch.h):
// Stop, a choice and closing act between two slices, and none of them can find the window gone under a loop.
#pragma once

#include "audio/CartPicking.h"
#include "audio/search/CartSearch.h"

#include <QBasicTimer>
#include <QDialog>

#include <memory>
#include <optional>

namespace Ui {
class frmFindCart;
}

namespace tolvex {

class EnableRules;

class frmFindCart : public QDialog {
    Q_OBJECT

public:
    // Both outlive the window.
    frmFindCart(CartStore& carts, CartPicking& picking, QWidget* parent = nullptr);
    ~frmFindCart() override;

    // Set both before the window is shown. The caller's slot JumpToCart gets the chosen cart, or 0 when the
    // window closes without one, once for each showing.
    void setCaller(QObject* caller) { caller_.set(caller); }
    qint32 StartCart = 0;

    // Goes on with the last search from StartCart, whatever is said of the start of the audiowall, and
    // answers with the first match or 0. The window comes up only when that takes long.
    void findNext();

    bool isBackwards() const;

    bool isSearching() const { return searching_; }
    // The running search, or the last one; null before any.
    const CartSearch* search() const { return search_ ? &*search_ : nullptr; }

    void done(int result) override;

protected:
    void showEvent(QShowEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    void fillLists();
    void addRules();
    void addKeys();
    void activate();
    void find();
    CartQuery query(const QString& text) const;
    QString rememberedText();
    QStringList searches() const;
    void showResults(bool shown);
    void stop();
    void endSearch();
    void appendFound();
    void showCart();
    void choose(qint32 cart);
    void finish(qint32 cart);
    void unload();

    CartStore& carts_;
    CartPicking& picking_;
    CartCaller caller_;
    std::unique_ptr<Ui::frmFindCart> ui_;
    EnableRules* rules_ = nullptr;
    std::optional<CartSearch> search_;
    QBasicTimer slice_;
    std::chrono::milliseconds begun_{0};
    std::chrono::milliseconds appended_{0}; // when rows were added last
    bool searching_ = false;
    bool activated_ = false;
    bool autoRepeat_ = false;
};

} // namespace tolvex
