#include "network/forms/CommandModel.h"

#include "ui/style/Style.h"

namespace tolvex {

namespace {

struct ColumnRow {
    const char* heading;
    QString (*text)(const ListedCommand& command);
};
// In the order of the columns.
constexpr ColumnRow columns[] = {
    {"Command Type", [](const ListedCommand& command) { return command.typeText(); }},
    {"Command", [](const ListedCommand& command) { return command.name; }},
    {"Leave Active?", [](const ListedCommand& command) { return command.leaveActiveText(); }},
    {"Use Existing?", [](const ListedCommand& command) { return command.useExistingText(); }},
};

} // namespace

CommandModel::CommandModel(QObject* parent)
    : QAbstractTableModel(parent) {}

void CommandModel::show(const QList<ListedCommand>& commands) {
    beginResetModel();
    commands_ = commands;
    endResetModel();
}

int CommandModel::rowOf(const QString& name) const {
    for (int row = 0; row < rowCount(); ++row)
        if (commands_[row].name.compare(name.trimmed(), Qt::CaseInsensitive) == 0)
            return row;
    return -1;
}

int CommandModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(commands_.size());
}

int CommandModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int{ColumnCount};
}

QVariant CommandModel::data(const QModelIndex& index, int role) const {
    const ListedCommand& command = commands_[index.row()];
    const QString text = columns[index.column()].text(command);
    switch (role) {
    case Qt::DisplayRole:
        return text;
    case Qt::ToolTipRole:
        return command.fault.isEmpty() ? text : command.fault;
    case Qt::ForegroundRole:
        return !command.fault.isEmpty()       ? QVariant(tokens().error)
               : text == QLatin1String("n/a") ? QVariant(tokens().quiet)
                                              : QVariant();
    default:
        return {};
    }
}

QVariant CommandModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section >= ColumnCount)
        return {};
    return QLatin1String(columns[section].heading);
}

} // namespace tolvex
