#include "audio/forms/frmFindCart.h"

#include "audio/CartStore.h"
#include "core/text/Numbers.h"
#include "platform/Prompts.h"
#include "platform/SteadyTime.h"
#include "platform/paths/Paths.h"
#include "ui/binding/EnableRules.h"
#include "ui/style/OpenForms.h"
#include "ui/style/TextBoxes.h"
#include "ui_frmFindCart.h"

#include <QKeyEvent>
#include <QPointer>
#include <QShortcut>

namespace tolvex {

namespace {

using std::chrono::milliseconds;

// How long the search works before events run, and how long found carts wait for their rows.
constexpr milliseconds slice{5};
constexpr milliseconds batch{100};
// A search for the next match that takes longer than this is shown, with its Stop.
constexpr milliseconds unseen{500};

constexpr int resultsHeight = 5130 / 15; // pixels, with the window's frame

enum Direction { Forwards, Backwards };

struct Give {
    const char* text;
    int seconds;
};
constexpr Give gives[] = {{"3 Seconds", 3},   {"5 Seconds", 5}, {"10 Seconds", 10},
                          {"30 Seconds", 30}, {"1 Minute", 60}, {"5 Minutes", 300}};

// Two digits, a colon, two digits; what is not typed yet stands as a blank.
double secondsOf(const QLineEdit& box) {
    const QString text = box.displayText();
    return LeadingNumber(QStringView(text).left(2)) * 60 + LeadingNumber(QStringView(text).mid(3, 2));
}

} // namespace

frmFindCart::frmFindCart(CartStore& carts, CartPicking& picking, QWidget* parent)
    : QDialog(parent)
    , carts_(carts)
    , picking_(picking)
    , ui_(std::make_unique<Ui::frmFindCart>()) {
    ui_->setupUi(this);
    EnterForm(this);
    setWindowFlag(Qt::WindowStaysOnTopHint);
    ui_->animFind->open(platform::ApplicationFolder() + QStringLiteral("\\find.avi"));
    fillLists();
    addRules();
    addKeys();
    showResults(false);
    connect(ui_->cmdFind, &QPushButton::clicked, this, &frmFindCart::find);
    connect(ui_->cmdStop, &QPushButton::clicked, this, &frmFindCart::stop);
    connect(ui_->lviewItems, &CartResultList::chosen, this, &frmFindCart::choose);
}

frmFindCart::~frmFindCart() {
    unload();
}

void frmFindCart::fillLists() {
    ui_->cmbSearchText->setCompleter(nullptr); // what is typed is what is looked for
    ui_->cmbSearchDirection->addItems({QStringLiteral("Forwards"), QStringLiteral("Backwards")});
    for (const Give& give : gives)
        ui_->comboLength->addItem(QString::fromLatin1(give.text), give.seconds);
    const auto nameStart = [this] {
        ui_->chkSearchFromStart->setText(isBackwards()
                                             ? QStringLiteral("Search from the &end of the Audiowall")
                                             : QStringLiteral("Search from the &start of the Audiowall"));
    };
    // Wide enough for both.
    ui_->cmbSearchDirection->setCurrentIndex(Backwards);
    nameStart();
    const int end = ui_->chkSearchFromStart->sizeHint().width();
    ui_->cmbSearchDirection->setCurrentIndex(Forwards);
    nameStart();
    ui_->chkSearchFromStart->setMinimumWidth(qMax(end, ui_->chkSearchFromStart->sizeHint().width()));
    connect(ui_->cmbSearchDirection, &QComboBox::currentIndexChanged, this, nameStart);
    ui_->mskLength->setText(QStringLiteral("03:00"));
    SetWidthInDigits(ui_->mskLength, 6);
    ui_->lblSearchCartNumber->setMinimumWidth(fontMetrics().horizontalAdvance(QStringLiteral("99999")));
}

void frmFindCart::addRules() {
    const auto idle = [this](const FormView&) { return !searching_; };
    const QString running = QStringLiteral("A search is running: stop it first.");
    rules_ = new EnableRules(
        this, {{QStringLiteral(
                    "cmbSearchText cmbSearchDirection chkSearchFromStart chkNotes chkLimitLines chkLine_1 "
                    "chkLine_2 chkLine_3 chkTimeSearch mskLength comboLength cmdFind"),
                running, idle},
               {QStringLiteral("cmdStop"), QStringLiteral("No search is running."),
                [this](const FormView&) { return searching_; }},
               {QStringLiteral("chkLine_1 chkLine_2 chkLine_3"),
                QStringLiteral("Tick \"Only Search these lines\" to choose them."), IsOn("chkLimitLines")},
               {QStringLiteral("lblLengths mskLength lblMinSec lblGive comboLength"),
                QStringLiteral("Tick \"Time Rules\" to search by length."), IsOn("chkTimeSearch")}});
}

void frmFindCart::addKeys() {
    for (const QKeySequence& keys :
         {QKeySequence(Qt::CTRL | Qt::Key_Tab), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Tab)})
        connect(new QShortcut(keys, this), &QShortcut::activated, this,
                [this] { ui_->tbsFind->setCurrentIndex(1 - ui_->tbsFind->currentIndex()); });
    connect(new QShortcut(Qt::CTRL | Qt::Key_Q, this), &QShortcut::activated, this, [this] {
        if (picking_.quitKey)
            picking_.quitKey();
    });
}

// Once for each showing. A search that goes on keeps its options.
void frmFindCart::activate() {
    if (std::exchange(activated_, true))
        return;
    ui_->animFind->stop();
    picking_.SelectedCart = 0;
    showResults(false);
    ui_->tbsFind->setCurrentIndex(0);
    ui_->cmbSearchText->clear();
    ui_->cmbSearchText->addItems(StoredSearches(picking_));
    if (autoRepeat_)
        return;
    ui_->chkNotes->setChecked(carts_.settings.SearchCartNotes != 0);
    ui_->chkSearchFromStart->setChecked(carts_.settings.SearchCartsFromStart != 0);
    rules_->apply();
    ui_->cmbSearchText->setFocus();
}

void frmFindCart::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    activate();
}

void frmFindCart::findNext() {
    autoRepeat_ = true;
    activate();
    find();
}

QStringList frmFindCart::searches() const {
    QStringList all;
    for (int i = 0; i < ui_->cmbSearchText->count(); ++i)
        all += ui_->cmbSearchText->itemText(i);
    return all;
}

// The text to look for, which becomes the first of the last searches.
QString frmFindCart::rememberedText() {
    const QString text = ui_->cmbSearchText->currentText().trimmed();
    const QStringList all = WithSearch(searches(), text);
    ui_->cmbSearchText->clear();
    ui_->cmbSearchText->addItems(all);
    ui_->cmbSearchText->setCurrentText(text);
    return text;
}

bool frmFindCart::isBackwards() const {
    return ui_->cmbSearchDirection->currentIndex() == Backwards;
}

CartQuery frmFindCart::query(const QString& text) const {
    CartQuery query;
    query.text = text;
    query.backwards = isBackwards();
    query.wholeWall = ui_->chkSearchFromStart->isChecked() && !autoRepeat_;
    query.start = StartCart;
    query.limitLines = ui_->chkLimitLines->isChecked();
    query.lines = {ui_->chkLine_1->isChecked(), ui_->chkLine_2->isChecked(), ui_->chkLine_3->isChecked()};
    query.notes = ui_->chkNotes->isChecked();
    if (ui_->chkTimeSearch->isChecked())
        query.length =
            LengthRule{secondsOf(*ui_->mskLength), double(gives[ui_->comboLength->currentIndex()].seconds)};
    return query;
}

void frmFindCart::find() {
    const CartQuery wanted = query(rememberedText());
    ui_->lviewItems->clear();
    showResults(true);
    ui_->animFind->start();
    search_.emplace(carts_, wanted, carts_.settings.NoCarts);
    begun_ = platform::SteadyTime();
    appended_ = begun_ - batch;
    searching_ = true;
    rules_->apply();
    ui_->cmdStop->setFocus();
    showCart();
    slice_.start(0, this);
}

// The list takes the window's lower part while there are results.
void frmFindCart::showResults(bool shown) {
    const bool before = ui_->lviewItems->isVisibleTo(this);
    for (QWidget* part :
         {static_cast<QWidget*>(ui_->lviewItems), static_cast<QWidget*>(ui_->lblSearchCart),
          static_cast<QWidget*>(ui_->lblSearchCartNumber), static_cast<QWidget*>(ui_->lblFound)})
        part->setVisible(shown);
    if (shown == before)
        return;
    layout()->activate();
    const int frame = frameGeometry().height() - height();
    resize(width(), shown ? resultsHeight - frame : minimumSizeHint().height());
}

void frmFindCart::timerEvent(QTimerEvent* event) {
    if (event->timerId() != slice_.timerId())
        return QDialog::timerEvent(event);
    const bool more = search_->runFor(slice);
    showCart();
    if (autoRepeat_ && search_->foundCount() > 0)
        return choose(search_->takeFound().first().number);
    const milliseconds now = platform::SteadyTime();
    if (!more)
        return endSearch();
    if (now - appended_ >= batch)
        appendFound();
    if (autoRepeat_ && now - begun_ >= unseen && !isVisible())
        show();
}

void frmFindCart::appendFound() {
    appended_ = platform::SteadyTime();
    ui_->lviewItems->carts().add(search_->takeFound());
    const int count = search_->foundCount();
    ui_->lblFound->setText(count == 1 ? QStringLiteral("1 cart found")
                                      : QStringLiteral("%1 carts found").arg(count));
}

void frmFindCart::showCart() {
    const QString number = QString::number(search_->shownCart());
    if (ui_->lblSearchCartNumber->text() != number)
        ui_->lblSearchCartNumber->setText(number);
}

// The search has come to its end, or was stopped.
void frmFindCart::endSearch() {
    slice_.stop();
    searching_ = false;
    appendFound();
    ui_->animFind->stop();
    rules_->apply();
    if (ui_->tbsFind->currentIndex() == 0)
        ui_->cmbSearchText->setFocus();
    if (search_->foundCount() == 0 && !search_->stopped()) {
        if (autoRepeat_) {
            platform::prompts().ask(
                {QStringLiteral(
                     "There were no further items found on the Audiowall that matched your search"),
                 platform::Icon::Information, platform::Buttons::Ok});
            return finish(0);
        }
        ui_->lviewItems->showNone();
    }
    if (ui_->lviewItems->carts().rowCount() > 0) {
        ui_->lviewItems->selectAny();
        ui_->lviewItems->setFocus();
    }
}

void frmFindCart::stop() {
    if (!searching_)
        return;
    search_->stop();
    endSearch();
    if (autoRepeat_)
        finish(0);
}

void frmFindCart::choose(qint32 cart) {
    if (cart <= 0)
        return stop();
    search_->stop();
    slice_.stop();
    finish(cart);
}

// Answers and closes. Whoever is told may delete the window.
void frmFindCart::finish(qint32 cart) {
    if (cart > 0)
        picking_.SelectedCart = cart;
    const QPointer<frmFindCart> self(this);
    caller_.JumpToCart(cart);
    if (!self)
        return;
    if (isVisible())
        done(cart > 0 ? Accepted : Rejected);
    else
        unload();
}

// What remains to be done on every way out.
void frmFindCart::unload() {
    if (search_)
        search_->stop();
    slice_.stop();
    searching_ = false;
    ui_->animFind->stop();
    if (std::exchange(activated_, false))
        StoreSearches(picking_, searches());
    autoRepeat_ = false;
    caller_.JumpToCart(0);
}

void frmFindCart::done(int result) {
    const QPointer<frmFindCart> self(this);
    unload();
    if (!self)
        return;
    QDialog::done(result);
    rules_->apply();
}

void frmFindCart::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        return searching_ ? stop() : reject();
    QDialog::keyPressEvent(event);
}

} // namespace tolvex
