#include "hardware/forms/LineUsageModel.h"

#include "ui/style/Style.h"

#include <QBrush>

namespace tolvex {

LineUsageModel::LineUsageModel(HardwareCard& card, QObject* parent)
    : QAbstractTableModel(parent)
    , card_(card) {}

void LineUsageModel::setLines(int lines) {
    if (lines == rowCount())
        return;
    beginResetModel();
    texts_.assign(static_cast<std::size_t>(lines), {});
    endResetModel();
}

void LineUsageModel::UpdateGridDisplay() {
    int line = 0;
    for (LineTexts& texts : texts_)
        texts = GetGridinfo(card_.Lines[++line]);
    if (line > 0)
        emit dataChanged(index(0, 0), index(line - 1, LineColumnCount - 1));
}

int LineUsageModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(texts_.size());
}

int LineUsageModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int{LineColumnCount};
}

QString LineUsageModel::text(int row, int column) const {
    const LineTexts& texts = texts_[static_cast<std::size_t>(row)];
    switch (column) {
    case ColumnLine:
        return QString::number(row + 1);
    case ColumnType:
        return texts.type;
    case ColumnLogic:
        return texts.logic;
    case ColumnDescription:
        return texts.description;
    case ColumnAction:
        return texts.action;
    case ColumnInfo1:
        return texts.info1;
    case ColumnInfo2:
        return texts.info2;
    default:
        return {};
    }
}

QVariant LineUsageModel::data(const QModelIndex& index, int role) const {
    const int column = index.column();
    switch (role) {
    case Qt::DisplayRole:
        return text(index.row(), column);
    case Qt::TextAlignmentRole:
        return static_cast<int>((column >= ColumnDescription ? Qt::AlignLeft : Qt::AlignHCenter) |
                                Qt::AlignVCenter);
    case Qt::ForegroundRole:
        // Unused lines are dimmed.
        if (column == ColumnLine || (column == ColumnAction && card_.Lines[index.row() + 1].Action == 0))
            return QBrush(tokens().quiet);
        return {};
    case Qt::ToolTipRole:
        if (column == ColumnLogic)
            return card_.Lines[index.row() + 1].ActiveLow ? QStringLiteral("Active low: the logic is flipped")
                                                          : QStringLiteral("Normal logic");
        return text(index.row(), column);
    case Qt::AccessibleTextRole:
        return QStringLiteral("Line %1, %2: %3")
            .arg(index.row() + 1)
            .arg(QLatin1String(LineColumns()[static_cast<std::size_t>(column)].heading),
                 text(index.row(), column));
    default:
        return {};
    }
}

QVariant LineUsageModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= LineColumnCount)
        return {};
    if (role == Qt::DisplayRole)
        return QLatin1String(LineColumns()[static_cast<std::size_t>(section)].heading);
    if (role == Qt::TextAlignmentRole)
        return static_cast<int>((section >= ColumnDescription ? Qt::AlignLeft : Qt::AlignHCenter) |
                                Qt::AlignVCenter);
    return {};
}

} // namespace tolvex
