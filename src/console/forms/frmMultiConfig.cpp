#include "console/forms/frmMultiConfig.h"

#include "console/ConfigurationSets.h"
#include "core/settings/Settings.h"
#include "platform/Prompts.h"
#include "ui/forms/frmGoodInputBox.h"
#include "ui/style/Monitors.h"
#include "ui/style/OpenForms.h"
#include "ui/style/Style.h"
#include "ui_frmMultiConfig.h"

#include <QCloseEvent>
#include <QEventLoop>

namespace tolvex {

namespace {

constexpr int KeyRole = Qt::UserRole;
constexpr int LongestDescription = 30;

QIcon iconOf(SetPlace place) {
    switch (place) {
    case SetPlace::Network:
        return LineIcon(QStringLiteral("share"));
    case SetPlace::NetworkDrive:
        return LineIcon(QStringLiteral("network"));
    case SetPlace::LocalDrive:
        break;
    }
    return LineIcon(QStringLiteral("workstation"));
}

QString placeText(const ConfigurationSet& set) {
    return set.location.isEmpty() ? QStringLiteral("No data location yet")
                                  : QStringLiteral("Data location: ") + set.location;
}

} // namespace

frmMultiConfig::frmMultiConfig(const QString& registryKey, const QString& defaultIni, QWidget* parent)
    : QMainWindow(parent)
    , ui_(std::make_unique<Ui::frmMultiConfig>())
    , registryKey_(registryKey)
    , defaultIni_(defaultIni) {
    ui_->setupUi(this);
    EnterForm(this);
    connect(ui_->cmdOK, &QPushButton::clicked, this, &frmMultiConfig::choose);
    connect(ui_->cmdCancel, &QPushButton::clicked, this, &QWidget::close);
    connect(ui_->lvwConfigs, &QListWidget::itemDoubleClicked, this, &frmMultiConfig::choose);
    connect(ui_->lvwConfigs, &QListWidget::itemActivated, this, &frmMultiConfig::choose);
    connect(ui_->lvwConfigs, &QListWidget::currentItemChanged, this, [this](QListWidgetItem* item) {
        if (item)
            ui_->statusbar->showMessage(QStringLiteral("Selected Configuration : ") +
                                        item->data(KeyRole).toString());
    });
    connect(ui_->mnuCopyConfig, &QAction::triggered, this, &frmMultiConfig::copy);
    connect(ui_->mnuRenameConfig, &QAction::triggered, this, &frmMultiConfig::rename);
    connect(ui_->mnuDeleteConfig, &QAction::triggered, this, &frmMultiConfig::remove);
    UpdateDisplay();
}

frmMultiConfig::~frmMultiConfig() = default;

void frmMultiConfig::exec() {
    clsMonitors().CenterFormOnMonitor(this);
    show();
    ui_->lvwConfigs->setFocus();
    QEventLoop loop;
    setAttribute(Qt::WA_DeleteOnClose, false);
    while (isVisible())
        loop.processEvents(QEventLoop::WaitForMoreEvents);
}

void frmMultiConfig::UpdateDisplay() {
    const QString selected = entryKey();
    ui_->lvwConfigs->clear();
    for (const ConfigurationSet& set : ListSets(registryKey_, defaultIni_)) {
        auto* item = new QListWidgetItem(iconOf(set.place), set.description, ui_->lvwConfigs);
        item->setData(KeyRole, set.file);
        item->setToolTip(placeText(set));
        if (set.file == selected)
            ui_->lvwConfigs->setCurrentItem(item);
    }
}

const QListWidgetItem* frmMultiConfig::entry(int index) const {
    const bool named = index >= 1 && index <= ui_->lvwConfigs->count();
    return named ? ui_->lvwConfigs->item(index - 1) : ui_->lvwConfigs->currentItem();
}

QString frmMultiConfig::entryKey(int index) const {
    return entry(index) ? entry(index)->data(KeyRole).toString() : QString();
}

QString frmMultiConfig::entryText(int index) const {
    return entry(index) ? entry(index)->text() : QString();
}

void frmMultiConfig::choose() {
    if (entryKey().isEmpty())
        return;
    chosen_ = entryKey();
    close();
}

void frmMultiConfig::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QMainWindow::keyPressEvent(event);
}

void frmMultiConfig::copy() {
    if (entryKey().isEmpty())
        return;
    QString answer;
    if (GoodInputBox(QStringLiteral("What filename do you want to use for the new Configuration Set?\n\n"
                                    "(You can only use letters and numbers)"),
                     windowTitle(), {}, 0, answer, this) ||
        answer.isEmpty())
        return;
    const QString file = SetFileName(answer);
    if (file.isEmpty()) {
        platform::prompts().ask({QStringLiteral("You can only use letters and numbers"),
                                 platform::Icon::Exclamation, platform::Buttons::Ok});
        return;
    }
    QString description;
    if (GoodInputBox(QStringLiteral("What Description do you want to use for the new Configuration Set?"),
                     windowTitle(), QStringLiteral("Copy of ") + entryText(), LongestDescription, description,
                     this))
        return;
    if (CopySet(registryKey_, entryKey(), file, description))
        UpdateDisplay();
}

void frmMultiConfig::rename() {
    if (entryKey().isEmpty())
        return;
    QString description;
    if (GoodInputBox(QStringLiteral("What Description do you want to use for this Configuration Set?"),
                     windowTitle(), entryText(), LongestDescription, description, this))
        return;
    RenameSet(entryKey(), description);
    UpdateDisplay();
}

void frmMultiConfig::remove() {
    if (entryKey().isEmpty())
        return;
    if (ui_->lvwConfigs->count() == 1) {
        platform::prompts().ask({QStringLiteral("You cannot delete the last Configuration Set"),
                                 platform::Icon::Exclamation, platform::Buttons::Ok});
        return;
    }
    const QString question = QStringLiteral("Are you sure you want to delete the ") + entryText() +
                             QStringLiteral(" Configuration Set?");
    if (platform::prompts().ask({question, platform::Icon::Question, platform::Buttons::YesNo,
                                 platform::Answer::No}) != platform::Answer::Yes)
        return;
    if (DeleteSet(registryKey_, entryKey()))
        UpdateDisplay();
}

} // namespace tolvex
