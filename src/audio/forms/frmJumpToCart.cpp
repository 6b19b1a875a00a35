#include "audio/forms/frmJumpToCart.h"

#include "audio/AudiowallSetup.h"
#include "audio/CartStore.h"
#include "audio/forms/CartFaceOf.h"
#include "core/text/Numbers.h"
#include "ui/style/OpenForms.h"
#include "ui/style/Style.h"
#include "ui_frmJumpToCart.h"

#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPointer>

namespace tolvex {

namespace {

constexpr int digits = 10;
constexpr int firstHotKey = 112; // the suite's code of F1
constexpr int touchSize = 44;    // pixels: what a finger hits

} // namespace

frmJumpToCart::frmJumpToCart(CartStore& carts, CartPicking& picking, QWidget* parent)
    : QDialog(parent)
    , carts_(carts)
    , picking_(picking)
    , ui_(std::make_unique<Ui::frmJumpToCart>()) {
    ui_->setupUi(this);
    EnterForm(this);
    setWindowFlag(Qt::WindowStaysOnTopHint);
    for (int digit = 0; digit < digits; ++digit) {
        auto* button = findChild<QPushButton*>(QStringLiteral("cmdNumber_%1").arg(digit));
        button->setMinimumSize(touchSize, touchSize);
        connect(button, &QPushButton::clicked, this, [this, digit] { type(digit); });
    }
    ui_->cmdDelete->setMinimumHeight(touchSize);
    // Lit digits on a dark ground in either scheme of colours.
    const Tokens& dark = TokensOf(Scheme::Dark);
    ui_->fraDisplay->setStyleSheet(
        QStringLiteral("QFrame#fraDisplay { background: %1; border: 1px solid %3; border-radius: 6px; } "
                       "QLCDNumber { border: none; color: %2; background: transparent; }")
            .arg(dark.background.name(), dark.good.name(), dark.line.name()));
    for (QLCDNumber* led : {ui_->LED1, ui_->LED2, ui_->LED3, ui_->LED4, ui_->LED5}) {
        QSizePolicy policy = led->sizePolicy();
        policy.setRetainSizeWhenHidden(true);
        led->setSizePolicy(policy);
    }
    ui_->CartControl->setLooks(LoadAudiowallSetup(carts.settings).looks);
    ui_->CartControl->setExtro(carts.settings.DisplayExtros != 0);
    connect(ui_->cmdDelete, &QPushButton::clicked, this, &frmJumpToCart::removeDigit);
    connect(ui_->cmdOK, &QPushButton::clicked, this, &frmJumpToCart::jump);
    connect(ui_->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
    addMenu();
    display();
}

frmJumpToCart::~frmJumpToCart() {
    leave();
}

void frmJumpToCart::addMenu() {
    menu_ = new QMenu(this);
    menu_->setObjectName(QStringLiteral("mnuCart"));
    const auto add = [this](const char* name, const char* text, const std::function<void()>& run) {
        QAction* action = menu_->addAction(QString::fromLatin1(text));
        action->setObjectName(QString::fromLatin1(name));
        connect(action, &QAction::triggered, this, run);
    };
    add("mnuCartSelect", "Select", [this] { jump(); });
    add("mnuCartPlay", "Play", [this] { send(PlayerAction::Play); });
    add("mnuCartCue", "Cue", [this] { send(PlayerAction::Cue); });
}

void frmJumpToCart::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (std::exchange(shown_, true))
        return;
    // One that is open gives way: its caller hears nothing.
    auto* other = qobject_cast<QDialog*>(picking_.openKeypad);
    if (other && other != this)
        other->reject();
    picking_.openKeypad = this;
    qApp->installEventFilter(this); // the newest filter comes first: before the console's key for help
    const qint32 start = ToLong(LeadingNumber(Tag));
    setText(start > 0 ? QString::number(start) : QString());
    focusOk();
}

qint32 frmJumpToCart::number() const {
    return ToLong(LeadingNumber(ui_->lblCartNumber->text()));
}

void frmJumpToCart::setText(const QString& text) {
    ui_->lblCartNumber->setText(text);
    display();
}

void frmJumpToCart::type(int digit) {
    const QString text = ui_->lblCartNumber->text();
    const qint32 carts = carts_.settings.NoCarts;
    const bool leadingZero = digit == 0 && number() == 0;
    if (!leadingZero && qint64(number()) * 10 + digit <= carts && text.size() < QString::number(carts).size())
        setText(text + QString::number(digit));
    focusOk();
}

void frmJumpToCart::removeDigit() {
    setText(ui_->lblCartNumber->text().chopped(ui_->lblCartNumber->text().isEmpty() ? 0 : 1));
    focusOk();
}

void frmJumpToCart::focusOk() {
    if (ui_->cmdOK->isEnabled())
        ui_->cmdOK->setFocus();
}

// At every change of the number.
void frmJumpToCart::display() {
    const qint32 cart = number();
    ui_->CartControl->setFace(CartFaceOf(carts_, cart));
    qint32 rest = cart;
    for (QLCDNumber* led : {ui_->LED5, ui_->LED4, ui_->LED3, ui_->LED2, ui_->LED1}) {
        led->setVisible(rest > 0);
        led->display(rest % 10);
        rest /= 10;
    }
    const bool there = cart > 0 && cart <= carts_.settings.NoCarts;
    ui_->cmdOK->setEnabled(there);
    ui_->cmdOK->setToolTip(
        there ? QString()
              : QStringLiteral("Type the number of a cart: 1 to %1.").arg(carts_.settings.NoCarts));
    focusOk();
}

// The form sees keys before its controls.
bool frmJumpToCart::eventFilter(QObject* watched, QEvent* event) {
    const auto* part = qobject_cast<QWidget*>(watched);
    if (!part || part->window() != this)
        return false;
    if (event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        return handleKey(key->key(), key->modifiers());
    }
    return part == ui_->CartControl && handleMouse(event);
}

bool frmJumpToCart::handleKey(int key, Qt::KeyboardModifiers modifiers) {
    const bool control = modifiers.testFlag(Qt::ControlModifier);
    if (key >= Qt::Key_F1 && key <= Qt::Key_F12) {
        if (picking_.hotKey)
            picking_.hotKey(firstHotKey + key - Qt::Key_F1, control ? number() : 0);
        return true;
    }
    if (key == Qt::Key_Q && control) {
        if (picking_.quitKey)
            picking_.quitKey();
        return true;
    }
    if (key >= Qt::Key_0 && key <= Qt::Key_9)
        return type(key - Qt::Key_0), true;
    if (key == Qt::Key_Backspace)
        return removeDigit(), true;
    if (key == Qt::Key_J && !control)
        return jump(), true;
    return false;
}

bool frmJumpToCart::cartReacts() const {
    const CartFace& face = ui_->CartControl->face();
    return face.number >= 1 && face.number <= carts_.settings.NoCarts &&
           !face.description.trimmed().isEmpty();
}

bool frmJumpToCart::handleMouse(QEvent* event) {
    const auto* mouse = dynamic_cast<QMouseEvent*>(event);
    if (!mouse)
        return false;
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        drag_.press(*mouse, cartReacts() ? number() : 0);
        if (mouse->button() == Qt::RightButton && cartReacts())
            menu_->popup(mouse->globalPosition().toPoint());
        return true;
    case QEvent::MouseMove:
        drag_.move(*mouse, ui_->CartControl);
        return true;
    case QEvent::MouseButtonRelease:
        drag_.release();
        return true;
    case QEvent::MouseButtonDblClick:
        if (mouse->button() == Qt::LeftButton)
            jump();
        return true;
    default:
        return false;
    }
}

void frmJumpToCart::send(PlayerAction action) {
    if (cartReacts() && picking_.sendToPlayer)
        picking_.sendToPlayer(number(), action);
}

void frmJumpToCart::jump() {
    const qint32 cart = number();
    if (cart <= 0 || cart > carts_.settings.NoCarts)
        return;
    shown_ = false;
    Tag.clear();
    const QPointer<frmJumpToCart> self(this);
    caller_.JumpToCart(cart);
    if (!self)
        return;
    setText({});
    done(Accepted);
}

// What remains to be done on every way out.
void frmJumpToCart::leave() {
    qApp->removeEventFilter(this);
    shown_ = false;
    caller_.drop();
    if (picking_.openKeypad == this)
        picking_.openKeypad.clear();
}

void frmJumpToCart::done(int result) {
    leave();
    QDialog::done(result);
}

} // namespace tolvex
