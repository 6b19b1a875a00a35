#include "console/forms/frmConfigure.h"

#include "console/ConsoleJobs.h"
#include "console/WorkstationGlance.h"
#include "console/forms/AccessKeys.h"
#include "console/forms/FindBox.h"
#include "console/forms/JobTile.h"
#include "console/forms/frmSplash.h"
#include "core/report/Folders.h"
#include "core/system/Product.h"
#include "core/system/Registry.h"
#include "platform/Prompts.h"
#include "platform/paths/Paths.h"
#include "station/CheckConfiguration.h"
#include "station/Workstation.h"
#include "ui/binding/ShowControl.h"
#include "ui/help/frmHelp.h"
#include "ui/style/FitForm.h"
#include "ui/style/OpenForms.h"
#include "ui/style/Style.h"
#include "ui_frmConfigure.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QPointer>
#include <QTimer>

namespace tolvex {

namespace {

const QString MultiConfigFile = QStringLiteral("MultiConfigFile");
const QString LookForSetup = QStringLiteral("LookForSetup");
const QString FindCart = QStringLiteral("FindCart");
const QString InhibitUserHistory = QStringLiteral("InhibitUserHistory");

// A "Tolvex.ini" shorter than this means that the machine was never configured.
constexpr qint64 ShortestConfiguration = 10;

// Menu entries and the buttons that they stand for.
struct MenuRow {
    const char* action;
    const char* control;
};
constexpr MenuRow menuRows[] = {
    {"mnuLocalConfig", "cmdAutoConfig"},
    {"mnuNetworkConfig", "cmdNetworkSetup"},
    {"mnuCompactDatabase", "cmdCompress"},
};

} // namespace

frmConfigure::frmConfigure(Workstation& station, QWidget* parent)
    : QMainWindow(parent)
    , station_(station)
    , session_(station)
    , ui_(std::make_unique<Ui::frmConfigure>()) {
    ui_->setupUi(this);
    for (const ConsoleJob& job : ConsoleJobs()) {
        tile(job)->setIcon(LineIcon(QString::fromLatin1(job.icon)));
        connect(tile(job), &QPushButton::clicked, this, [this, &job] { startJob(job); });
    }
    for (const MenuRow& row : menuRows) {
        const ConsoleJob* job = FindConsoleJob(QString::fromLatin1(row.control));
        connect(findChild<QAction*>(QString::fromLatin1(row.action)), &QAction::triggered, this,
                [this, job] { startJob(*job); });
    }
    connect(ui_->mnuLookForSetup, &QAction::triggered, this,
            [this] { runRoutine(FindRoutine(LookForSetup)); });
    connect(ui_->mnuFindCart, &QAction::triggered, this, [this] { runRoutine(FindRoutine(FindCart)); });
    connect(ui_->mnuExit, &QAction::triggered, this, &frmConfigure::exitCheck);
    connect(ui_->mnuAllowMulti, &QAction::triggered, this,
            [this] { toggleOption(ui_->mnuAllowMulti, MultiConfigFile); });
    connect(ui_->mnuInhibitUserHistory, &QAction::triggered, this,
            [this] { toggleOption(ui_->mnuInhibitUserHistory, InhibitUserHistory); });
    connect(ui_->mnuHelpContents, &QAction::triggered, this, [this] { ShowHelp(helpFile_, 0); });
    connect(ui_->mnuAbout, &QAction::triggered, this, &frmConfigure::about);
    connect(ui_->pnlWorkstation, &WorkstationPanel::jobWanted, this, &frmConfigure::showJob);
    connect(ui_->tbsConfig, &QTabWidget::currentChanged, this, &frmConfigure::selectTab);

    status_ = new QLabel(this);
    status_->setObjectName(QStringLiteral("lblStatus"));
    status_->setTextFormat(Qt::PlainText);
    ui_->statusbar->addWidget(status_, 1);
    for (QMenu* menu : ui_->menubar->findChildren<QMenu*>())
        menu->setToolTipsVisible(true);
    auto* found = new FindBox(ui_->txtFind, this);
    connect(found, &FindBox::chosen, this, [this](const QString& control, const QString& place) {
        place_ = place;
        showJob(control);
        place_.clear();
    });
    // The form sees keys before its controls.
    qApp->installEventFilter(this);
}

frmConfigure::~frmConfigure() {
    qApp->removeEventFilter(this);
}

JobTile* frmConfigure::tile(const ConsoleJob& job) const {
    return findChild<JobTile*>(QString::fromLatin1(job.control));
}

bool frmConfigure::load(bool firstInstance) {
    ui_->mnuAllowMulti->setChecked(ReadRegistryLong(LocalMachineHive, TolvexKey, MultiConfigFile, 0) != 0);
    ui_->mnuInhibitUserHistory->setChecked(
        ReadRegistryLong(LocalMachineHive, TolvexKey, InhibitUserHistory, 0) != 0);
    if (!session_.begin(firstInstance))
        return false;
    askFirstRun();
    if (exitRequested_)
        return false;

    session_.load();
    status_->setText(station_.settings.ConfigName + QStringLiteral(" (") + station_.settings.LocalIniFile +
                     QStringLiteral(")"));
    platform::prompts().hideSplash();
    UpdateEnabledButtons();
    ui_->tbsConfig->setCurrentIndex(0);
    selectTab(0);

    helpFile_ = platform::ApplicationFile(QStringLiteral("config.chm"));
    if (FileLength(helpFile_) <= 0) {
        helpFile_.clear();
        ui_->mnuHelpContents->setVisible(false);
        ui_->mnuAboutSep->setVisible(false);
    }
    platform::prompts().setPointer(platform::Pointer::Default);
    return true;
}

void frmConfigure::askFirstRun() {
    if (FileLength(platform::WindowsFolder() + QStringLiteral("\\Tolvex.ini")) >= ShortestConfiguration)
        return;
    const platform::Message question{
        QStringLiteral(
            "The Configuration Wizard has found that Tolvex is not configured.\n\n"
            "It is STRONGLY recommended that you allow Tolvex to automatically configure itself\n\n"
            "Do you want Tolvex to proceed?"),
        platform::Icon::Question, platform::Buttons::YesNo};
    if (platform::prompts().ask(question) != platform::Answer::Yes)
        return;
    exitRequested_ = FindRoutine(LookForSetup)(station_, this);
}

void frmConfigure::UpdateEnabledButtons() {
    const ConsoleState state = LookAtConsoleState(station_.settings);
    const QString cartsNeeded =
        QStringLiteral("The first Cart Location (in File Locations) is needed for this.");
    ui_->mnuFindCart->setEnabled(state.firstCartLocationExists);
    ui_->mnuFindCart->setToolTip(state.firstCartLocationExists ? QString() : cartsNeeded);
    for (const ConsoleJob& job : ConsoleJobs()) {
        JobTile* button = tile(job);
        button->setEnabled(IsEnabled(job.enabling, state));
        button->setToolTip(button->isEnabled() ? QString()
                           : job.enabling == JobEnabling::FirstCartLocationExists
                               ? cartsNeeded
                               : QStringLiteral("The Data Location (in File Locations) is needed for this."));
    }
    showGlance();
}

void frmConfigure::showGlance() {
    const WorkstationGlance glance = LookAtWorkstation(station_);
    ui_->pnlWorkstation->showGlance(glance);
    for (const ConsoleJob& job : ConsoleJobs()) {
        QString missing;
        for (const WorkstationGlance::ToDo& item : glance.toDo)
            if (missing.isEmpty() && item.control == QLatin1String(job.control))
                missing = item.text;
        tile(job)->setAttention(!missing.isEmpty());
        tile(job)->setAbout(missing.isEmpty() ? QString::fromUtf8(job.about) : missing);
    }
}

void frmConfigure::startJob(const ConsoleJob& job) {
    if (waiting_)
        return;
    if (!CheckHolds(job.check, station_.settings)) {
        platform::prompts().ask({QString::fromLatin1(job.message),
                                 job.informs ? platform::Icon::Information : platform::Icon::Exclamation,
                                 platform::Buttons::Ok});
        return;
    }
    if (job.opening != JobOpening::Routine)
        return openForm(job);
    runRoutine(FindRoutine(QString::fromLatin1(job.form)));
}

// A routine lets events run while it shows progress: the console ignores them until it is done.
void frmConfigure::runRoutine(ConsoleRoutine routine) {
    if (std::exchange(waiting_, true))
        return;
    exitRequested_ = routine(station_, this);
    waiting_ = false;
    if (exitRequested_) {
        close();
        return;
    }
    UpdateEnabledButtons();
}

void frmConfigure::openForm(const ConsoleJob& job) {
    if (job.hourglass)
        platform::prompts().setPointer(platform::Pointer::Wait);
    const QPointer<QDialog> form = MakeForm(QString::fromLatin1(job.form), station_, this);
    FitForm(form);
    showPlace(form);
    if (job.opening == JobOpening::Modal) {
        form->exec();
    } else {
        waiting_ = true;
        setEnabled(false);
        form->setEnabled(true);
        form->show();
        while (form && form->isVisible())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        setEnabled(true);
        activateWindow();
        setFocus();
        waiting_ = false;
    }
    delete form;
    platform::prompts().setPointer(platform::Pointer::Default);
    if (QLatin1String(job.control) == QLatin1String("cmdFileLocations"))
        session_.reload();
    UpdateEnabledButtons();
}

// Shows what was searched for, after the form is open.
void frmConfigure::showPlace(QDialog* form) {
    const QString place = std::exchange(place_, {});
    if (place.isEmpty())
        return;
    QTimer::singleShot(0, form, [form, place] {
        if (place.contains(u'/'))
            QMetaObject::invokeMethod(form, "showPlace", Q_ARG(QString, place));
        else
            ShowControl(form, place);
    });
}

// From the search and the panel: shows the tab of a job, and its form if it can be opened.
void frmConfigure::showJob(const QString& control) {
    const ConsoleJob* job = FindConsoleJob(control);
    if (!job)
        return;
    ui_->tbsConfig->setCurrentIndex(static_cast<int>(job->tab));
    JobTile* button = tile(*job);
    if (button->isEnabled()) {
        button->setFocus();
        button->click();
    } else {
        ui_->statusbar->showMessage(button->toolTip(), 6000);
    }
}

void frmConfigure::selectTab(int) {
    setFocus();
}

void frmConfigure::moveTab(int step) {
    const int count = ui_->tbsConfig->count();
    ui_->tbsConfig->setCurrentIndex((ui_->tbsConfig->currentIndex() + step + count) % count);
}

int frmConfigure::helpContext() const {
    if (const auto* button = qobject_cast<JobTile*>(focusWidget()))
        if (const ConsoleJob* job = FindConsoleJob(button->objectName()))
            return job->helpContext;
    return ConsoleTabs()[static_cast<std::size_t>(ui_->tbsConfig->currentIndex())].helpContext;
}

bool frmConfigure::eventFilter(QObject* watched, QEvent* event) {
    const bool press = event->type() == QEvent::KeyPress;
    if (press && static_cast<QKeyEvent*>(event)->key() == Qt::Key_F1 && watched->isWidgetType()) {
        showHelp(static_cast<QWidget*>(watched)->window());
        return true;
    }
    if ((press || event->type() == QEvent::ShortcutOverride) && !QApplication::activePopupWidget() &&
        !QApplication::activeModalWidget()) {
        const auto* widget = qobject_cast<QWidget*>(watched);
        auto* key = static_cast<QKeyEvent*>(event);
        if (widget && widget->window() == this && isEnabled() && focusWidget() != ui_->txtFind) {
            if (press && handleKey(key))
                return true;
            // Alt with a letter is handled like the plain key, so that letters marked twice are reached in
            // turn either way.
            if (!press && key->modifiers() == Qt::AltModifier && !key->text().isEmpty()) {
                key->accept();
                return true;
            }
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

bool frmConfigure::handleKey(QKeyEvent* key) {
    if (key->key() == Qt::Key_Tab || key->key() == Qt::Key_Backtab) {
        moveTab(key->key() == Qt::Key_Backtab || key->modifiers() & Qt::ShiftModifier ? -1 : 1);
        return true;
    }
    if (key->key() == Qt::Key_F && key->modifiers() == Qt::ControlModifier) {
        ui_->txtFind->setFocus(Qt::ShortcutFocusReason);
        ui_->txtFind->selectAll();
        return true;
    }
    if (key->modifiers() & (Qt::ControlModifier | Qt::MetaModifier))
        return false;
    const bool letter = key->key() > Qt::Key_Space && key->key() < 0x100;
    return letter && PressAccessKey(this, QChar(key->key()));
}

void frmConfigure::showHelp(const QWidget* window) {
    if (!helpFile_.isEmpty())
        ShowHelp(helpFile_, window == this ? helpContext() : HelpContextOfForm(window->objectName()));
}

void frmConfigure::exitCheck() {
    platform::prompts().setPointer(platform::Pointer::Wait);
    const QString missing = CheckConfiguration(station_);
    platform::prompts().setPointer(platform::Pointer::Default);
    if (!missing.isEmpty()) {
        const platform::Message question{QStringLiteral("Tolvex is not fully configured:\n") + missing +
                                             QStringLiteral("\n\nDefinitely Exit?"),
                                         platform::Icon::Question, platform::Buttons::YesNo};
        if (platform::prompts().ask(question) != platform::Answer::Yes)
            return;
    }
    close();
}

void frmConfigure::toggleOption(QAction* action, const QString& value) {
    // The click has already inverted the mark.
    WriteRegistryLong(LocalMachineHive, TolvexKey, value, action->isChecked() ? -1 : 0, 0);
}

void frmConfigure::about() {
    frmSplash box(station_.settings.OSVersion, this);
    box.becomeAboutBox();
    box.exec();
}

void frmConfigure::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        for (JobTile* button : findChildren<JobTile*>())
            button->updateGeometry();
}

void frmConfigure::closeEvent(QCloseEvent* event) {
    if (waiting_)
        return event->ignore();
    if (session_.begun()) {
        const QList<QWidget*> open = OpenForms();
        for (auto form = open.rbegin(); form != open.rend(); ++form)
            if (*form != this)
                (*form)->close();
        session_.end();
    }
    QMainWindow::closeEvent(event);
}

} // namespace tolvex
