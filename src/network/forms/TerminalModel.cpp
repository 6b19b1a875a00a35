#include "network/forms/TerminalModel.h"

#include "ui/style/Style.h"

#include <QFont>

namespace tolvex {

namespace {

const QString changeHint = QStringLiteral("Click here to change the name");
constexpr const char* headings[] = {"No", "?", "Tolvex ID Name", "Network Name", "Last Used:", "Used by"};

} // namespace

TerminalModel::TerminalModel(QObject* parent)
    : QAbstractTableModel(parent) {}

void TerminalModel::show(const QList<TerminalRow>& rows) {
    if (rows.size() != rows_.size()) {
        beginResetModel();
        rows_ = rows;
        endResetModel();
        return;
    }
    rows_ = rows;
    if (!rows_.isEmpty())
        emit dataChanged(index(0, 0), index(rowCount() - 1, ColumnCount - 1));
}

void TerminalModel::choose(int id) {
    const int before = std::exchange(chosenId_, id);
    rowChanged(before);
    rowChanged(id);
}

void TerminalModel::setName(int id, const QString& name) {
    names_[id] = name;
    rowChanged(id);
}

void TerminalModel::rowChanged(int id) {
    if (id >= 1 && id <= rowCount())
        emit dataChanged(index(id - 1, 0), index(id - 1, ColumnCount - 1));
}

int TerminalModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int TerminalModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int{ColumnCount};
}

QString TerminalModel::text(int id, int column) const {
    const TerminalRow row = terminal(id);
    switch (column) {
    case Number:
        return QString::number(id);
    case Marker:
        return id == chosenId_ ? QStringLiteral(">") : QString();
    case IdName:
        return name(id);
    case NetworkName:
        return row.networkName;
    case LastUsed:
        return row.lastUsed;
    case UsedBy:
        return row.stateText;
    default:
        return {};
    }
}

QVariant TerminalModel::data(const QModelIndex& index, int role) const {
    const int id = index.row() + 1;
    const int column = index.column();
    const TerminalRow::State state = terminal(id).state;
    switch (role) {
    case Qt::DisplayRole:
        return text(id, column);
    case Qt::TextAlignmentRole:
        return static_cast<int>((column <= Marker ? Qt::AlignHCenter : Qt::AlignLeft) | Qt::AlignVCenter);
    case Qt::FontRole: {
        QFont font;
        font.setBold(id == chosenId_);
        return font;
    }
    case Qt::ForegroundRole:
        if (column == UsedBy)
            return state == TerminalRow::State::Own     ? tokens().good
                   : state == TerminalRow::State::Taken ? tokens().warningText
                                                        : tokens().quiet;
        return column == Number ? QVariant(tokens().quiet) : QVariant();
    case Qt::ToolTipRole:
        if (column == Marker)
            return QStringLiteral("Click here to use this number on this workstation");
        if (column == IdName)
            return name(id).isEmpty() ? changeHint : name(id) + u'\n' + changeHint;
        return text(id, column);
    case Qt::AccessibleTextRole:
        if (column == Marker)
            return id == chosenId_ ? QStringLiteral("chosen") : QStringLiteral("not chosen");
        return text(id, column);
    default:
        return {};
    }
}

QVariant TerminalModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= ColumnCount)
        return {};
    if (role == Qt::DisplayRole)
        return QLatin1String(headings[section]);
    if (role == Qt::TextAlignmentRole && section <= Marker)
        return static_cast<int>(Qt::AlignCenter);
    return {};
}

} // namespace tolvex
