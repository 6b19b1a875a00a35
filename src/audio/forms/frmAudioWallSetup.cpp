#include "audio/forms/frmAudioWallSetup.h"

#include "audio/forms/CartContrast.h"
#include "audio/forms/frmFindCart.h"
#include "audio/forms/frmJumpToCart.h"
#include "core/text/Numbers.h"
#include "platform/Prompts.h"
#include "ui/binding/EnableRules.h"
#include "ui/binding/FieldError.h"
#include "ui/style/ChooseFont.h"
#include "ui/style/Colours.h"
#include "ui/style/FitForm.h"
#include "ui/style/OpenForms.h"
#include "ui/style/Style.h"
#include "ui/style/TextBoxes.h"
#include "ui_frmAudioWallSetup.h"

#include <QLocale>

namespace tolvex {

namespace {

constexpr int TwipsPerPixel = 15;
constexpr int MostBevel = 10;
// How far the sliders go, in twips; stored sizes beyond are kept.
constexpr int SmallestOnSlider = 500;
constexpr int GreatestHeight = 3000;
constexpr int GreatestWidth = 4500;

const BoundField<AudiowallSetup> fields[] = {
    Bound<&AudiowallSetup::showInstantCarts>("chkDisplayICsAtLogon"),
    Bound<&AudiowallSetup::instantCarts>("listInstantCarts"),
    Bound<&AudiowallSetup::showPad>("chkDisplayPadAtLogon"),
    Bound<&AudiowallSetup::displayExtros>("chkDisplayExtros"),
    Bound<&AudiowallSetup::autoUpdate>("chkUpdateAudiowall"),
    Bound<&AudiowallSetup::updateInterval>("txtAudiowallUpdateInterval"),
    Bound<&AudiowallSetup::dragDropMoveCarts>("chkDragDropMoveCarts"),
    Bound<&AudiowallSetup::displayInstantCartText>("chkDisplayICCartText"),
    Bound<&AudiowallSetup::searchCartNotes>("chkSearchCartNotes"),
    Bound<&AudiowallSetup::searchFromBeginning>("chkSearchFromBeginning"),
    Bound<&AudiowallSetup::useLevelTrigger>("chkUseLevelTrigger"),
    Bound<&AudiowallSetup::triggerLevel>("txtRecordTriggerLevel"),
    Bound<&AudiowallSetup::alwaysUseLevelTrigger>("chkAlwaysUseLevelTrigger"),
    Bound<&AudiowallSetup::highlight>("chkHighlightRecent"),
    Bound<&AudiowallSetup::highlightByTimes>("optHighlightFixed optHighlightMultiple"),
    Bound<&AudiowallSetup::highlightSeconds>("txtHighlightFixedTime"),
    Bound<&AudiowallSetup::highlightTimes>("txtHighlightMultiple"),
    Bound<&AudiowallSetup::keyboardFade>("chkKeyboardFade"),
    Bound<&AudiowallSetup::mouseFade>("chkMouseFade"),
    Bound<&AudiowallSetup::fadeSeconds>("txtFadeSeconds"),
    Bound<&AudiowallSetup::cartHeight>("sldCartHeight"),
    Bound<&AudiowallSetup::cartWidth>("sldCartWidth"),
    Bound<&AudiowallSetup::numberCarts>("txtNumberCarts"),
    Bound<&AudiowallSetup::pictureType>("comboPictureType"),
};
// The timesBarText has no control: it follows the colour of the bar.
const BoundField<CartLooks> lookFields[] = {
    Bound<&CartLooks::selectedBack>("cmdChangeSelectedCartColor"),
    Bound<&CartLooks::selectedText>("cmdChangeSelectedTextColor"),
    Bound<&CartLooks::selectedPushedIn>("chkSelectedCartPushIn"),
    Bound<&CartLooks::playedRecently>("cmdHighlightColor"),
    Bound<&CartLooks::timesBarInColour>("chkDisplayTimesBarColor"),
    Bound<&CartLooks::timesBar>("cmdSelectTimesBarColor"),
    Bound<&CartLooks::number>("cmdChangeNormalCartNumberColor"),
    Bound<&CartLooks::emptyNumber>("cmdChangeEmptyCartNumberColor"),
    Bound<&CartLooks::emptyBack>("cmdChangeEmptyCartBackColor"),
    Bound<&CartLooks::emptyFore>("cmdChangeEmptyCartForeColor"),
    Bound<&CartLooks::audioAsSquare>("chkDisplayCartHasAudioAsSquare"),
    Bound<&CartLooks::showCompressed>("chkShowCartsCompressed"),
    Bound<&CartLooks::timeInHours>("chkDisplayCartTimeHours"),
    Bound<&CartLooks::bevel>("comboBevelWidth"),
};
constexpr char lookControls[] =
    "cmdChangeSelectedCartColor cmdChangeSelectedTextColor chkSelectedCartPushIn chkDisplayTimesBarColor "
    "cmdSelectTimesBarColor cmdHighlightColor chkHighlightRecent cmdChangeNormalCartNumberColor "
    "cmdChangeEmptyCartNumberColor "
    "cmdChangeEmptyCartBackColor cmdChangeEmptyCartForeColor chkDisplayCartHasAudioAsSquare "
    "chkShowCartsCompressed chkDisplayCartTimeHours comboBevelWidth";

const CartFace sampleFaces[] = {
    {CartFace::State::Normal, 1, QStringLiteral("Station jingle"), 33, true, true, SystemButtonFace,
     SystemButtonText},
    {CartFace::State::Selected, 2, QStringLiteral("News at one"), 185, true, false, SystemButtonFace,
     SystemButtonText},
    {CartFace::State::Empty, 3, {}, 0, false, false, 0, 0},
    {CartFace::State::Normal, 4, QStringLiteral("Weather"), 62, true, false, SystemButtonFace,
     SystemButtonText},
};

} // namespace

frmAudioWallSetup::frmAudioWallSetup(Settings& settings, QWidget* parent)
    : QDialog(parent)
    , settings_(settings)
    , setup_(LoadAudiowallSetup(settings))
    , ui_(std::make_unique<Ui::frmAudioWallSetup>())
    , binding_(this) {
    ui_->setupUi(this);
    EnterForm(this);
    KeepFitted(this);
    fillLists();
    binding_.bind(setup_, fields);
    binding_.bind(setup_.looks, lookFields);
    binding_.fill();
    ui_->grdJumps->setJumps(setup_.jumps);
    ui_->txtNumberCartGroups->setText(QString::number(setup_.jumps.size()));
    addFilters();
    addRules();
    makeSamples();
    showSamples();
    showCartSize();
    showJumpHint();
    connect(ui_->grdJumps, &JumpGrid::edited, this, &frmAudioWallSetup::showJumpHint);
    connect(ui_->cmdUpdateNumberButtons, &QPushButton::clicked, this,
            &frmAudioWallSetup::updateNumberButtons);
    connect(ui_->cmdChangeFont, &QPushButton::clicked, this, &frmAudioWallSetup::changeFont);
    connect(ui_->OKB, &QPushButton::clicked, this, &frmAudioWallSetup::store);
    connect(ui_->CancelB, &QPushButton::clicked, this, &QDialog::reject);
    ui_->lineFade->setStyleSheet(QStringLiteral("color: %1;").arg(tokens().line.name()));
    ui_->tbsAudiowall->setCurrentIndex(0);
}

frmAudioWallSetup::~frmAudioWallSetup() = default;

void frmAudioWallSetup::offerCarts(CartStore& carts, CartPicking& picking) {
    JumpGrid* const grid = ui_->grdJumps;
    grid->offerPickers();
    connect(grid, &JumpGrid::keypadWanted, this, [this, grid, &carts, &picking](qint32 cart) {
        auto* keypad = findChild<frmJumpToCart*>();
        if (!keypad)
            keypad = new frmJumpToCart(carts, picking, this);
        keypad->setCaller(grid);
        keypad->Tag = QString::number(cart);
        FitForm(keypad);
        keypad->open();
    });
    connect(grid, &JumpGrid::searchWanted, this, [this, grid, &carts, &picking](qint32 cart) {
        auto* search = findChild<frmFindCart*>();
        if (!search)
            search = new frmFindCart(carts, picking, this);
        search->setCaller(grid);
        search->StartCart = cart;
        FitForm(search);
        search->open();
    });
}

void frmAudioWallSetup::fillLists() {
    ui_->listInstantCarts->addItems(
        {QStringLiteral("Users Instant Carts"), QStringLiteral("Global Instant Carts")});
    for (const PictureType& type : PictureTypes)
        ui_->comboPictureType->addItem(QLatin1String(type.text));
    for (int width = 0; width <= qMax(MostBevel, setup_.looks.bevel); ++width)
        ui_->comboBevelWidth->addItem(QString::number(width));
    for (auto [slider, greatest, held] : {std::tuple(ui_->sldCartHeight, GreatestHeight, setup_.cartHeight),
                                          std::tuple(ui_->sldCartWidth, GreatestWidth, setup_.cartWidth)}) {
        slider->setRange(SmallestOnSlider, qMax(greatest, held));
        slider->setSingleStep(TwipsPerPixel);
        slider->setPageStep(10 * TwipsPerPixel);
        connect(slider, &QSlider::valueChanged, this, &frmAudioWallSetup::showCartSize);
    }
    ui_->lblNoCartsDesc->setText(QStringLiteral("(You cannot have more than %1) carts.")
                                     .arg(QLocale(QLocale::English).toString(MostCarts)));
}

void frmAudioWallSetup::addRules() {
    const QString highlight = QStringLiteral("Tick \"Highlight carts that were played recently\" first.");
    const bool located = !settings_.CartPartTable[1].Location.trimmed().isEmpty();
    const auto fades = [](const FormView& form) {
        return form.on("chkMouseFade") || form.on("chkKeyboardFade");
    };
    new EnableRules(
        this,
        {{QStringLiteral("fraLevelTrigger lblTriggerLevel txtRecordTriggerLevel chkAlwaysUseLevelTrigger"),
          QStringLiteral("Tick \"Use the Level Trigger\" first."), IsOn("chkUseLevelTrigger")},
         {QStringLiteral("listInstantCarts"), QStringLiteral("Tick \"Show the\" to choose which."),
          IsOn("chkDisplayICsAtLogon")},
         {QStringLiteral("txtAudiowallUpdateInterval"),
          QStringLiteral("Tick \"Automatically update the Audio Wall\" first."), IsOn("chkUpdateAudiowall")},
         {QStringLiteral("optHighlightFixed optHighlightMultiple txtHighlightFixedTime txtHighlightMultiple "
                         "cmdHighlightColor lblHighlightSeconds lblHighlightTimes"),
          highlight, IsOn("chkHighlightRecent")},
         {QStringLiteral("txtHighlightFixedTime"), QStringLiteral("Choose \"for\" to set the seconds."),
          IsOn("optHighlightFixed")},
         {QStringLiteral("txtHighlightMultiple"),
          QStringLiteral("Choose \"until it could have been played\" to set how often."),
          IsOn("optHighlightMultiple")},
         {QStringLiteral("lineFade txtFadeSeconds lblFadeTake lblFadeSeconds"),
          QStringLiteral("No ejected cart is faded."), fades},
         {QStringLiteral("cmdSelectTimesBarColor"), QStringLiteral("The times bar has no colour."),
          IsOn("chkDisplayTimesBarColor")},
         {QStringLiteral(
              "frameAudiowallLimits lblNumberCarts txtNumberCarts lblNoCartsDesc comboPictureType"),
          QStringLiteral("Set the first Cart Location (in File Locations) first: they are kept there."),
          [located](const FormView&) { return located; }}});
}

void frmAudioWallSetup::addFilters() {
    for (QLineEdit* box :
         {ui_->txtNumberCarts, ui_->txtRecordTriggerLevel, ui_->txtFadeSeconds, ui_->txtHighlightFixedTime,
          ui_->txtHighlightMultiple, ui_->txtAudiowallUpdateInterval, ui_->txtNumberCartGroups}) {
        TakeDigits(box, 9);
        SetWidthInDigits(box, box == ui_->txtNumberCartGroups ? 3 : 6);
    }
}

void frmAudioWallSetup::makeSamples() {
    CartView* const views[] = {ui_->pnlCart_0, ui_->pnlCart_1, ui_->pnlCart_2, ui_->pnlCart_3};
    for (std::size_t i = 0; i < std::size(views); ++i)
        views[i]->setFace(sampleFaces[i]);
    for (QWidget* control : ControlsNamed(this, QLatin1String(lookControls)))
        WhenChanged(control, this, [this] { showSamples(); });
    connect(ui_->cmdSelectTimesBarColor, &ColourButton::colourChanged, this,
            &frmAudioWallSetup::chooseTimesBarText);
}

void frmAudioWallSetup::showSamples() {
    binding_.take();
    for (CartView* view : {ui_->pnlCart_0, ui_->pnlCart_1, ui_->pnlCart_2, ui_->pnlCart_3})
        view->setLooks(setup_.looks);
    const CartLooks& looks = setup_.looks;
    ui_->lblFontName->setText(QStringLiteral("%1, %2 pt%3")
                                  .arg(looks.fontName)
                                  .arg(looks.fontSize)
                                  .arg(looks.fontBold ? QStringLiteral(", bold") : QString()));
    showContrast();
}

void frmAudioWallSetup::showContrast() {
    const QStringList hard = ColoursHardToRead(setup_.looks, ui_->chkHighlightRecent->isChecked(), palette());
    ui_->lblContrast->setVisible(!hard.isEmpty());
    ui_->lblContrast->setText(QStringLiteral("Hard to read: %1.").arg(hard.join(QStringLiteral(", "))));
    ui_->lblContrast->setStyleSheet(QStringLiteral("color: %1;").arg(tokens().warningText.name()));
}

// The text stays where it can be read on the new bar, else it becomes black or white.
void frmAudioWallSetup::chooseTimesBarText() {
    qint32& text = setup_.looks.timesBarText;
    const QColor bar = ToColor(ui_->cmdSelectTimesBarColor->colour(), palette());
    if (Contrast(bar, ToColor(text, palette())) < ReadableContrast)
        text =
            Contrast(bar, Qt::black) > Contrast(bar, Qt::white) ? FromColor(Qt::black) : FromColor(Qt::white);
    showSamples();
}

// A slider below its limit goes back to it, and the sample keeps its size.
void frmAudioWallSetup::showCartSize() {
    for (auto [slider, limit] :
         {std::pair(ui_->sldCartHeight, LowestCartHeight), std::pair(ui_->sldCartWidth, LowestCartWidth)})
        if (slider->value() < limit)
            return slider->setValue(limit);
    const int width = ui_->sldCartWidth->value();
    const int height = ui_->sldCartHeight->value();
    ui_->pnlCart_3->setFixedSize(width / TwipsPerPixel, height / TwipsPerPixel);
    const CartGrid grid = EstimateCartGrid(settings_, width, height);
    ui_->lblCartWidthValue->setText(QStringLiteral("%1 twips").arg(width));
    ui_->lblCartHeightValue->setText(QStringLiteral("%1 twips").arg(height));
    ui_->lblEstGrid->setText(QStringLiteral("This will give an estimated grid of carts of: %1 x %2")
                                 .arg(grid.columns)
                                 .arg(grid.rows));
}

void frmAudioWallSetup::showJumpHint() {
    ui_->lblJumpHint->setText(ClearedJumpsText(ui_->grdJumps->jumps(), CartsInForce(settings_)));
    ui_->lblJumpHint->setStyleSheet(QStringLiteral("color: %1;").arg(tokens().warningText.name()));
}

void frmAudioWallSetup::updateNumberButtons() {
    const int count = TakeJumpButtonCount(ToLong(LeadingNumber(ui_->txtNumberCartGroups->text())));
    ui_->txtNumberCartGroups->setText(QString::number(count));
    ui_->grdJumps->setJumpCount(count);
    showJumpHint();
}

void frmAudioWallSetup::changeFont() {
    CartLooks& looks = setup_.looks;
    QFont font(looks.fontName, qMax(1, looks.fontSize));
    font.setBold(looks.fontBold);
    const std::optional<QFont> chosen = ChooseFont(font, QStringLiteral("Font of the carts"), this);
    if (!chosen)
        return;
    looks.fontName = chosen->family();
    if (chosen->pointSize() != font.pointSize())
        looks.fontSize = chosen->pointSize();
    looks.fontBold = chosen->bold();
    showSamples();
}

void frmAudioWallSetup::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    platform::prompts().setPointer(platform::Pointer::Default);
}

void frmAudioWallSetup::store() {
    binding_.take();
    setup_.jumps = ui_->grdJumps->jumps();
    const SetupOutcome outcome = StoreAudiowallSetup(setup_, settings_);
    if (!outcome.stored()) {
        QWidget* field = outcome.field.isEmpty() ? ui_->OKB : ControlNamed(this, outcome.field);
        ShowFieldError(field, outcome.message);
        return;
    }
    setProperty("tag", QString());
    accept();
}

} // namespace tolvex
