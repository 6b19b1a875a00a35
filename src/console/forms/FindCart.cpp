#include "console/forms/FindCart.h"

#include "audio/forms/frmCartDetails.h"
#include "audio/forms/frmFindCart.h"
#include "station/Workstation.h"
#include "ui/style/FitForm.h"

#include <QCoreApplication>

#include <optional>

namespace tolvex {

namespace {

// Keeps the answer of a search.
class Answer : public QObject {
    Q_OBJECT

public:
    std::optional<qint32> cart;

    Q_INVOKABLE void JumpToCart(double chosen) { cart = static_cast<qint32>(chosen); }
};

// Past either end nothing is left to find.
qint32 nextCart(const Settings& settings, qint32 cart, bool backwards) {
    if (!backwards)
        return cart + 1;
    return cart > 1 ? cart - 1 : settings.NoCarts + 1;
}

} // namespace

void FindCart(Workstation& station, QWidget* console) {
    Answer answer;
    frmFindCart search(station.carts, station.picking, console);
    search.setCaller(&answer);
    FitForm(&search);
    search.exec();
    frmCartDetails details(station.carts, console);
    while (answer.cart.value_or(0) > 0) {
        details.setCart(*answer.cart);
        FitForm(&details);
        if (details.exec() != frmCartDetails::FindNext)
            return;
        search.setCaller(&answer);
        search.StartCart = nextCart(station.settings, *answer.cart, search.isBackwards());
        answer.cart.reset();
        search.findNext();
        while (!answer.cart)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

} // namespace tolvex

#include "FindCart.moc"
