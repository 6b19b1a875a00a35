#include "hardware/forms/frmHardwareSettings.h"

#include "core/report/ProblemReport.h"
#include "core/settings/Settings.h"
#include "core/settings/StoredSettings.h"
#include "hardware/HardwareStore.h"
#include "hardware/forms/CardPage.h"
#include "hardware/forms/frmHardwareManager.h"
#include "platform/Clock.h"
#include "platform/Machine.h"
#include "platform/Prompts.h"
#include "ui/binding/FieldError.h"
#include "ui/binding/FormChanges.h"
#include "ui/richtext/PrintDocument.h"
#include "ui/style/Monitors.h"
#include "ui/style/OpenForms.h"
#include "ui/style/Style.h"
#include "ui_frmHardwareSettings.h"

#include <utility>

namespace tolvex {

frmHardwareSettings::frmHardwareSettings(HardwareCardTable& cards, const Settings& settings, QWidget* parent)
    : QDialog(parent)
    , cards_(cards)
    , settings_(settings)
    , ui_(std::make_unique<Ui::frmHardwareSettings>()) {
    ui_->setupUi(this);
    setWindowFlag(Qt::WindowMaximizeButtonHint, true);
    EnterForm(this);
    ui_->lblChanges->setStyleSheet(QStringLiteral("color: %1;").arg(tokens().warningText.name()));
    connect(ui_->cmdApply, &QPushButton::clicked, this, &frmHardwareSettings::apply);
    connect(ui_->cmdOK, &QPushButton::clicked, this, &frmHardwareSettings::ok);
    connect(ui_->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(ui_->cmdPrint, &QPushButton::clicked, this, &frmHardwareSettings::print);
    connect(ui_->cmdSaveList, &QPushButton::clicked, this, &frmHardwareSettings::saveList);

    DriverReports reports;
    ReadHardwareSettings(cards_, settings_.LocalIniFile, reports);
    for (int card = 1; card <= HardwareCardCount; ++card) {
        auto* page = new CardPage(cards_, card, this);
        pages_.append(page);
        ui_->tbsSettings->addTab(page, QStringLiteral("Card &%1").arg(card));
        page->load(reports);
        connect(page, &CardPage::edited, this, &frmHardwareSettings::showChanges);
    }
    loaded_ = true;
    showChanges();
    platform::prompts().setPointer(platform::Pointer::Default);
}

frmHardwareSettings::~frmHardwareSettings() = default;

void frmHardwareSettings::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (std::exchange(shown_, true))
        return;
    clsMonitors().CenterFormOnMonitor(this, parentWidget());
    pages_.first()->focusGrid();
}

void frmHardwareSettings::showChanges() {
    if (!loaded_)
        return;
    QStringList cards;
    for (int i = 0; i < pages_.size(); ++i)
        if (pages_[i]->isChanged())
            cards += QString::number(i + 1);
    ui_->lblChanges->setText(
        cards.isEmpty()
            ? QString()
            : QStringLiteral("Not applied yet: card %1").arg(cards.join(QStringLiteral(" and "))));
}

void frmHardwareSettings::apply() {
    for (CardPage* page : std::as_const(pages_))
        page->finishEditing();
    frmHardwareManager::UnloadManager();
    for (int i = 0; i < pages_.size(); ++i) {
        const QString wrong = SetCard(cards_[i + 1], pages_[i]->choice());
        if (wrong.isEmpty())
            continue;
        ShowFieldError(pages_[i]->fieldOfCard(), wrong, platform::Icon::Information);
        return;
    }
    const QString file = settings_.LocalIniFile;
    if (const int error = WriteHardwareSettings(cards_, file)) {
        ShowExclamation(ProfileErrorText(error, ProfilePath(file)));
        return;
    }
    frmHardwareManager::LoadManager();
    ui_->cmdApply->setProperty("tag", QStringLiteral("1"));
    for (CardPage* page : std::as_const(pages_))
        page->markStored();
    showChanges();
}

// After an earlier Apply the form closes even if this one finds a fault.
void frmHardwareSettings::ok() {
    apply();
    if (ui_->cmdApply->property("tag").toInt() != 0)
        accept();
}

void frmHardwareSettings::reject() {
    for (CardPage* page : std::as_const(pages_))
        page->finishEditing();
    showChanges();
    if (!ui_->lblChanges->text().isEmpty() &&
        !AskToLoseChanges(QStringLiteral("The changes to the hardware lines have not been applied.")))
        return;
    QDialog::reject();
}

QString frmHardwareSettings::listHtml() const {
    QList<ListedCard> cards;
    for (const CardPage* page : pages_)
        cards.append(page->listed());
    const auto* page = static_cast<const CardPage*>(ui_->tbsSettings->currentWidget());
    const Settings& s = settings_;
    const QString date = platform::clock().now().toString(QStringLiteral("d MMMM yyyy, hh:mm"));
    return LineListHtml(
        QStringLiteral("Hardware lines"),
        QStringLiteral("Workstation %1 (%2), %3 (%4), %5")
            .arg(QString::number(s.LinkMeshId), platform::ComputerName(), s.ConfigName, s.LocalIniFile, date),
        cards, page->onlyInUse());
}

void frmHardwareSettings::print() {
    pages_[ui_->tbsSettings->currentIndex()]->finishEditing();
    PrintHtml(listHtml());
}

void frmHardwareSettings::saveList() {
    pages_[ui_->tbsSettings->currentIndex()]->finishEditing();
    SaveHtmlAsPdf(listHtml(), QStringLiteral("Hardware lines"), QStringLiteral("Save the list of lines"),
                  QStringLiteral("Hardware.pdf"));
}

} // namespace tolvex
