#include "databases/forms/frmChooseDatabase.h"

#include "core/report/ProblemReport.h"
#include "core/system/Registry.h"
#include "databases/compaction/CompactRepair.h"
#include "databases/store/Report.h"
#include "databases/suite/DatabaseKinds.h"
#include "ui/style/FitForm.h"
#include "ui/style/OpenForms.h"
#include "ui/style/Style.h"
#include "ui_frmChooseDatabase.h"

#include <QActionGroup>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLocale>
#include <QMenu>
#include <QStandardItemModel>
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

constexpr int RowRole = Qt::UserRole + 1; // number of the row in rows_
constexpr int GhostRole = Qt::UserRole + 2;

// Sorted without regard to case.
class Cell : public QStandardItem {
public:
    using QStandardItem::QStandardItem;
    bool operator<(const QStandardItem& other) const override {
        return text().compare(other.text(), Qt::CaseInsensitive) < 0;
    }
};

bool showsAccess(qint32 type) {
    return type == RotaweaveV3Type || type == QuillType;
}

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
    // The whole entry is marked, its icon too: selected icons are white.
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

// The menu of options as buttons, the menu of views behind one.
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
    // The window first; its rows come while it stands.
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
    header->resizeSection(1, wide(NameWidth) + wide(Margins) / 4);
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
    // Also while the window is not active yet: the keys go to the view that can be seen.
    if (mode == Details)
        ui_->lViewDetails->setFocus();
    else
        icons->setFocus();
    QAction* const actions[] = {ui_->mnuViewLarge, ui_->mnuViewSmall, ui_->mnuViewList, ui_->mnuViewDetails};
    actions[mode]->setChecked(true);
    icons->setViewMode(mode == LargeIcons ? QListView::IconMode : QListView::ListMode);
    icons->setMovement(QListView::Static);
    icons->setResizeMode(QListView::Adjust);
    icons->setWrapping(true);
    icons->setFlow(mode == List ? QListView::TopToBottom : QListView::LeftToRight);
    const int line = fontMetrics().height();
    icons->setIconSize(mode == LargeIcons ? QSize(3 * line, 3 * line) : QSize(line, line));
    icons->setGridSize(mode == LargeIcons ? QSize(9 * line, 7 * line) : QSize(16 * line, 2 * line));
    icons->setWordWrap(mode == LargeIcons);
    if (selection_->currentIndex().isValid())
        icons->scrollTo(selection_->currentIndex());
}

void frmChooseDatabase::saveView() const {
    QAction* const actions[] = {ui_->mnuViewLarge, ui_->mnuViewSmall, ui_->mnuViewList, ui_->mnuViewDetails};
    for (int mode = LargeIcons; mode <= Details; ++mode)
        if (actions[mode]->isChecked())
            WriteRegistryLong(LocalMachineHive, TolvexV2Key, ViewValue, mode, NoView);
}

// Row by row, with events in between; `select`: the file name to select in the end, the first row without
// one.
void frmChooseDatabase::fill(const QString& select) {
    if (work_)
        return;
    model_->removeRows(0, model_->rowCount());
    const QString disabled = caller_ ? caller_->DisabledDatabaseFName().toLower() : QString();
    const QPointer<frmChooseDatabase> self(this);
    bool whole = false;
    {
        const HeldReports reports(QStringLiteral("reading databases in ") + path_);
        const platform::PointerKeeper pointer(platform::Pointer::Wait);
        Work work(*this, QStringLiteral("Looking for databases..."));
        whole = lister_.list(path_, work, [this, &self, &disabled](const ListedDatabase& database) {
            if (self)
                take(database, disabled);
        });
    }
    if (!self)
        return;
    if (sortColumn_ >= 0)
        model_->sort(sortColumn_, sortOrder_);
    for (int row = 0; row < model_->rowCount(); ++row)
        if (!select.isEmpty() && model_->item(row, 1)->data(RowRole).value<ListedDatabase>().fileName.compare(
                                     select, Qt::CaseInsensitive) == 0)
            selection_->setCurrentIndex(model_->index(row, 0),
                                        QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    updateEnabled();
    showSelected();
    if (!whole)
        ui_->lblStatus->setText(QStringLiteral("Stopped: there may be more databases than are shown."));
    else if (lister_.gaveUp())
        ui_->lblStatus->setText(QStringLiteral("The drive of %1 does not answer.").arg(path_));
    else if (model_->rowCount() == 0)
        ui_->lblStatus->setText(QStringLiteral("There is no %1 in %2.").arg(title_, path_));
}

// One file of the folder: it may have to be mended before it says what it is.
void frmChooseDatabase::take(ListedDatabase database, const QString& disabled) {
    if (database.error == UnrecognisedDatabase && !offered_.contains(database.path)) {
        offered_.insert(database.path);
        if (CompactRepairDatabase(database.path, true, {}, false))
            database = LookAtDatabase(database.path);
        else
            return;
    }
    if (database.error != 0) {
        Report(QStringLiteral("getting the information from  : ") + database.fileName,
               {database.error, database.errorText});
        return;
    }
    if (database.type == type_)
        addRow(database, !disabled.isEmpty() && database.fileName.toLower() == disabled);
}

void frmChooseDatabase::addRow(const ListedDatabase& database, bool ghosted) {
    QList<QStandardItem*> row{new Cell(LineIcon(QStringLiteral("database")), database.description),
                              new Cell(database.baseName)};
    if (showsAccess(type_))
        row +=
            new Cell(database.lastAccessed.isEmpty() ? QStringLiteral("<Not known>") : database.lastAccessed);
    row[1]->setData(QVariant::fromValue(database), RowRole);
    row[1]->setData(ghosted, GhostRole);
    for (QStandardItem* item : row) {
        item->setEditable(false);
        item->setToolTip(database.fileName);
        if (!ghosted)
            continue;
        item->setForeground(tokens().quiet);
        item->setToolTip(
            QStringLiteral("%1 cannot be chosen here: it is in use already.").arg(database.fileName));
    }
    if (ghosted)
        row[0]->setIcon(LineIcon(QStringLiteral("database"), &Tokens::quiet));
    model_->appendRow(row);
    if (model_->rowCount() == 1)
        selection_->setCurrentIndex(model_->index(0, 0),
                                    QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

void frmChooseDatabase::sortBy(int column) {
    if (sortColumn_ == column)
        sortOrder_ = sortOrder_ == Qt::AscendingOrder ? Qt::DescendingOrder : Qt::AscendingOrder;
    sortColumn_ = column;
    ui_->lViewDetails->header()->setSortIndicatorShown(true);
    ui_->lViewDetails->header()->setSortIndicator(column, sortOrder_);
    model_->sort(column, sortOrder_);
}

int frmChooseDatabase::selectedRow() const {
    return selection_->currentIndex().isValid() ? selection_->currentIndex().row() : -1;
}

ListedDatabase frmChooseDatabase::selected() const {
    return selectedRow() < 0 ? ListedDatabase()
                             : model_->item(selectedRow(), 1)->data(RowRole).value<ListedDatabase>();
}

bool frmChooseDatabase::isGhosted(int row) const {
    return model_->item(row, 1)->data(GhostRole).toBool();
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

// The row that is selected: its description, and what there is to know of its file.
void frmChooseDatabase::showSelected() {
    updateEnabled();
    if (selectedRow() < 0) {
        ui_->lblStatus->clear();
        return;
    }
    const ListedDatabase database = selected();
    description_ = model_->item(selectedRow(), 0)->text();
    QStringList facts{
        database.fileName, QLocale().formattedDataSize(database.size, 0, QLocale::DataSizeTraditionalFormat),
        QStringLiteral("version %1").arg(QString::number(database.version)),
        QStringLiteral("changed %1").arg(QLocale().toString(database.modified, QLocale::ShortFormat))};
    facts += database.openOn.isEmpty()
                 ? QStringLiteral("not open")
                 : QStringLiteral("open on %1").arg(database.openOn.join(QStringLiteral(", ")));
    ui_->lblStatus->setText(facts.join(QStringLiteral("  \u00b7  ")));
}

void frmChooseDatabase::showDescription(const QString& text) {
    model_->item(selectedRow(), 0)->setText(text);
    description_ = text;
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
