#include "databases/forms/frmChooseDatabase.h"

#include "core/system/Registry.h"
#include "databases/suite/DatabaseKinds.h"
#include "ui/style/FitForm.h"
#include "ui/style/OpenForms.h"
#include "ui/style/Style.h"
#include "ui_frmChooseDatabase.h"

#include <QActionGroup>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>
#include <QStandardItemModel>
#include <QStyledItemDelegate>
#include <QTimer>
#include <QToolButton>

namespace tolvex {

namespace {

enum View { LargeIcons, SmallIcons, List, Details };
const QString ViewValue = QStringLiteral("ChooseDatabaseViewType");
constexpr qint32 NoView = -1; // never stored, so that the value always is

// Widths of columns in twips.
constexpr int TwipsPerPixel = 15;
constexpr int AccessedWidth = 2000;
constexpr int NameWidth = 1500;
constexpr int Margins = 60 + 255;

bool showsAccess(qint32 type) {
    return type == RotaweaveV3Type || type == QuillType;
}

// Entries of the icon views: the description, and the file name, since databases may have the same
// description.
class IconLabel : public QStyledItemDelegate {
public:
    explicit IconLabel(QListView* view)
        : QStyledItemDelegate(view)
        , view_(view) {}
    // A longer text is cut with an ellipsis.
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        return QStyledItemDelegate::sizeHint(option, index).boundedTo(view_->gridSize());
    }

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        option->text =
            QStringLiteral("%1 (%2)").arg(option->text, index.siblingAtColumn(1).data().toString());
    }

private:
    const QListView* view_;
};

} // namespace

frmChooseDatabase::frmChooseDatabase(QWidget* parent)
    : QDialog(parent)
    , ui_(std::make_unique<Ui::frmChooseDatabase>())
    , model_(new QStandardItemModel(this)) {
    ui_->setupUi(this);
    EnterForm(this);
    ui_->lViewDatabases->setModel(model_);
    ui_->lViewDetails->setModel(model_);
    selection_ = ui_->lViewDetails->selectionModel();
    ui_->lViewDatabases->setSelectionModel(selection_);
    ui_->lViewDatabases->setItemDelegate(new IconLabel(ui_->lViewDatabases));
    ui_->lViewDatabases->setTextElideMode(Qt::ElideMiddle); // the file name stays
    // The selection covers the whole entry with its icon: selected icons are white.
    const QString marked = QStringLiteral(
        "::item { padding: 4px; border: none; background: transparent; } %1::item:selected { background: "
        "palette(highlight); color: palette(highlighted-text); }");
    ui_->lViewDatabases->setStyleSheet(QStringLiteral("QListView") + marked.arg(QStringLiteral("QListView")));
    ui_->lViewDetails->setStyleSheet(QStringLiteral("QTreeView") + marked.arg(QStringLiteral("QTreeView")));
    addTools();
    for (QAbstractItemView* view : {static_cast<QAbstractItemView*>(ui_->lViewDatabases),
                                    static_cast<QAbstractItemView*>(ui_->lViewDetails)}) {
        view->setSelectionBehavior(QAbstractItemView::SelectRows);
        view->setSelectionMode(QAbstractItemView::SingleSelection);
        view->setContextMenuPolicy(Qt::NoContextMenu);
        view->installEventFilter(this);
        view->viewport()->installEventFilter(this);
        connect(view, &QAbstractItemView::doubleClicked, this, &frmChooseDatabase::ok);
    }
    connect(selection_, &QItemSelectionModel::currentRowChanged, this, &frmChooseDatabase::showSelected);
    ui_->lViewDetails->header()->setSectionsClickable(true);
    connect(ui_->lViewDetails->header(), &QHeaderView::sectionClicked, this, &frmChooseDatabase::sortBy);
    connect(ui_->cmdOK, &QPushButton::clicked, this, &frmChooseDatabase::ok);
    connect(ui_->cmdCancel, &QPushButton::clicked, this, &frmChooseDatabase::reject);
    connect(ui_->cmdStop, &QPushButton::clicked, this, [this] {
        if (work_)
            work_->stop();
    });
    ui_->pnlStatus->hide();
    updateEnabled(); // there is nothing to choose yet
    resize(620, 440);
}

frmChooseDatabase::~frmChooseDatabase() = default;

// A button for each entry of the menu of options, and one for the menu of views.
void frmChooseDatabase::addTools() {
    const std::pair<QAction*, void (frmChooseDatabase::*)()> options[] = {
        {ui_->MnuNew, &frmChooseDatabase::makeNew},
        {ui_->mnuCopy, &frmChooseDatabase::copy},
        {ui_->mnuChangeDesc, &frmChooseDatabase::describe},
        {ui_->mnuRename, &frmChooseDatabase::rename},
        {ui_->mnuDelete, &frmChooseDatabase::remove}};
    auto* menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("mnuOptions"));
    const auto addButton = [this](QToolButton* button) {
        button->setToolButtonStyle(Qt::ToolButtonTextOnly);
        button->setAutoRaise(true);
        button->setFocusPolicy(Qt::TabFocus);
        ui_->layoutTools->addWidget(button);
    };
    for (const auto& [action, run] : options) {
        connect(action, &QAction::triggered, this, run);
        menu->addAction(action);
        auto* button = new QToolButton(this);
        button->setDefaultAction(action);
        addButton(button);
    }
    ui_->layoutTools->addStretch(1);
    auto* views = new QMenu(this);
    views->setObjectName(QStringLiteral("mnuView"));
    auto* group = new QActionGroup(this);
    int mode = LargeIcons;
    for (QAction* action : {ui_->mnuViewLarge, ui_->mnuViewSmall, ui_->mnuViewList, ui_->mnuViewDetails}) {
        action->setCheckable(true);
        group->addAction(action);
        views->addAction(action);
        connect(action, &QAction::triggered, this, [this, mode] { showView(mode); });
        ++mode;
    }
    auto* button = new QToolButton(this);
    button->setObjectName(QStringLiteral("cmdView"));
    button->setText(QStringLiteral("&View"));
    button->setMenu(views);
    button->setPopupMode(QToolButton::InstantPopup);
    addButton(button);
}

void frmChooseDatabase::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (std::exchange(shown_, true))
        return;
    // The window appears first, and then its rows.
    QTimer::singleShot(0, this, &frmChooseDatabase::firstShowing);
}

void frmChooseDatabase::firstShowing() {
    type_ = tag_.toInt();
    const qint32 mode = ReadRegistryLong(LocalMachineHive, TolvexV2Key, ViewValue, Details);
    showView(mode >= LargeIcons && mode <= Details ? mode : Details);
    const DatabaseKind* kind = FindDatabaseKind(type_);
    if (kind && kind->word) {
        word_ = QLatin1String(kind->word);
        title_ = QLatin1String(kind->title);
    } else {
        title_ = QStringLiteral("Invalid Database %1").arg(type_);
    }
    setWindowTitle(QStringLiteral("Select ") + title_);
    QStringList headers{QStringLiteral("Description"), QStringLiteral("Database Name")};
    if (showsAccess(type_))
        headers += QStringLiteral("Last Accessed");
    model_->setHorizontalHeaderLabels(headers);
    QHeaderView* header = ui_->lViewDetails->header();
    header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    header->setStretchLastSection(false);
    header->setSectionResizeMode(0, QHeaderView::Stretch);
    const int pixel = fontMetrics().height(); // widths grow with the text
    const auto wide = [pixel](int twips) { return twips / TwipsPerPixel * pixel / 13; };
    header->resizeSection(1, wide(NameWidth) + wide(Margins) / 4 + 2 * pixel);
    if (showsAccess(type_))
        header->resizeSection(2, wide(AccessedWidth));

    const QPointer<frmChooseDatabase> self(this);
    fill();
    if (self && isVisible() && model_->rowCount() == 1 && !canEdit())
        ok();
    platform::prompts().setPointer(platform::Pointer::Default);
}

void frmChooseDatabase::showView(int mode) {
    QListView* icons = ui_->lViewDatabases;
    ui_->stackViews->setCurrentIndex(mode == Details ? 1 : 0);
    focusList();
    QAction* const actions[] = {ui_->mnuViewLarge, ui_->mnuViewSmall, ui_->mnuViewList, ui_->mnuViewDetails};
    actions[mode]->setChecked(true);
    icons->setViewMode(mode == LargeIcons ? QListView::IconMode : QListView::ListMode);
    icons->setMovement(QListView::Static);
    icons->setResizeMode(QListView::Adjust);
    icons->setWrapping(true);
    icons->setFlow(mode == List ? QListView::TopToBottom : QListView::LeftToRight);
    const int line = fontMetrics().height();
    icons->setIconSize(mode == LargeIcons ? QSize(3 * line, 3 * line) : QSize(line, line));
    icons->setGridSize(mode == LargeIcons ? QSize(11 * line, 8 * line) : QSize(16 * line, 2 * line));
    icons->setWordWrap(mode == LargeIcons);
    if (selection_->currentIndex().isValid())
        icons->scrollTo(selection_->currentIndex());
}

// The keys go to the view that can be seen, also when the window becomes active later.
void frmChooseDatabase::focusList() {
    ui_->stackViews->currentWidget()->findChild<QAbstractItemView*>()->setFocus();
}

void frmChooseDatabase::saveView() const {
    QAction* const actions[] = {ui_->mnuViewLarge, ui_->mnuViewSmall, ui_->mnuViewList, ui_->mnuViewDetails};
    for (int mode = LargeIcons; mode <= Details; ++mode)
        if (actions[mode]->isChecked())
            WriteRegistryLong(LocalMachineHive, TolvexV2Key, ViewValue, mode, NoView);
}

void frmChooseDatabase::updateEnabled() {
    const bool edits = canEdit() && !work_;
    const bool any = selectedRow() >= 0;
    ui_->MnuNew->setEnabled(edits);
    for (QAction* action : {ui_->mnuChangeDesc, ui_->mnuDelete, ui_->mnuCopy, ui_->mnuRename})
        action->setEnabled(edits && any);
    const bool copies = work_ && work_->copies();
    ui_->cmdOK->setEnabled(any && !copies && !isGhosted(selectedRow()));
    ui_->cmdCancel->setEnabled(!copies);
    ui_->stackViews->setEnabled(!copies);
}

bool frmChooseDatabase::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonRelease) {
        auto* mouse = static_cast<QMouseEvent*>(event);
        if (mouse->button() == Qt::RightButton && qobject_cast<QAbstractItemView*>(watched->parent())) {
            popUp(mouse->globalPosition().toPoint());
            return true;
        }
    }
    if (event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        QAction* const actions[] = {ui_->MnuNew, ui_->mnuChangeDesc, ui_->mnuDelete};
        const int keys[] = {Qt::Key_N, Qt::Key_E, Qt::Key_D};
        for (int at = 0; at < 3; ++at)
            if (key->key() == keys[at] && !(key->modifiers() & ~Qt::KeyboardModifiers(Qt::ShiftModifier))) {
                actions[at]->trigger();
                return true;
            }
        if (key->key() == Qt::Key_Menu) {
            popUp(mapToGlobal(rect().center()));
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

void frmChooseDatabase::popUp(const QPoint& at) {
    if (canEdit() && !work_)
        findChild<QMenu*>(QStringLiteral("mnuOptions"))->popup(at);
}

void frmChooseDatabase::ok() {
    if (selectedRow() < 0 || isGhosted(selectedRow()) || (work_ && work_->copies()))
        return;
    tag_ = selected().baseName + QStringLiteral(".MDB");
    description_ = model_->item(selectedRow(), 0)->text();
    if (work_)
        work_->stop();
    saveView();
    accept();
}

// Cancel, Escape and the window's own close button. A copy is stopped first.
void frmChooseDatabase::reject() {
    if (work_)
        work_->stop();
    if (work_ && work_->copies())
        return;
    tag_.clear();
    saveView();
    QDialog::reject();
}

QString ChooseDatabase(QWidget* owner, const QString& folder, qint32 type, DatabaseChooserCaller* caller) {
    frmChooseDatabase form(owner);
    form.setPath(folder);
    form.setTag(QString::number(type));
    form.setCaller(caller);
    form.exec();
    return form.tag();
}

} // namespace tolvex
