#include "network/forms/EventModel.h"

#include "platform/Clock.h"
#include "ui/style/Style.h"

namespace tolvex {

EventModel::EventModel(QObject* parent)
    : QAbstractTableModel(parent) {}

void EventModel::add(const QString& sentence, bool isFault) {
    if (rowCount() == MostEvents) {
        beginRemoveRows({}, 0, 0);
        entries_.removeFirst();
        endRemoveRows();
    }
    beginInsertRows({}, rowCount(), rowCount());
    entries_.append({platform::clock().now(), sentence, isFault});
    endInsertRows();
}

void EventModel::clear() {
    beginResetModel();
    entries_.clear();
    endResetModel();
}

QString EventModel::text(const Entry& entry, int column) const {
    return column == Time ? entry.time.toString(QStringLiteral("HH:mm:ss")) : entry.sentence;
}

QString EventModel::text() const {
    QString all;
    for (const Entry& entry : entries_)
        all += entry.time.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")) + u'\t' + entry.sentence + u'\n';
    return all;
}

int EventModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(entries_.size());
}

int EventModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int{ColumnCount};
}

QVariant EventModel::data(const QModelIndex& index, int role) const {
    const Entry& entry = entries_[index.row()];
    switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole:
        return text(entry, index.column());
    case Qt::ForegroundRole:
        return index.column() == Time ? QVariant(tokens().quiet)
               : entry.isFault        ? QVariant(tokens().error)
                                      : QVariant();
    default:
        return {};
    }
}

QVariant EventModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return section == Time ? QStringLiteral("Time") : QStringLiteral("What happened");
}

} // namespace tolvex
