// The rows of the chooser: listing the folder, sorting, and what is shown of the selected one.
#include "core/report/ProblemReport.h"
#include "databases/compaction/CompactRepair.h"
#include "databases/forms/frmChooseDatabase.h"
#include "databases/store/Report.h"
#include "ui/style/Style.h"
#include "ui_frmChooseDatabase.h"

#include <QHeaderView>
#include <QLocale>
#include <QStandardItemModel>

namespace tolvex {

namespace {

constexpr int RowRole = Qt::UserRole + 1; // the ListedDatabase of the row
constexpr int GhostRole = Qt::UserRole + 2;

// Sorted without regard to case.
class Cell : public QStandardItem {
public:
    using QStandardItem::QStandardItem;
    bool operator<(const QStandardItem& other) const override {
        return text().compare(other.text(), Qt::CaseInsensitive) < 0;
    }
};

QString sizeText(qint64 bytes) {
    constexpr qint64 megabyte = 1 << 20;
    return QLocale().formattedDataSize(bytes, bytes < megabyte ? 0 : 1, QLocale::DataSizeTraditionalFormat);
}

} // namespace

// Lists the folder row by row, with events in between. `wanted`: the file name to select in the end; empty:
// the first row.
void frmChooseDatabase::fill(const QString& wanted) {
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
        if (!wanted.isEmpty() && model_->item(row, 1)->data(RowRole).value<ListedDatabase>().fileName.compare(
                                     wanted, Qt::CaseInsensitive) == 0)
            select(row);
    updateEnabled();
    showSelected();
    if (!whole)
        ui_->lblStatus->setText(QStringLiteral("Stopped: there may be more databases than are shown."));
    else if (lister_.gaveUp())
        ui_->lblStatus->setText(QStringLiteral("The drive of %1 does not answer.").arg(path_));
    else if (model_->rowCount() == 0)
        ui_->lblStatus->setText(QStringLiteral("There is no %1 in %2.").arg(title_, path_));
}

// Adds one file of the folder. It may have to be repaired before it says what it is.
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
    if (model_->columnCount() > 2)
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
    if (database.isCutShort) {
        row[0]->setIcon(LineIcon(QStringLiteral("exclamation"), &Tokens::warning));
        row[0]->setToolTip(CutShortText(database.fileName));
    }
    model_->appendRow(row);
    if (model_->rowCount() == 1)
        select(0);
}

void frmChooseDatabase::sortBy(int column) {
    if (sortColumn_ == column)
        sortOrder_ = sortOrder_ == Qt::AscendingOrder ? Qt::DescendingOrder : Qt::AscendingOrder;
    sortColumn_ = column;
    ui_->lViewDetails->header()->setSortIndicatorShown(true);
    ui_->lViewDetails->header()->setSortIndicator(column, sortOrder_);
    model_->sort(column, sortOrder_);
    if (selectedRow() >= 0)
        select(selectedRow());
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

void frmChooseDatabase::select(int row) {
    const QModelIndex index = model_->index(row, 0);
    selection_->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    ui_->lViewDetails->scrollTo(index);
    ui_->lViewDatabases->scrollTo(index);
}

// Shows what is known of the file in the selected row.
void frmChooseDatabase::showSelected() {
    updateEnabled();
    if (selectedRow() < 0) {
        ui_->lblStatus->clear();
        return;
    }
    const ListedDatabase database = selected();
    description_ = model_->item(selectedRow(), 0)->text();
    QStringList facts{
        database.fileName, sizeText(database.size),
        QStringLiteral("version %1").arg(QString::number(database.version)),
        QStringLiteral("changed %1").arg(QLocale().toString(database.modified, QLocale::ShortFormat))};
    facts += database.openOn.isEmpty()
                 ? QStringLiteral("not open")
                 : QStringLiteral("open on %1").arg(database.openOn.join(QStringLiteral(", ")));
    QString text = facts.join(QStringLiteral("  \u00b7  "));
    if (database.isCutShort)
        text += u'\n' + CutShortText(database.fileName);
    ui_->lblStatus->setText(text);
}

void frmChooseDatabase::showDescription(const QString& text) {
    model_->item(selectedRow(), 0)->setText(text);
    description_ = text;
}

} // namespace tolvex
