// What the windows that pick a cart, the search and the keypad, share while the program runs, and how they
// answer.
#pragma once

#include <QPointer>
#include <QStringList>

#include <array>
#include <functional>

namespace tolvex {

enum class PlayerAction { Play, Cue };

struct CartPicking {
    std::array<QString, 32> LastSearches; // the latest first; the first UsedSearches are in use
    qint32 SelectedCart = 0;              // chosen in the last search; 0: none
    QPointer<QObject> openKeypad;         // only one is open at a time
    // Routines that other programs of the suite have: nothing happens while they are empty.
    std::function<void(qint32 cart, PlayerAction action)> sendToPlayer;
    std::function<void(int key, qint32 value)> hotKey; // the key's code, 112 for F1; a cart number or 0
    std::function<void()> quitKey;
};

inline constexpr int UsedSearches = 6;

// The list of last searches once `text` was searched for. An empty text leaves it alone.
QStringList WithSearch(QStringList searches, const QString& text);

// Keeps a list of searches, without its blank entries.
void StoreSearches(CartPicking& picking, const QStringList& searches);
// The searches that were kept.
QStringList StoredSearches(const CartPicking& picking);

// Who opened such a window and gets its answer: any object with a slot
//     void JumpToCart(double cart);
// One that has no such slot, or is gone by then, is passed over.
class CartCaller {
public:
    void set(QObject* caller) { caller_ = caller; }
    void drop() { caller_.clear(); }
    // Drops the caller first: it is told once, whatever its slot does.
    void JumpToCart(qint32 cart);

private:
    QPointer<QObject> caller_;
};

} // namespace tolvex
