#include "hardware/forms/CardPage.h"

#include "hardware/forms/LineUsageModel.h"
#include "ui/binding/EnableRules.h"
#include "ui/binding/FormChanges.h"
#include "ui/style/TextBoxes.h"
#include "ui_CardPage.h"

namespace tolvex {

namespace {

// The device whose lines are shown, and the one that Apply will set if it differs.
QString originOf(const QString& address, const LineCounts& counts) {
    const qint16 shown = DeviceWhileTyping(address);
    const std::optional<qint16> set = DeviceNumber(address);
    QString text = OriginOfLines(shown, counts);
    if (set && *set != shown)
        text += QStringLiteral(" Apply sets device %1, which is %2 in hexadecimal.")
                    .arg(*set)
                    .arg(AddressText(*set));
    return text;
}

} // namespace

CardPage::CardPage(HardwareCardTable& cards, int number, QWidget* parent)
    : QWidget(parent)
    , ui_(std::make_unique<Ui::CardPage>())
    , number_(number)
    , card_(cards[number])
    , model_(new LineUsageModel(card_, this)) {
    ui_->setupUi(this);
    ui_->gridUsage->setLines(model_);
    for (const CardTypeRow& row : CardTypes())
        if (row.name)
            ui_->CardTypeList->addItem(QLatin1String(row.name), row.type);
    for (int port = 1; port <= SerialPorts; ++port)
        ui_->ComPortlist->addItem(QString::number(port));
    ui_->ComPortlist->setCurrentIndex(-1);
    SelectAllOnFocus(ui_->PortAddressT);

    const QString unused = QStringLiteral("The chosen type of card does not use this.");
    const auto uses = [this](bool CardTypeRow::*what) {
        return [this, what](const FormView&) {
            const CardTypeRow* row = FindCardType(selectedType());
            return row && row->*what;
        };
    };
    rules_ = new EnableRules(
        this, {{QStringLiteral("PortAddressL PortAddressT"), unused, uses(&CardTypeRow::usesAddress)},
               {QStringLiteral("ComportL ComPortlist"), unused, uses(&CardTypeRow::usesPort)}});
    changes_ = new FormChanges(this, QStringLiteral("chkOnlyInUse"));

    connect(ui_->CardTypeList, &QComboBox::currentIndexChanged, this, &CardPage::selectType);
    connect(ui_->PortAddressT, &QLineEdit::textChanged, this, &CardPage::addressChanged);
    connect(ui_->PortAddressT, &QLineEdit::editingFinished, this, [this] { reports_.show(); });
    connect(ui_->ComPortlist, &QComboBox::currentIndexChanged, this, &CardPage::edited);
    connect(ui_->gridUsage, &LineGrid::linesChanged, this, &CardPage::edited);
    connect(ui_->chkOnlyInUse, &QCheckBox::toggled, ui_->gridUsage, &LineGrid::showOnlyLinesInUse);
}

CardPage::~CardPage() = default;

void CardPage::load(DriverReports& reports) {
    loading_ = &reports;
    const int entry = ui_->CardTypeList->findData(card_.CardType);
    if (entry < 0)
        ui_->CardTypeList->setPlaceholderText(
            QStringLiteral("Type %1 (not supported here)").arg(card_.CardType));
    ui_->CardTypeList->setCurrentIndex(entry);
    if (entry <= 0)
        selectType();
    ui_->PortAddressT->setText(AddressText(card_.BaseAddress));
    if (card_.CardType == CardRS232)
        ui_->ComPortlist->setCurrentIndex(card_.ComPort - 1); // none for a port that is not on the list
    loading_ = nullptr;
    markStored();
}

// A type that the list does not offer stays the card's own.
qint32 CardPage::selectedType() const {
    const QVariant value = ui_->CardTypeList->currentData();
    return value.isValid() ? value.toInt() : card_.CardType;
}

CardChoice CardPage::choice() const {
    return {selectedType(), ui_->PortAddressT->text(), ui_->ComPortlist->currentIndex()};
}

void CardPage::selectType() {
    if (loading_) {
        showLines(*loading_);
        return;
    }
    reports_.clear();
    reports_.show();
    showLines(reports_);
}

void CardPage::addressChanged() {
    if (selectedType() != CardAdvantech) {
        emit edited();
        return;
    }
    if (loading_) {
        showLines(*loading_);
        return;
    }
    // Report driver errors when the field is left, not for each keystroke.
    reports_.clear();
    reports_.hold();
    showLines(reports_);
}

void CardPage::showLines(DriverReports& reports) {
    const qint32 type = selectedType();
    const QString address = ui_->PortAddressT->text();
    ui_->gridUsage->setCardType(FindCardType(type));
    const LineCounts counts = SelectCardType(card_, type, address, reports);
    answered_ = counts.answered;
    model_->setLines(ShownLines(counts));
    ui_->gridUsage->showLines();
    ui_->gridUsage->setEmptyText(
        type == CardDisabled ? QStringLiteral("This card is disabled. Choose its type to see its lines here.")
        : type == CardAdvantech
            ? QStringLiteral("The card does not answer, so its lines cannot be shown. What is set for them "
                             "stays in the file. Check the device number and the driver.")
            : QStringLiteral("Nothing is known of this type of card. It stays in the file as it is."));
    ui_->lblOrigin->setText(type == CardAdvantech ? originOf(address, counts) : QString());
    rules_->apply();
    markAddress();
    emit edited();
}

// A choice that Apply would refuse, or a device that does not answer, is reported at the field.
void CardPage::markAddress() {
    const CardTypeRow* row = FindCardType(selectedType());
    const bool address = row && row->usesAddress;
    if (row && row->addressCaption)
        ui_->PortAddressL->setText((address ? QStringLiteral("&") : QString()) +
                                   QLatin1String(row->addressCaption));
    const bool good = !address || DeviceNumber(ui_->PortAddressT->text());
    MarkBox(ui_->PortAddressT, !good        ? QStringLiteral("0 to FF")
                               : !answered_ ? QStringLiteral("no answer")
                                            : QString());
}

ListedCard CardPage::listed() const {
    const CardChoice now = choice();
    const CardTypeRow* row = FindCardType(now.type);
    QString about = row && row->name ? QString::fromLatin1(row->name) : QString::number(now.type);
    if (row && row->usesPort && now.port >= 0)
        about += QStringLiteral(", attached to port %1").arg(now.port + 1);
    if (row && row->usesAddress)
        about += QStringLiteral(", device %1").arg(now.address);
    return {number_, about, model_->rowCount(), &card_, !isChanged()};
}

bool CardPage::onlyInUse() const {
    return ui_->chkOnlyInUse->isChecked();
}

void CardPage::markStored() {
    changes_->markStored();
    storedLines_ = card_.Lines;
}

bool CardPage::isChanged() const {
    if (changes_->any())
        return true;
    for (int n = 1; n <= model_->rowCount(); ++n)
        if (!card_.Lines[n].isStoredAs(storedLines_[n]))
            return true;
    return false;
}

void CardPage::finishEditing() {
    ui_->gridUsage->finishEditing();
}

QWidget* CardPage::fieldOfCard() const {
    for (QWidget* field : {static_cast<QWidget*>(ui_->PortAddressT), static_cast<QWidget*>(ui_->ComPortlist)})
        if (field->isEnabled())
            return field;
    return ui_->CardTypeList;
}

void CardPage::focusGrid() {
    ui_->gridUsage->setFocus();
}

} // namespace tolvex
