#include "audio/forms/frmCartDetails.h"

#include "audio/AudiowallSetup.h"
#include "audio/CartStore.h"
#include "audio/forms/CartFaceOf.h"
#include "audio/search/CartDetails.h"
#include "ui/style/OpenForms.h"
#include "ui_frmCartDetails.h"

#include <QApplication>
#include <QClipboard>

namespace tolvex {

frmCartDetails::frmCartDetails(CartStore& carts, QWidget* parent)
    : QDialog(parent)
    , carts_(carts)
    , ui_(std::make_unique<Ui::frmCartDetails>()) {
    ui_->setupUi(this);
    EnterForm(this);
    ui_->CartControl->setLooks(LoadAudiowallSetup(carts.settings).looks);
    ui_->CartControl->setExtro(carts.settings.DisplayExtros != 0);
    connect(ui_->cmdCopy, &QPushButton::clicked, this, &frmCartDetails::copy);
    connect(ui_->cmdFindNext, &QPushButton::clicked, this, [this] { QDialog::done(FindNext); });
    connect(ui_->cmdClose, &QPushButton::clicked, this, &QDialog::accept);
}

frmCartDetails::~frmCartDetails() = default;

void frmCartDetails::setCart(qint32 cart) {
    setWindowTitle(QStringLiteral("Cart %1").arg(cart));
    ui_->CartControl->setFace(CartFaceOf(carts_, cart));
    ui_->txtDetails->setPlainText(CartDetailsText(CartDetails(carts_, cart)));
    ui_->lblState->clear();
}

void frmCartDetails::copy() {
    QApplication::clipboard()->setText(ui_->txtDetails->toPlainText());
    ui_->lblState->setText(QStringLiteral("Copied."));
}

} // namespace tolvex
